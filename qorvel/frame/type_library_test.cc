#include "qorvel/frame/type_library.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

namespace qorvel {
namespace {

using K = MemberKind;

// A member's published signature in one line: each parameter as "[ref ][opt ]Type Name[=default]",
// then " -> Type" for a result. Names matter: clients may pass arguments by name.
std::string TypeName(ParamType type, const std::string& enum_name) {
  switch (type) {
    case ParamType::kNone:
      return "none";
    case ParamType::kInteger:
      return "short";
    case ParamType::kLong:
      return "long";
    case ParamType::kDouble:
      return "double";
    case ParamType::kText:
      return "text";
    case ParamType::kBool:
      return "bool";
    case ParamType::kVariant:
      return "variant";
    case ParamType::kEnum:
      return enum_name;
    case ParamType::kCollection:
      return "Collection";
    case ParamType::kTextArray:
      return "text[]";
    case ParamType::kDoubleArray:
      return "double[]";
  }
  return "?";
}

std::string Signature(const MemberInfo& m) {
  std::string out;
  for (const ParamInfo& p : m.params) {
    if (!out.empty()) out += ", ";
    if (p.by_ref) out += "ref ";
    if (p.optional) out += "opt ";
    out += TypeName(p.type, p.enum_name) + " " + p.name;
    if (p.has_default) {
      out += "=" + (p.type == ParamType::kText ? "'" + p.default_text + "'"
                                               : std::to_string(int(p.default_number)));
    }
  }
  if (m.result != ParamType::kNone) out += " -> " + TypeName(m.result, m.result_enum);
  return out;
}

struct Row {
  const char* name;
  K kind;
  int32_t dispid;
  std::string signature;
};

void ExpectRows(const char* iface_name, const std::vector<Row>& rows) {
  const InterfaceInfo* iface = TheTypeLibrary().FindInterface(iface_name);
  ASSERT_NE(iface, nullptr) << iface_name;
  ASSERT_EQ(iface->members.size(), rows.size()) << iface_name;
  for (size_t slot = 0; slot < rows.size(); ++slot) {
    const MemberInfo& m = iface->members[slot];
    SCOPED_TRACE(std::string(iface_name) + " slot " + std::to_string(slot));
    EXPECT_EQ(m.name, rows[slot].name);
    EXPECT_EQ(m.kind, rows[slot].kind) << m.name;
    EXPECT_EQ(m.dispid, rows[slot].dispid) << m.name;
    EXPECT_EQ(Signature(m), rows[slot].signature) << m.name;
  }
}

TEST(TypeLibraryTest, ZebrinRows) {
  ExpectRows("_Zebrin",
             {{"Connect", K::kMethod, 0x60030009, "ref opt ZebrinConnectType ConnectionStatus"},
              {"Execute", K::kMethod, 0x6003000a, "text command"},
              {"ExecuteEx", K::kMethod, 0x6003000b, "text command -> text"},
              {"Disconnect", K::kMethod, 0x6003000c, ""},
              {"ExitZebrin", K::kMethod, 0x6003000d, ""},
              {"version", K::kGet, 0x68030005, " -> short"},
              {"Connected", K::kGet, 0x68030004, " -> bool"},
              {"Busy", K::kGet, 0x68030003, " -> bool"},
              {"WindowState", K::kGet, 0x68030002, " -> WindowStateType"},
              {"WindowState", K::kPut, 0x68030002, "WindowStateType NewState"},
              {"InformationWindow", K::kPut, 0x68030001, "bool onoff"},
              {"Visible", K::kGet, 0x68030000, " -> bool"},
              {"Visible", K::kPut, 0x68030000, "bool yesno"}});
}

TEST(TypeLibraryTest, Tarvik3Rows) {
  std::string locks = "double offset";
  for (const char* lock : {"XminLock", "XmaxLock", "YminLock", "YmaxLock", "ZminLock", "ZmaxLock"})
    locks += std::string(", ref opt bool ") + lock + "=0";
  auto list = [](const char* name, int32_t dispid, const char* list, const char* active) {
    return Row{name, K::kMethod, dispid,
               std::string("ref Collection ") + list + ", ref long " + active};
  };
  ExpectRows("_Tarvik3",
             {{"Connect", K::kMethod, 0x6003000e, "ref opt TarvikConnectType ConnectionStatus"},
              {"Execute", K::kMethod, 0x6003000f, "text command"},
              {"ExecuteEx", K::kMethod, 0x60030010, "text command -> text"},
              {"Disconnect", K::kMethod, 0x60030011, ""},
              {"ExitTarvik", K::kMethod, 0x60030012, ""},
              {"StoreBlock", K::kMethod, 0x60030013, ""},
              {"StoreModel", K::kMethod, 0x60030014, ""},
              {"ResizeBlock", K::kMethod, 0x60030015, locks},
              {"SetBlock", K::kMethod, 0x60030016, "AxisType axis, double value"},
              {"DefineTool", K::kMethod, 0x60030017,
               "ToolTypeEnum ToolType, double Diameter, ref opt double Length=-1, "
               "ref opt double TipRad=-1, ref opt double Angle=-1, ref opt double Chamfer=-1, "
               "ref opt double XOffset=0, ref opt double YOffset=0, ref opt long ToolNumber=-1, "
               "ref opt text ToolName=''"},
              {"version", K::kGet, 0x6803000a, " -> short"},
              {"Connected", K::kGet, 0x68030009, " -> bool"},
              {"Busy", K::kGet, 0x68030008, " -> bool"},
              {"WindowState", K::kGet, 0x68030007, " -> WindowStateType"},
              {"WindowState", K::kPut, 0x68030007, "WindowStateType NewState"},
              {"BlockSize", K::kGet, 0x68030006, "AxisType axis -> double"},
              {"ModelSize", K::kGet, 0x68030005, "AxisType axis -> double"},
              {"Units", K::kPut, 0x68030004, "UnitsType useunits"},
              {"Units", K::kGet, 0x68030004, " -> UnitsType"},
              {"IsModelLoaded", K::kGet, 0x68030003, " -> bool"},
              {"BlockDefined", K::kGet, 0x68030002, " -> bool"},
              {"Dialogs", K::kPut, 0x68030001, "bool onoff"},
              {"Dialogs", K::kGet, 0x68030001, " -> bool"},
              {"Visible", K::kGet, 0x68030000, " -> bool"},
              {"Visible", K::kPut, 0x68030000, "bool yesno"},
              list("GetToolpathList", 0x60030019, "ToolpathList", "ActiveToolpath"),
              list("GetPatternList", 0x6003001a, "PatternList", "ActivePattern"),
              list("GetWorkplaneList", 0x6003001b, "WorkplaneList", "ActiveWorkplane"),
              {"SizeToolpath", K::kMethod, 0x6003001c,
               "ref text ToolpathName, ref double XMIN, ref double XMAX, ref double YMIN, "
               "ref double YMAX, ref double ZMIN, ref double ZMAX"}});
}

TEST(TypeLibraryTest, Ulmora27Rows) {
  const std::string entities = "ref text[] Names, ref text[] Types, ref long number";
  ExpectRows("_Ulmora27",
             {{"Connect", K::kMethod, 0x6003000f, ""},
              {"Execute", K::kMethod, 0x60030010, "text command"},
              {"Disconnect", K::kMethod, 0x60030011, ""},
              {"ExitUlmora", K::kMethod, 0x60030012, ""},
              {"version", K::kGet, 0x6803000a, " -> short"},
              {"Connected", K::kGet, 0x68030009, " -> bool"},
              {"Busy", K::kGet, 0x68030008, " -> bool"},
              {"WindowState", K::kGet, 0x68030007, " -> WindowStateType"},
              {"WindowState", K::kPut, 0x68030007, "WindowStateType NewState"},
              {"Dialogs", K::kPut, 0x68030006, "bool onoff"},
              {"Evaluate", K::kMethod, 0x60030013, "ref text ObjInfo -> variant"},
              {"Visible", K::kGet, 0x68030005, " -> bool"},
              {"Visible", K::kPut, 0x68030005, "bool yesno"},
              {"ClearBatchBuffer", K::kMethod, 0x60030014, ""},
              {"AddBatchCommand", K::kMethod, 0x60030015, "ref text NewCommand"},
              {"ProcessBatch", K::kMethod, 0x60030016, " -> bool"},
              {"ItemsSelectedCount", K::kGet, 0x68030004, " -> long"},
              {"ItemsCreatedCount", K::kGet, 0x68030003, " -> long"},
              {"ItemsModifiedCount", K::kGet, 0x68030002, " -> long"},
              {"GetFilteredSelection", K::kMethod, 0x60030017, entities + ", ref long FilterFlag"},
              {"GetSelectedEntities", K::kMethod, 0x60030018, entities},
              {"GetCreatedEntities", K::kMethod, 0x60030019, entities},
              {"GetModifiedEntities", K::kMethod, 0x6003001a, entities},
              {"StoreData", K::kMethod, 0x6003001c, "text ObjectID"},
              {"StoredData", K::kGet, 0x68030001, " -> variant"},
              {"StoreType", K::kGet, 0x68030000, " -> DataTypeType"}});
}

TEST(TypeLibraryTest, NearestPointsRows) {
  ExpectRows("_UlmoraNearestPoints",
             {{"GetNearestPoints", K::kMethod, 0x60030004,
               "ref text SurfaceName, ref double[] InputX, ref double[] InputY, "
               "ref double[] InputZ, ref double[] OutputX, ref double[] OutputY, "
               "ref double[] OutputZ"}});
}

TEST(TypeLibraryTest, SurfaceInfoRows) {
  const std::string at = "ref long Lateral, ref long Longitudinal";
  const std::string vec = at + ", ref double i, ref double J, ref double K, ref double Magnitude";
  const std::string point = at + ", ref double X, ref double Y, ref double Z";
  const std::pair<const char*, int32_t> flags[] = {
      {"UDIRAfter_Free", 0x68030009}, {"UDIRBefore_Free", 0x68030008},
      {"TDIRAfter_Free", 0x68030007}, {"TDIRBefore_Free", 0x68030006},
      {"UMAGAfter_Free", 0x68030005}, {"UMAGBefore_Free", 0x68030004},
      {"TMAGAfter_Free", 0x68030003}, {"TMAGBefore_Free", 0x68030002}};
  std::vector<Row> rows = {{"Active", K::kGet, 0x6803000c, " -> bool"},
                           {"Reset", K::kMethod, 0x60030010, ""},
                           {"GetSurface", K::kMethod, 0x60030011, "ref text SurfaceName -> bool"},
                           {"UpdateSurface", K::kMethod, 0x60030012, " -> bool"},
                           {"NumLats", K::kGet, 0x6803000b, " -> long"},
                           {"NumLongs", K::kGet, 0x6803000a, " -> long"}};
  for (const auto& [name, dispid] : flags) rows.push_back({name, K::kGet, dispid, at + " -> bool"});
  for (const auto& [name, dispid] : flags) {
    rows.push_back({name, K::kPut, dispid, at + ", ref bool NewFlag"});
  }
  const char* vectors[] = {"GetUVECBefore", "GetUVECAfter", "GetTVECBefore", "GetTVECAfter",
                           "SetUVECBefore", "SetUVECAfter", "SetTVECBefore", "SetTVECAfter"};
  for (int i = 0; i < 8; ++i) rows.push_back({vectors[i], K::kMethod, 0x60030013 + i, vec});
  rows.push_back({"GetPoint", K::kMethod, 0x6003001b, point});
  rows.push_back({"SetPoint", K::kMethod, 0x6003001c, point});
  rows.push_back({"CheckParams", K::kMethod, 0x6003001d, at + " -> bool"});
  rows.push_back({"world", K::kGet, 0x68030001, " -> bool"});
  rows.push_back({"world", K::kPut, 0x68030001, "ref bool NewFlag"});
  rows.push_back({"SurfaceName", K::kGet, 0x68030000, " -> text"});
  ExpectRows("_UlmoraSurfaceInfo", rows);
}

TEST(TypeLibraryTest, PointClassPutsBeforeGets) {
  ExpectRows("_PointClass", {{"X", K::kPut, 0x68030002, "ref double XCoord"},
                             {"Y", K::kPut, 0x68030001, "ref double YCoord"},
                             {"Z", K::kPut, 0x68030000, "ref double ZCoord"},
                             {"X", K::kGet, 0x68030002, " -> double"},
                             {"Y", K::kGet, 0x68030001, " -> double"},
                             {"Z", K::kGet, 0x68030000, " -> double"}});
}

TEST(TypeLibraryTest, ValueBoxRows) {
  ExpectRows("_ValueBox", {{"value", K::kGet, 0x68030004, " -> double"},
                           {"SetValue", K::kPut, 0x68030003, "ref double New_value"},
                           {"value", K::kPut, 0x68030004, "ref double New_value"},
                           {"TextValue", K::kGet, 0x68030002, " -> text"},
                           {"DecimalPlaces", K::kGet, 0x68030001, " -> short"},
                           {"DecimalPlaces", K::kPut, 0x68030001, "short New_DecimalPlaces"},
                           {"Readonly", K::kGet, 0x68030000, " -> bool"},
                           {"Readonly", K::kPut, 0x68030000, "bool New_ReadOnly"}});
}

TEST(TypeLibraryTest, EventInterfaces) {
  ExpectRows("__Zebrin", {{"ConnectionChange", K::kMethod, 1, "ref bool Connected"}});
  ExpectRows("__Ulmora27", {{"ConnectionChange", K::kMethod, 1, "ref bool Connected"}});
  ExpectRows("__ValueBox", {{"ValueChanged", K::kMethod, 1, ""}});
  ExpectRows("__Tarvik3", {});
  ExpectRows("__UlmoraNearestPoints", {});
  ExpectRows("__UlmoraSurfaceInfo", {});
  int events = 0;
  for (const InterfaceInfo& iface : TheTypeLibrary().interfaces) {
    EXPECT_EQ(iface.events, iface.name.starts_with("__")) << iface.name;
    events += iface.events;
  }
  EXPECT_EQ(events, 6);
}

TEST(TypeLibraryTest, OnlyWindowStateAndUnitsAreHidden) {
  std::set<std::string> hidden;
  for (const InterfaceInfo& iface : TheTypeLibrary().interfaces) {
    for (const MemberInfo& m : iface.members) {
      if (!m.browsable)
        hidden.insert(iface.name + "." + m.name + (m.kind == K::kGet ? "/get" : "/put"));
    }
  }
  EXPECT_EQ(hidden,
            (std::set<std::string>{"_Tarvik3.Units/get", "_Tarvik3.Units/put",
                                   "_Tarvik3.WindowState/get", "_Tarvik3.WindowState/put",
                                   "_Ulmora27.WindowState/get", "_Ulmora27.WindowState/put"}));
}

TEST(TypeLibraryTest, HelpStringsExactlyWherePublished) {
  const std::string window = "Returns or sets the window state of the Tarvik window.";
  const std::string value = "Enter or retrieve the value displayed in the ValueBox";
  const std::set<std::tuple<std::string, std::string, K, std::string>> expected = {
      {"_Tarvik3", "Connect", K::kMethod,
       "Used to connect to Tarvik, if True is passed, a new session will be run if a connection "
       "cannot be made immediately."},
      {"_Tarvik3", "Execute", K::kMethod, "Use to execute a command in Tarvik."},
      {"_Tarvik3", "ExecuteEx", K::kMethod,
       "Use to execute a command in Tarvik, and it returns any message which appear in the "
       "command window as a result."},
      {"_Tarvik3", "Disconnect", K::kMethod,
       "Used to disconnect from the current Tarvik session.  This does not close down Tarvik."},
      {"_Tarvik3", "ExitTarvik", K::kMethod, "Use to Quit Tarvik"},
      {"_Tarvik3", "version", K::kGet,
       "Returns the version number of the currently connected Tarvik session.  Returns 0 if no "
       "conneciton is made."},
      {"_Tarvik3", "Connected", K::kGet, "Returns wether your are connected to Tarvik."},
      {"_Tarvik3", "Busy", K::kGet,
       "Returns True or False depending upon wether Tarvik is currently processing."},
      {"_Tarvik3", "WindowState", K::kGet, window},
      {"_Tarvik3", "WindowState", K::kPut, window},
      {"_Tarvik3", "IsModelLoaded", K::kGet,
       "Returns True or False depending upon wether a model is loaded into Tarvik.  If Tarvik is "
       "not running, it returns False."},
      {"_ValueBox", "value", K::kGet, value},
      {"_ValueBox", "value", K::kPut, value}};
  std::set<std::tuple<std::string, std::string, K, std::string>> found;
  for (const InterfaceInfo& iface : TheTypeLibrary().interfaces) {
    for (const MemberInfo& m : iface.members) {
      if (!m.help.empty()) found.insert({iface.name, m.name, m.kind, m.help});
    }
  }
  EXPECT_EQ(found, expected);
}

TEST(TypeLibraryTest, LibraryAttributesAndVersionBlock) {
  const TypeLibrary& lib = TheTypeLibrary();
  EXPECT_EQ(lib.name, "QorvelOLE");
  EXPECT_EQ(lib.help_string, "Halvern Qorvel OLE control");
  EXPECT_EQ(lib.help_file, "QorvelOCX.chm");
  EXPECT_EQ(lib.major_version, 1);
  EXPECT_EQ(lib.minor_version, 0);
  EXPECT_EQ(lib.locale, 0x409u);
  EXPECT_TRUE(lib.control_library);
  EXPECT_EQ(lib.classes.size(), 7u);
  EXPECT_EQ(lib.interfaces.size(), 13u);
  EXPECT_EQ(lib.enums.size(), 9u);
  EXPECT_EQ(lib.type_count(), 29);
  using Entry = std::pair<std::string, std::string>;
  EXPECT_EQ(
      lib.version_block,
      (std::vector<Entry>{{"FileVersion", "1.00.0005"},
                          {"ProductVersion", "1.00.0005"},
                          {"ProductName", "Halvern Qorvel OLE Controls"},
                          {"Comments", "Supports versions....  Tarvik3  Ulmora2700  Zebrin2300"},
                          {"OLESelfRegister", ""}}));
}

TEST(TypeLibraryTest, ClassesWithRegistrationData) {
  const TypeLibrary& lib = TheTypeLibrary();
  const std::tuple<const char*, bool, uint32_t, int32_t, const char*, const char*> classes[] = {
      {"Zebrin", true, 0x24591, 30005, "_Zebrin", "__Zebrin"},
      {"Tarvik3", true, 0x24591, 30004, "_Tarvik3", "__Tarvik3"},
      {"Ulmora27", true, 0x24591, 30003, "_Ulmora27", "__Ulmora27"},
      {"UlmoraNearestPoints", true, 0x20591, 30002, "_UlmoraNearestPoints",
       "__UlmoraNearestPoints"},
      {"UlmoraSurfaceInfo", true, 0x20591, 30001, "_UlmoraSurfaceInfo", "__UlmoraSurfaceInfo"},
      {"ValueBox", true, 0x20191, 30000, "_ValueBox", "__ValueBox"},
      {"PointClass", false, 0, 0, "_PointClass", ""}};
  ASSERT_EQ(lib.classes.size(), std::size(classes));
  for (size_t i = 0; i < std::size(classes); ++i) {
    const auto& [name, control, misc, bitmap, iface, events] = classes[i];
    const ClassInfo& c = lib.classes[i];
    EXPECT_EQ(c.name, name);
    EXPECT_EQ(c.control, control) << name;
    EXPECT_EQ(c.misc_status, misc) << name;
    EXPECT_EQ(c.toolbox_bitmap, bitmap) << name;
    EXPECT_EQ(c.default_interface, iface) << name;
    EXPECT_EQ(c.event_interface, events) << name;
    EXPECT_EQ(lib.FindClass(name), &c);
    EXPECT_NE(lib.FindInterface(iface), nullptr) << name;
  }
  EXPECT_EQ(lib.FindClass("tarvik3"), &lib.classes[1]);
  EXPECT_EQ(lib.FindClass("Tarvik"), nullptr);
}

TEST(TypeLibraryTest, EnumerationsWithValuesAndMemberIds) {
  using Members = std::vector<std::pair<std::string, int32_t>>;
  const std::pair<const char*, Members> enums[] = {
      {"ZebrinConnectType", {{"qvDoNotStartZebrin", 0}, {"qvStartZebrin", 1}}},
      {"TarvikConnectType",
       {{"qvDoNotStartTarvik", 0}, {"qvStartTarvik", 1}, {"qvStartNewTarvik", 2}}},
      {"WindowStateType",
       {{"qvNormalise", 1}, {"qvMaximise", 2}, {"qvMinimise", 4}, {"qvForeground", 8}}},
      {"AxisType",
       {{"qvxmin", 1}, {"qvxmax", 2}, {"qvymin", 3}, {"qvymax", 4}, {"qvzmin", 5}, {"qvzmax", 6}}},
      {"ToolTypeEnum",
       {{"qvEndMill", 0},
        {"qvBallNosed", 1},
        {"qvTipRadiused", 2},
        {"qvTaperedSpherical", 3},
        {"qvTaperedTipped", 4},
        {"qvTippedDisc", 5},
        {"qvOffCentre", 6},
        {"qvDrill", 7}}},
      {"UnitsType", {{"qvMM", 0}, {"qvINCHES", 1}}},
      {"DataTypeType", {{"SingleValue", 0}, {"VectorArray", 1}}},
      {"CoordinateMode", {{"Incremental", 0}, {"Absolute", 1}, {"UsePrevious", 2}}},
      {"qvEntityType",
       {{"qvTypeSurface", 1},
        {"qvTypeSolid", 2},
        {"qvTypeArc", 4},
        {"qvTypeLine", 8},
        {"qvTypeCurve", 16},
        {"qvTypeCompCurve", 32},
        {"qvTypePoint", 64},
        {"qvTypeWorkplane", 128},
        {"qvTypeWireframe", 60},
        {"qvTypeModel", 3}}}};
  const TypeLibrary& lib = TheTypeLibrary();
  ASSERT_EQ(lib.enums.size(), std::size(enums));
  for (size_t i = 0; i < std::size(enums); ++i) {
    EXPECT_EQ(lib.enums[i].name, enums[i].first);
    EXPECT_EQ(lib.enums[i].members, enums[i].second) << enums[i].first;
  }
  EXPECT_EQ(EnumMemberId(0), 0x40000000);
  EXPECT_EQ(EnumMemberId(9), 0x40000009);
}

TEST(TypeLibraryTest, EnumParametersNameTheirEnumeration) {
  // Every enumeration a parameter or result names is one of the library's, and none is
  // CoordinateMode, which is published but used by no member.
  const TypeLibrary& lib = TheTypeLibrary();
  for (const InterfaceInfo& iface : lib.interfaces) {
    for (const MemberInfo& m : iface.members) {
      for (const ParamInfo& p : m.params) {
        EXPECT_EQ(p.type == ParamType::kEnum, !p.enum_name.empty()) << m.name << "." << p.name;
        if (p.type == ParamType::kEnum) {
          EXPECT_NE(lib.FindEnum(p.enum_name), nullptr);
        }
        EXPECT_NE(p.enum_name, "CoordinateMode");
        EXPECT_TRUE(!p.has_default || p.optional) << m.name << "." << p.name;
      }
      if (m.result == ParamType::kEnum) {
        EXPECT_NE(lib.FindEnum(m.result_enum), nullptr);
      }
      if (m.kind == K::kPut) {
        EXPECT_FALSE(m.params.empty()) << iface.name << "." << m.name;
      }
    }
  }
}

TEST(TypeLibraryTest, FindMemberByNameOrDispid) {
  const InterfaceInfo& tarvik = *TheTypeLibrary().FindInterface("_TARVIK3");
  EXPECT_EQ(FindMember(tarvik, "units", K::kPut), &tarvik.members[17]);
  EXPECT_EQ(FindMember(tarvik, "Units", K::kGet), &tarvik.members[18]);
  EXPECT_EQ(FindMember(tarvik, 0x68030004, K::kGet), &tarvik.members[18]);
  EXPECT_EQ(FindMember(tarvik, "StoreBlock", K::kGet), nullptr);
  EXPECT_EQ(FindMember(tarvik, 0x60030018, K::kMethod), nullptr);  // a gap in the numbers
  const InterfaceInfo& zebrin = *TheTypeLibrary().FindInterface("_Zebrin");
  EXPECT_EQ(FindMember(zebrin, "InformationWindow", K::kGet), nullptr);
  EXPECT_EQ(FindMember(*TheTypeLibrary().FindInterface("_Ulmora27"), "Dialogs", K::kGet), nullptr);
}

TEST(TypeLibraryTest, IdentifiersAreDistinctAndWellFormed) {
  const TypeLibrary& lib = TheTypeLibrary();
  std::set<std::string> ids = {ToString(lib.guid)};
  for (const auto& c : lib.classes) ids.insert(ToString(c.guid));
  for (const auto& i : lib.interfaces) ids.insert(ToString(i.guid));
  for (const auto& e : lib.enums) ids.insert(ToString(e.guid));
  EXPECT_EQ(ids.size(), 30u);  // the library and its 29 types
  EXPECT_EQ(ToString(lib.guid), "{E34DE816-BD5F-464A-A453-1D45085EAA88}");
  EXPECT_EQ(ToString(Guid{0x1, 0x2, 0x3, {0xa, 0xb, 0, 0, 0, 0, 0, 0xff}}),
            "{00000001-0002-0003-0A0B-0000000000FF}");
}

}  // namespace
}  // namespace qorvel
