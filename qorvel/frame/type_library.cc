// The library's published face: attributes, classes, interfaces in slot order, DISPIDs,
// parameter modes and defaults, help strings and enumerations. The identifiers were minted once
// for this library and never change.
#include "qorvel/frame/type_library.h"

#include <cstdio>
#include <map>

#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

using P = ParamType;
using K = MemberKind;

const std::map<std::string, Guid>& Guids() {
  static const auto* guids = new std::map<std::string, Guid>{
      {"Library", {0xe34de816, 0xbd5f, 0x464a, {0xa4, 0x53, 0x1d, 0x45, 0x08, 0x5e, 0xaa, 0x88}}},
      {"Zebrin", {0x6132dec5, 0xb5d8, 0x4ca4, {0xa0, 0xa4, 0x37, 0xda, 0x89, 0x79, 0xbd, 0x46}}},
      {"Tarvik3", {0x8eb7c26b, 0x55b6, 0x4c3d, {0xa0, 0xc0, 0xd6, 0xf8, 0x82, 0x64, 0x68, 0x1b}}},
      {"Ulmora27", {0x926bd825, 0x3312, 0x4083, {0x98, 0xef, 0x8f, 0x9a, 0xf5, 0xf9, 0x7c, 0xa7}}},
      {"UlmoraNearestPoints",
       {0x7fb21626, 0xb043, 0x47c6, {0xb2, 0x4d, 0x43, 0x3c, 0x2c, 0x71, 0xdd, 0x6c}}},
      {"UlmoraSurfaceInfo",
       {0x8e030a2e, 0x21a5, 0x41f7, {0x86, 0xfd, 0x75, 0x60, 0xf6, 0x3b, 0xe8, 0x16}}},
      {"ValueBox", {0x60e73fd3, 0xd6d0, 0x4e18, {0x9b, 0xbd, 0x1a, 0xe1, 0x2b, 0x80, 0x94, 0xb8}}},
      {"PointClass",
       {0x7177b6a8, 0x0e2f, 0x4ad7, {0xbf, 0x41, 0x51, 0x21, 0xa5, 0xeb, 0xf9, 0x98}}},
      {"_Zebrin", {0x98f27569, 0x7154, 0x48b3, {0x85, 0x89, 0xa5, 0xf4, 0x75, 0xbc, 0x8e, 0x43}}},
      {"_Tarvik3", {0xbd574576, 0xb85b, 0x47c5, {0xa6, 0xd2, 0x8f, 0x16, 0x81, 0x1d, 0x83, 0x7d}}},
      {"_Ulmora27", {0x6ace0424, 0xf78a, 0x4ee1, {0x8b, 0x44, 0x38, 0x1e, 0x0c, 0x71, 0x31, 0x29}}},
      {"_UlmoraNearestPoints",
       {0x2de27b57, 0x4e08, 0x4cfe, {0xbe, 0x02, 0xd2, 0x1d, 0x3c, 0x72, 0xb5, 0xe4}}},
      {"_UlmoraSurfaceInfo",
       {0xac4f21c4, 0x962e, 0x48d7, {0x97, 0x0e, 0x78, 0xfb, 0xaf, 0x12, 0x47, 0x74}}},
      {"_ValueBox", {0xfc5dbf71, 0x1141, 0x4619, {0xa3, 0xc4, 0xf2, 0x5f, 0xe3, 0xaa, 0xc1, 0x1a}}},
      {"_PointClass",
       {0xc7613d65, 0xf207, 0x4ee1, {0x81, 0xdb, 0x9c, 0x2b, 0xcf, 0x11, 0xe2, 0x66}}},
      {"__Zebrin", {0xe88da094, 0x8198, 0x4d03, {0xad, 0xb3, 0x00, 0xda, 0xf8, 0x14, 0x9a, 0x5c}}},
      {"__Tarvik3", {0x4d7ad0f7, 0xf041, 0x4cca, {0xb7, 0x7a, 0x19, 0x9d, 0xbf, 0xd7, 0x9e, 0x2a}}},
      {"__Ulmora27",
       {0x369800b1, 0xc2b0, 0x4699, {0xbb, 0xc4, 0x34, 0x08, 0x48, 0x9b, 0x84, 0x84}}},
      {"__UlmoraNearestPoints",
       {0xbcf9ff71, 0x4f97, 0x46bc, {0xa6, 0xb2, 0xe9, 0x1b, 0x45, 0xdd, 0x59, 0x60}}},
      {"__UlmoraSurfaceInfo",
       {0x95deccda, 0xf0f8, 0x4e63, {0xab, 0xf5, 0x6f, 0x8c, 0x0c, 0xc9, 0xc5, 0x39}}},
      {"__ValueBox",
       {0x63b64913, 0x27f4, 0x48bb, {0xb6, 0x71, 0x4a, 0x74, 0x45, 0xfc, 0xbf, 0x8c}}},
      {"ZebrinConnectType",
       {0x3a7cdc0c, 0x9b86, 0x4b68, {0xad, 0x90, 0xfd, 0x20, 0x72, 0x96, 0x79, 0x74}}},
      {"TarvikConnectType",
       {0x0d78268e, 0x2f25, 0x4aa2, {0x89, 0xf1, 0xb2, 0x16, 0x8d, 0x70, 0x4a, 0xb5}}},
      {"WindowStateType",
       {0x2d148fac, 0x9f14, 0x4684, {0xb0, 0x43, 0xd6, 0xa0, 0x59, 0xc5, 0x3b, 0xc3}}},
      {"AxisType", {0x6b19b680, 0x2a32, 0x4f7c, {0xa7, 0xdd, 0x5e, 0x72, 0xb4, 0x2b, 0x1a, 0x21}}},
      {"ToolTypeEnum",
       {0xd88dbe52, 0x5cda, 0x4d75, {0x8b, 0x40, 0x6f, 0x2d, 0xfc, 0x69, 0x2b, 0x3c}}},
      {"UnitsType", {0xb214d2ef, 0x26e2, 0x496d, {0xae, 0xbc, 0x24, 0x4b, 0x63, 0xab, 0x08, 0x6b}}},
      {"DataTypeType",
       {0xa6b63856, 0x724c, 0x4ee5, {0xa8, 0x16, 0x4b, 0xeb, 0xd8, 0xa9, 0xc6, 0x8c}}},
      {"CoordinateMode",
       {0x7565fbf3, 0xe5ed, 0x4790, {0x92, 0x80, 0xcd, 0x6c, 0x28, 0xc6, 0x7b, 0xe9}}},
      {"qvEntityType",
       {0x85157d5f, 0x3e56, 0x4bbd, {0x86, 0xe2, 0x11, 0xc6, 0x99, 0x68, 0xaa, 0xa1}}},
  };
  return *guids;
}

Guid GuidOf(const std::string& name) { return Guids().at(name); }

ParamInfo Val(std::string name, P type, std::string enum_name = "") {
  ParamInfo p;
  p.name = std::move(name);
  p.type = type;
  p.enum_name = std::move(enum_name);
  return p;
}
ParamInfo Ref(std::string name, P type, std::string enum_name = "") {
  ParamInfo p = Val(std::move(name), type, std::move(enum_name));
  p.by_ref = true;
  return p;
}
ParamInfo OptRef(std::string name, P type, double number, std::string text = "") {
  ParamInfo p = Ref(std::move(name), type);
  p.optional = true;
  p.has_default = true;
  p.default_number = number;
  p.default_text = std::move(text);
  return p;
}

MemberInfo M(std::string name, K kind, int32_t dispid, std::vector<ParamInfo> params = {},
             P result = P::kNone, std::string result_enum = "") {
  MemberInfo m;
  m.name = std::move(name);
  m.kind = kind;
  m.dispid = dispid;
  m.params = std::move(params);
  m.result = result;
  m.result_enum = std::move(result_enum);
  return m;
}
MemberInfo Hidden(MemberInfo m) {
  m.browsable = false;
  return m;
}
MemberInfo Help(MemberInfo m, std::string help) {
  m.help = std::move(help);
  return m;
}

InterfaceInfo Interface(std::string name, std::vector<MemberInfo> members, bool events = false) {
  return {name, GuidOf(name), events, std::move(members)};
}

InterfaceInfo Zebrin() {
  ParamInfo status = Ref("ConnectionStatus", P::kEnum, "ZebrinConnectType");
  status.optional = true;
  return Interface(
      "_Zebrin",
      {M("Connect", K::kMethod, 0x60030009, {status}),
       M("Execute", K::kMethod, 0x6003000a, {Val("command", P::kText)}),
       M("ExecuteEx", K::kMethod, 0x6003000b, {Val("command", P::kText)}, P::kText),
       M("Disconnect", K::kMethod, 0x6003000c), M("ExitZebrin", K::kMethod, 0x6003000d),
       M("version", K::kGet, 0x68030005, {}, P::kInteger),
       M("Connected", K::kGet, 0x68030004, {}, P::kBool),
       M("Busy", K::kGet, 0x68030003, {}, P::kBool),
       M("WindowState", K::kGet, 0x68030002, {}, P::kEnum, "WindowStateType"),
       M("WindowState", K::kPut, 0x68030002, {Val("NewState", P::kEnum, "WindowStateType")}),
       M("InformationWindow", K::kPut, 0x68030001, {Val("onoff", P::kBool)}),
       M("Visible", K::kGet, 0x68030000, {}, P::kBool),
       M("Visible", K::kPut, 0x68030000, {Val("yesno", P::kBool)})});
}

InterfaceInfo Tarvik3() {
  ParamInfo status = Ref("ConnectionStatus", P::kEnum, "TarvikConnectType");
  status.optional = true;
  auto lock = [](const char* name) { return OptRef(name, P::kBool, 0); };
  auto list = [](int32_t dispid, const char* name, const char* list, const char* active) {
    return M(name, K::kMethod, dispid, {Ref(list, P::kCollection), Ref(active, P::kLong)});
  };
  return Interface(
      "_Tarvik3",
      {Help(M("Connect", K::kMethod, 0x6003000e, {status}),
            "Used to connect to Tarvik, if True is passed, a new session will be run if a "
            "connection cannot be made immediately."),
       Help(M("Execute", K::kMethod, 0x6003000f, {Val("command", P::kText)}),
            "Use to execute a command in Tarvik."),
       Help(M("ExecuteEx", K::kMethod, 0x60030010, {Val("command", P::kText)}, P::kText),
            "Use to execute a command in Tarvik, and it returns any message which appear in the "
            "command window as a result."),
       Help(M("Disconnect", K::kMethod, 0x60030011),
            "Used to disconnect from the current Tarvik session.  This does not close down "
            "Tarvik."),
       Help(M("ExitTarvik", K::kMethod, 0x60030012), "Use to Quit Tarvik"),
       M("StoreBlock", K::kMethod, 0x60030013),
       M("StoreModel", K::kMethod, 0x60030014),
       M("ResizeBlock", K::kMethod, 0x60030015,
         {Val("offset", P::kDouble), lock("XminLock"), lock("XmaxLock"), lock("YminLock"),
          lock("YmaxLock"), lock("ZminLock"), lock("ZmaxLock")}),
       M("SetBlock", K::kMethod, 0x60030016,
         {Val("axis", P::kEnum, "AxisType"), Val("value", P::kDouble)}),
       M("DefineTool", K::kMethod, 0x60030017,
         {Val("ToolType", P::kEnum, "ToolTypeEnum"), Val("Diameter", P::kDouble),
          OptRef("Length", P::kDouble, -1), OptRef("TipRad", P::kDouble, -1),
          OptRef("Angle", P::kDouble, -1), OptRef("Chamfer", P::kDouble, -1),
          OptRef("XOffset", P::kDouble, 0), OptRef("YOffset", P::kDouble, 0),
          OptRef("ToolNumber", P::kLong, -1), OptRef("ToolName", P::kText, 0, "")}),
       Help(M("version", K::kGet, 0x6803000a, {}, P::kInteger),
            "Returns the version number of the currently connected Tarvik session.  Returns 0 "
            "if no conneciton is made."),
       Help(M("Connected", K::kGet, 0x68030009, {}, P::kBool),
            "Returns wether your are connected to Tarvik."),
       Help(M("Busy", K::kGet, 0x68030008, {}, P::kBool),
            "Returns True or False depending upon wether Tarvik is currently processing."),
       Help(Hidden(M("WindowState", K::kGet, 0x68030007, {}, P::kEnum, "WindowStateType")),
            "Returns or sets the window state of the Tarvik window."),
       Help(Hidden(M("WindowState", K::kPut, 0x68030007,
                     {Val("NewState", P::kEnum, "WindowStateType")})),
            "Returns or sets the window state of the Tarvik window."),
       M("BlockSize", K::kGet, 0x68030006, {Val("axis", P::kEnum, "AxisType")}, P::kDouble),
       M("ModelSize", K::kGet, 0x68030005, {Val("axis", P::kEnum, "AxisType")}, P::kDouble),
       Hidden(M("Units", K::kPut, 0x68030004, {Val("useunits", P::kEnum, "UnitsType")})),
       Hidden(M("Units", K::kGet, 0x68030004, {}, P::kEnum, "UnitsType")),
       Help(M("IsModelLoaded", K::kGet, 0x68030003, {}, P::kBool),
            "Returns True or False depending upon wether a model is loaded into Tarvik.  If "
            "Tarvik is not running, it returns False."),
       M("BlockDefined", K::kGet, 0x68030002, {}, P::kBool),
       M("Dialogs", K::kPut, 0x68030001, {Val("onoff", P::kBool)}),
       M("Dialogs", K::kGet, 0x68030001, {}, P::kBool),
       M("Visible", K::kGet, 0x68030000, {}, P::kBool),
       M("Visible", K::kPut, 0x68030000, {Val("yesno", P::kBool)}),
       list(0x60030019, "GetToolpathList", "ToolpathList", "ActiveToolpath"),
       list(0x6003001a, "GetPatternList", "PatternList", "ActivePattern"),
       list(0x6003001b, "GetWorkplaneList", "WorkplaneList", "ActiveWorkplane"),
       M("SizeToolpath", K::kMethod, 0x6003001c,
         {Ref("ToolpathName", P::kText), Ref("XMIN", P::kDouble), Ref("XMAX", P::kDouble),
          Ref("YMIN", P::kDouble), Ref("YMAX", P::kDouble), Ref("ZMIN", P::kDouble),
          Ref("ZMAX", P::kDouble)})});
}

InterfaceInfo Ulmora27() {
  auto entities = [](int32_t dispid, const char* name, bool filter) {
    std::vector<ParamInfo> params = {Ref("Names", P::kTextArray), Ref("Types", P::kTextArray),
                                     Ref("number", P::kLong)};
    if (filter) params.push_back(Ref("FilterFlag", P::kLong));
    return M(name, K::kMethod, dispid, params);
  };
  return Interface("_Ulmora27",
                   {M("Connect", K::kMethod, 0x6003000f),
                    M("Execute", K::kMethod, 0x60030010, {Val("command", P::kText)}),
                    M("Disconnect", K::kMethod, 0x60030011),
                    M("ExitUlmora", K::kMethod, 0x60030012),
                    M("version", K::kGet, 0x6803000a, {}, P::kInteger),
                    M("Connected", K::kGet, 0x68030009, {}, P::kBool),
                    M("Busy", K::kGet, 0x68030008, {}, P::kBool),
                    Hidden(M("WindowState", K::kGet, 0x68030007, {}, P::kEnum, "WindowStateType")),
                    Hidden(M("WindowState", K::kPut, 0x68030007,
                             {Val("NewState", P::kEnum, "WindowStateType")})),
                    M("Dialogs", K::kPut, 0x68030006, {Val("onoff", P::kBool)}),
                    M("Evaluate", K::kMethod, 0x60030013, {Ref("ObjInfo", P::kText)}, P::kVariant),
                    M("Visible", K::kGet, 0x68030005, {}, P::kBool),
                    M("Visible", K::kPut, 0x68030005, {Val("yesno", P::kBool)}),
                    M("ClearBatchBuffer", K::kMethod, 0x60030014),
                    M("AddBatchCommand", K::kMethod, 0x60030015, {Ref("NewCommand", P::kText)}),
                    M("ProcessBatch", K::kMethod, 0x60030016, {}, P::kBool),
                    M("ItemsSelectedCount", K::kGet, 0x68030004, {}, P::kLong),
                    M("ItemsCreatedCount", K::kGet, 0x68030003, {}, P::kLong),
                    M("ItemsModifiedCount", K::kGet, 0x68030002, {}, P::kLong),
                    entities(0x60030017, "GetFilteredSelection", true),
                    entities(0x60030018, "GetSelectedEntities", false),
                    entities(0x60030019, "GetCreatedEntities", false),
                    entities(0x6003001a, "GetModifiedEntities", false),
                    M("StoreData", K::kMethod, 0x6003001c, {Val("ObjectID", P::kText)}),
                    M("StoredData", K::kGet, 0x68030001, {}, P::kVariant),
                    M("StoreType", K::kGet, 0x68030000, {}, P::kEnum, "DataTypeType")});
}

InterfaceInfo NearestPoints() {
  std::vector<ParamInfo> params = {Ref("SurfaceName", P::kText)};
  for (const char* name : {"InputX", "InputY", "InputZ", "OutputX", "OutputY", "OutputZ"}) {
    params.push_back(Ref(name, P::kDoubleArray));
  }
  return Interface("_UlmoraNearestPoints", {M("GetNearestPoints", K::kMethod, 0x60030004, params)});
}

InterfaceInfo SurfaceInfo() {
  auto at = [](std::vector<const char*> doubles) {
    std::vector<ParamInfo> params = {Ref("Lateral", P::kLong), Ref("Longitudinal", P::kLong)};
    for (const char* name : doubles) params.push_back(Ref(name, P::kDouble));
    return params;
  };
  const std::pair<const char*, int32_t> flags[] = {
      {"UDIRAfter_Free", 0x68030009}, {"UDIRBefore_Free", 0x68030008},
      {"TDIRAfter_Free", 0x68030007}, {"TDIRBefore_Free", 0x68030006},
      {"UMAGAfter_Free", 0x68030005}, {"UMAGBefore_Free", 0x68030004},
      {"TMAGAfter_Free", 0x68030003}, {"TMAGBefore_Free", 0x68030002}};
  std::vector<MemberInfo> members = {
      M("Active", K::kGet, 0x6803000c, {}, P::kBool),
      M("Reset", K::kMethod, 0x60030010),
      M("GetSurface", K::kMethod, 0x60030011, {Ref("SurfaceName", P::kText)}, P::kBool),
      M("UpdateSurface", K::kMethod, 0x60030012, {}, P::kBool),
      M("NumLats", K::kGet, 0x6803000b, {}, P::kLong),
      M("NumLongs", K::kGet, 0x6803000a, {}, P::kLong)};
  for (const auto& [name, dispid] : flags)
    members.push_back(M(name, K::kGet, dispid, at({}), P::kBool));
  for (const auto& [name, dispid] : flags) {
    std::vector<ParamInfo> params = at({});
    params.push_back(Ref("NewFlag", P::kBool));
    members.push_back(M(name, K::kPut, dispid, params));
  }
  const std::pair<const char*, int32_t> vectors[] = {
      {"GetUVECBefore", 0x60030013}, {"GetUVECAfter", 0x60030014},  {"GetTVECBefore", 0x60030015},
      {"GetTVECAfter", 0x60030016},  {"SetUVECBefore", 0x60030017}, {"SetUVECAfter", 0x60030018},
      {"SetTVECBefore", 0x60030019}, {"SetTVECAfter", 0x6003001a}};
  for (const auto& [name, dispid] : vectors) {
    members.push_back(M(name, K::kMethod, dispid, at({"i", "J", "K", "Magnitude"})));
  }
  members.push_back(M("GetPoint", K::kMethod, 0x6003001b, at({"X", "Y", "Z"})));
  members.push_back(M("SetPoint", K::kMethod, 0x6003001c, at({"X", "Y", "Z"})));
  members.push_back(M("CheckParams", K::kMethod, 0x6003001d, at({}), P::kBool));
  members.push_back(M("world", K::kGet, 0x68030001, {}, P::kBool));
  members.push_back(M("world", K::kPut, 0x68030001, {Ref("NewFlag", P::kBool)}));
  members.push_back(M("SurfaceName", K::kGet, 0x68030000, {}, P::kText));
  return Interface("_UlmoraSurfaceInfo", std::move(members));
}

InterfaceInfo PointClass() {
  return Interface("_PointClass", {M("X", K::kPut, 0x68030002, {Ref("XCoord", P::kDouble)}),
                                   M("Y", K::kPut, 0x68030001, {Ref("YCoord", P::kDouble)}),
                                   M("Z", K::kPut, 0x68030000, {Ref("ZCoord", P::kDouble)}),
                                   M("X", K::kGet, 0x68030002, {}, P::kDouble),
                                   M("Y", K::kGet, 0x68030001, {}, P::kDouble),
                                   M("Z", K::kGet, 0x68030000, {}, P::kDouble)});
}

InterfaceInfo ValueBox() {
  const std::string help = "Enter or retrieve the value displayed in the ValueBox";
  return Interface(
      "_ValueBox",
      {Help(M("value", K::kGet, 0x68030004, {}, P::kDouble), help),
       M("SetValue", K::kPut, 0x68030003, {Ref("New_value", P::kDouble)}),
       Help(M("value", K::kPut, 0x68030004, {Ref("New_value", P::kDouble)}), help),
       M("TextValue", K::kGet, 0x68030002, {}, P::kText),
       M("DecimalPlaces", K::kGet, 0x68030001, {}, P::kInteger),
       M("DecimalPlaces", K::kPut, 0x68030001, {Val("New_DecimalPlaces", P::kInteger)}),
       M("Readonly", K::kGet, 0x68030000, {}, P::kBool),
       M("Readonly", K::kPut, 0x68030000, {Val("New_ReadOnly", P::kBool)})});
}

std::vector<InterfaceInfo> EventInterfaces() {
  const MemberInfo change = M("ConnectionChange", K::kMethod, 1, {Ref("Connected", P::kBool)});
  return {Interface("__Zebrin", {change}, true),
          Interface("__Tarvik3", {}, true),
          Interface("__Ulmora27", {change}, true),
          Interface("__UlmoraNearestPoints", {}, true),
          Interface("__UlmoraSurfaceInfo", {}, true),
          Interface("__ValueBox", {M("ValueChanged", K::kMethod, 1)}, true)};
}

ClassInfo Control(const std::string& name, uint32_t misc, int32_t bitmap) {
  return {name, GuidOf(name), true, "_" + name, "__" + name, misc, bitmap};
}

EnumInfo Enum(const std::string& name, std::vector<std::pair<std::string, int32_t>> members) {
  return {name, GuidOf(name), std::move(members)};
}

TypeLibrary Build() {
  TypeLibrary lib;
  lib.name = "QorvelOLE";
  lib.guid = GuidOf("Library");
  lib.help_string = "Halvern Qorvel OLE control";
  lib.help_file = "QorvelOCX.chm";
  lib.classes = {Control("Zebrin", 0x24591, 30005),
                 Control("Tarvik3", 0x24591, 30004),
                 Control("Ulmora27", 0x24591, 30003),
                 Control("UlmoraNearestPoints", 0x20591, 30002),
                 Control("UlmoraSurfaceInfo", 0x20591, 30001),
                 Control("ValueBox", 0x20191, 30000),
                 {"PointClass", GuidOf("PointClass"), false, "_PointClass", "", 0, 0}};
  lib.interfaces = {Zebrin(),      Tarvik3(),  Ulmora27(),  NearestPoints(),
                    SurfaceInfo(), ValueBox(), PointClass()};
  for (InterfaceInfo& events : EventInterfaces()) lib.interfaces.push_back(std::move(events));
  lib.enums = {
      Enum("ZebrinConnectType", {{"qvDoNotStartZebrin", 0}, {"qvStartZebrin", 1}}),
      Enum("TarvikConnectType",
           {{"qvDoNotStartTarvik", 0}, {"qvStartTarvik", 1}, {"qvStartNewTarvik", 2}}),
      Enum("WindowStateType",
           {{"qvNormalise", 1}, {"qvMaximise", 2}, {"qvMinimise", 4}, {"qvForeground", 8}}),
      Enum("AxisType", {{"qvxmin", 1},
                        {"qvxmax", 2},
                        {"qvymin", 3},
                        {"qvymax", 4},
                        {"qvzmin", 5},
                        {"qvzmax", 6}}),
      Enum("ToolTypeEnum", {{"qvEndMill", 0},
                            {"qvBallNosed", 1},
                            {"qvTipRadiused", 2},
                            {"qvTaperedSpherical", 3},
                            {"qvTaperedTipped", 4},
                            {"qvTippedDisc", 5},
                            {"qvOffCentre", 6},
                            {"qvDrill", 7}}),
      Enum("UnitsType", {{"qvMM", 0}, {"qvINCHES", 1}}),
      Enum("DataTypeType", {{"SingleValue", 0}, {"VectorArray", 1}}),
      Enum("CoordinateMode", {{"Incremental", 0}, {"Absolute", 1}, {"UsePrevious", 2}}),
      Enum("qvEntityType", {{"qvTypeSurface", 1},
                            {"qvTypeSolid", 2},
                            {"qvTypeArc", 4},
                            {"qvTypeLine", 8},
                            {"qvTypeCurve", 16},
                            {"qvTypeCompCurve", 32},
                            {"qvTypePoint", 64},
                            {"qvTypeWorkplane", 128},
                            {"qvTypeWireframe", 60},
                            {"qvTypeModel", 3}})};
  lib.version_block = {{"FileVersion", "1.00.0005"},
                       {"ProductVersion", "1.00.0005"},
                       {"ProductName", "Halvern Qorvel OLE Controls"},
                       {"Comments", "Supports versions....  Tarvik3  Ulmora2700  Zebrin2300"},
                       {"OLESelfRegister", ""}};
  return lib;
}

template <class T>
const T* FindByName(const std::vector<T>& items, std::string_view name) {
  for (const T& item : items) {
    if (EqualsNoCase(item.name, name)) return &item;
  }
  return nullptr;
}

}  // namespace

VarType AutomationType(ParamType type) {
  switch (type) {
    case ParamType::kNone:
      return VarType::kEmpty;
    case ParamType::kInteger:
      return VarType::kInteger;
    case ParamType::kLong:
    case ParamType::kEnum:
      return VarType::kLong;
    case ParamType::kDouble:
    case ParamType::kDoubleArray:
      return VarType::kDouble;
    case ParamType::kText:
    case ParamType::kTextArray:
      return VarType::kText;
    case ParamType::kBool:
      return VarType::kBool;
    case ParamType::kVariant:
      return VarType::kVariant;
    case ParamType::kCollection:
      return VarType::kObject;
  }
  return VarType::kEmpty;
}

uint16_t AutomationVt(const ParamInfo& param) {
  auto vt = static_cast<uint16_t>(AutomationType(param.type));
  if (param.type == ParamType::kTextArray || param.type == ParamType::kDoubleArray) {
    vt |= kArrayFlag;
  }
  if (param.by_ref || param.retval) vt |= kByRefFlag;
  return vt;
}

uint16_t ParamFlags(const ParamInfo& param) {
  if (param.retval) return kParamFlagOut | kParamFlagRetval;
  uint16_t flags = kParamFlagIn;
  if (param.by_ref) flags |= kParamFlagOut;
  if (param.optional) flags |= kParamFlagOptional;
  if (param.has_default) flags |= kParamFlagHasDefault;
  return flags;
}

ParamInfo MemberInfo::retval_param() const {
  ParamInfo p;
  p.type = result;
  p.enum_name = result_enum;
  p.retval = true;
  return p;
}

uint16_t InterfaceInfo::type_flags() const {
  const uint16_t common = kTypeFlagHidden | kTypeFlagNonExtensible | kTypeFlagDispatchable;
  return events ? common : common | kTypeFlagDual | kTypeFlagOleAutomation;
}

uint16_t ClassInfo::type_flags() const { return control ? kTypeFlagControl : 0; }

std::vector<ImplementedInterface> ClassInfo::implemented_interfaces() const {
  std::vector<ImplementedInterface> list = {{default_interface, kImplTypeFlagDefault}};
  if (!event_interface.empty()) {
    list.push_back({event_interface, kImplTypeFlagDefault | kImplTypeFlagSource});
  }
  return list;
}

std::string ToString(const Guid& g) {
  char text[40];
  std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", g.data1,
                g.data2, g.data3, g.data4[0], g.data4[1], g.data4[2], g.data4[3], g.data4[4],
                g.data4[5], g.data4[6], g.data4[7]);
  return text;
}

const TypeLibrary& TheTypeLibrary() {
  static const TypeLibrary* library = new TypeLibrary(Build());
  return *library;
}

const ClassInfo* TypeLibrary::FindClass(std::string_view name) const {
  return FindByName(classes, name);
}
const InterfaceInfo* TypeLibrary::FindInterface(std::string_view name) const {
  return FindByName(interfaces, name);
}
const EnumInfo* TypeLibrary::FindEnum(std::string_view name) const {
  return FindByName(enums, name);
}

const MemberInfo* FindMember(const InterfaceInfo& iface, std::string_view name, MemberKind kind) {
  for (const MemberInfo& m : iface.members) {
    if (m.kind == kind && EqualsNoCase(m.name, name)) return &m;
  }
  return nullptr;
}

const MemberInfo* FindMember(const InterfaceInfo& iface, int32_t dispid, MemberKind kind) {
  for (const MemberInfo& m : iface.members) {
    if (m.kind == kind && m.dispid == dispid) return &m;
  }
  return nullptr;
}

}  // namespace qorvel
