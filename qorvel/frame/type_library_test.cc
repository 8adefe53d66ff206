#include "qorvel/frame/type_library.h"

#include <gtest/gtest.h>

#include <set>

namespace qorvel {
namespace {

using K = MemberKind;

// One published row: name, kind, DISPID, and per parameter "v" (by value), "r" (by reference),
// "o" (optional by reference, with its default if it has one).
struct Row {
  const char* name;
  K kind;
  int32_t dispid;
  std::vector<std::string> modes;
};

std::vector<std::string> Modes(const MemberInfo& m) {
  std::vector<std::string> out;
  for (const ParamInfo& p : m.params) {
    std::string mode = p.optional ? "o" : p.by_ref ? "r" : "v";
    if (p.has_default) {
      mode += p.type == ParamType::kText ? "'" + p.default_text + "'"
                                         : std::to_string(static_cast<int>(p.default_number));
    }
    out.push_back(mode);
  }
  return out;
}

void ExpectRows(const char* iface_name, const std::vector<Row>& rows) {
  const InterfaceInfo* iface = TheTypeLibrary().FindInterface(iface_name);
  ASSERT_NE(iface, nullptr);
  ASSERT_EQ(iface->members.size(), rows.size()) << iface_name;
  for (size_t slot = 0; slot < rows.size(); ++slot) {
    const MemberInfo& m = iface->members[slot];
    EXPECT_EQ(m.name, rows[slot].name) << iface_name << " slot " << slot;
    EXPECT_EQ(m.kind, rows[slot].kind) << m.name;
    EXPECT_EQ(m.dispid, rows[slot].dispid) << m.name;
    EXPECT_EQ(Modes(m), rows[slot].modes) << m.name;
  }
}

TEST(TypeLibraryTest, ZebrinRowsInSlotOrder) {
  ExpectRows("_Zebrin", {{"Connect", K::kMethod, 0x60030009, {"o"}},
                         {"Execute", K::kMethod, 0x6003000a, {"v"}},
                         {"ExecuteEx", K::kMethod, 0x6003000b, {"v"}},
                         {"Disconnect", K::kMethod, 0x6003000c, {}},
                         {"ExitZebrin", K::kMethod, 0x6003000d, {}},
                         {"version", K::kGet, 0x68030005, {}},
                         {"Connected", K::kGet, 0x68030004, {}},
                         {"Busy", K::kGet, 0x68030003, {}},
                         {"WindowState", K::kGet, 0x68030002, {}},
                         {"WindowState", K::kPut, 0x68030002, {"v"}},
                         {"InformationWindow", K::kPut, 0x68030001, {"v"}},
                         {"Visible", K::kGet, 0x68030000, {}},
                         {"Visible", K::kPut, 0x68030000, {"v"}}});
}

TEST(TypeLibraryTest, Tarvik3RowsInSlotOrder) {
  const std::vector<std::string> locks(6, "o0");
  std::vector<std::string> resize = {"v"};
  resize.insert(resize.end(), locks.begin(), locks.end());
  ExpectRows("_Tarvik3",
             {{"Connect", K::kMethod, 0x6003000e, {"o"}},
              {"Execute", K::kMethod, 0x6003000f, {"v"}},
              {"ExecuteEx", K::kMethod, 0x60030010, {"v"}},
              {"Disconnect", K::kMethod, 0x60030011, {}},
              {"ExitTarvik", K::kMethod, 0x60030012, {}},
              {"StoreBlock", K::kMethod, 0x60030013, {}},
              {"StoreModel", K::kMethod, 0x60030014, {}},
              {"ResizeBlock", K::kMethod, 0x60030015, resize},
              {"SetBlock", K::kMethod, 0x60030016, {"v", "v"}},
              {"DefineTool",
               K::kMethod,
               0x60030017,
               {"v", "v", "o-1", "o-1", "o-1", "o-1", "o0", "o0", "o-1", "o''"}},
              {"version", K::kGet, 0x6803000a, {}},
              {"Connected", K::kGet, 0x68030009, {}},
              {"Busy", K::kGet, 0x68030008, {}},
              {"WindowState", K::kGet, 0x68030007, {}},
              {"WindowState", K::kPut, 0x68030007, {"v"}},
              {"BlockSize", K::kGet, 0x68030006, {"v"}},
              {"ModelSize", K::kGet, 0x68030005, {"v"}},
              {"Units", K::kPut, 0x68030004, {"v"}},
              {"Units", K::kGet, 0x68030004, {}},
              {"IsModelLoaded", K::kGet, 0x68030003, {}},
              {"BlockDefined", K::kGet, 0x68030002, {}},
              {"Dialogs", K::kPut, 0x68030001, {"v"}},
              {"Dialogs", K::kGet, 0x68030001, {}},
              {"Visible", K::kGet, 0x68030000, {}},
              {"Visible", K::kPut, 0x68030000, {"v"}},
              {"GetToolpathList", K::kMethod, 0x60030019, {"r", "r"}},
              {"GetPatternList", K::kMethod, 0x6003001a, {"r", "r"}},
              {"GetWorkplaneList", K::kMethod, 0x6003001b, {"r", "r"}},
              {"SizeToolpath", K::kMethod, 0x6003001c, {"r", "r", "r", "r", "r", "r", "r"}}});
}

TEST(TypeLibraryTest, PutOnlyMembersAndOrderQuirks) {
  const TypeLibrary& lib = TheTypeLibrary();
  const InterfaceInfo& point = *lib.FindInterface("_PointClass");
  for (size_t slot = 0; slot < 6; ++slot) {
    EXPECT_EQ(point.members[slot].kind, slot < 3 ? K::kPut : K::kGet);
  }
  EXPECT_EQ(FindMember(*lib.FindInterface("_Zebrin"), "InformationWindow", K::kGet), nullptr);
  EXPECT_EQ(FindMember(*lib.FindInterface("_Ulmora27"), "Dialogs", K::kGet), nullptr);
  EXPECT_EQ(FindMember(*lib.FindInterface("_ValueBox"), "SetValue", K::kGet), nullptr);
  const MemberInfo* free_put =
      FindMember(*lib.FindInterface("_UlmoraSurfaceInfo"), "udirafter_free", K::kPut);
  ASSERT_NE(free_put, nullptr);
  EXPECT_EQ(Modes(*free_put), (std::vector<std::string>{"r", "r", "r"}));
  EXPECT_EQ(lib.FindInterface("_Ulmora27")->members.size(), 26u);
  EXPECT_EQ(lib.FindInterface("_UlmoraSurfaceInfo")->members.size(), 36u);
  const InterfaceInfo& tarvik = *lib.FindInterface("_Tarvik3");
  EXPECT_FALSE(FindMember(tarvik, "Units", K::kGet)->browsable);
  EXPECT_FALSE(FindMember(tarvik, "WindowState", K::kPut)->browsable);
  EXPECT_TRUE(FindMember(tarvik, "BlockSize", K::kGet)->browsable);
  EXPECT_EQ(FindMember(tarvik, 0x6803000a, K::kGet)->name, "version");
}

TEST(TypeLibraryTest, HelpStringsOnlyWhereTheyArePublished) {
  const TypeLibrary& lib = TheTypeLibrary();
  const InterfaceInfo& tarvik = *lib.FindInterface("_Tarvik3");
  EXPECT_EQ(FindMember(tarvik, "version", K::kGet)->help,
            "Returns the version number of the currently connected Tarvik session.  Returns 0 if "
            "no conneciton is made.");
  EXPECT_EQ(FindMember(tarvik, "Connected", K::kGet)->help,
            "Returns wether your are connected to Tarvik.");
  EXPECT_EQ(FindMember(tarvik, "ExitTarvik", K::kMethod)->help, "Use to Quit Tarvik");
  EXPECT_EQ(FindMember(tarvik, "StoreBlock", K::kMethod)->help, "");
  int with_help = 0;
  for (const InterfaceInfo& iface : lib.interfaces) {
    for (const MemberInfo& m : iface.members) with_help += !m.help.empty();
  }
  EXPECT_EQ(with_help, 11 + 2);  // Tarvik3 (WindowState get and put) and value get and put
}

TEST(TypeLibraryTest, LibraryClassesAndTypeCount) {
  const TypeLibrary& lib = TheTypeLibrary();
  EXPECT_EQ(lib.name, "QorvelOLE");
  EXPECT_EQ(lib.help_string, "Halvern Qorvel OLE control");
  EXPECT_EQ(lib.help_file, "QorvelOCX.chm");
  EXPECT_EQ(lib.major_version, 1);
  EXPECT_EQ(lib.minor_version, 0);
  EXPECT_EQ(lib.locale, 0x409u);
  EXPECT_EQ(lib.type_count(), 29);
  const std::tuple<const char*, uint32_t, int32_t, const char*> classes[] = {
      {"Zebrin", 0x24591, 30005, "__Zebrin"},
      {"Tarvik3", 0x24591, 30004, "__Tarvik3"},
      {"Ulmora27", 0x24591, 30003, "__Ulmora27"},
      {"UlmoraNearestPoints", 0x20591, 30002, "__UlmoraNearestPoints"},
      {"UlmoraSurfaceInfo", 0x20591, 30001, "__UlmoraSurfaceInfo"},
      {"ValueBox", 0x20191, 30000, "__ValueBox"},
      {"PointClass", 0, 0, ""}};
  for (const auto& [name, misc, bitmap, events] : classes) {
    const ClassInfo* c = lib.FindClass(name);
    ASSERT_NE(c, nullptr) << name;
    EXPECT_EQ(c->misc_status, misc) << name;
    EXPECT_EQ(c->toolbox_bitmap, bitmap) << name;
    EXPECT_EQ(c->event_interface, events) << name;
    EXPECT_EQ(c->control, misc != 0) << name;
    EXPECT_NE(lib.FindInterface(c->default_interface), nullptr) << name;
  }
  const auto* comments = &lib.version_block[3];
  EXPECT_EQ(comments->second, "Supports versions....  Tarvik3  Ulmora2700  Zebrin2300");
}

TEST(TypeLibraryTest, EventInterfaces) {
  const TypeLibrary& lib = TheTypeLibrary();
  for (const char* name : {"__Zebrin", "__Ulmora27"}) {
    const InterfaceInfo& events = *lib.FindInterface(name);
    ASSERT_EQ(events.members.size(), 1u);
    EXPECT_EQ(events.members[0].name, "ConnectionChange");
    EXPECT_EQ(events.members[0].dispid, 1);
    EXPECT_EQ(Modes(events.members[0]), std::vector<std::string>{"r"});
  }
  EXPECT_EQ(lib.FindInterface("__ValueBox")->members[0].name, "ValueChanged");
  EXPECT_TRUE(lib.FindInterface("__Tarvik3")->members.empty());
}

TEST(TypeLibraryTest, EnumerationsWithTheirValues) {
  const TypeLibrary& lib = TheTypeLibrary();
  ASSERT_EQ(lib.enums.size(), 9u);
  const EnumInfo& entity = *lib.FindEnum("qvEntityType");
  EXPECT_EQ(entity.members[8], (std::pair<std::string, int32_t>{"qvTypeWireframe", 60}));
  EXPECT_EQ(entity.members[9], (std::pair<std::string, int32_t>{"qvTypeModel", 3}));
  EXPECT_EQ(lib.FindEnum("windowstatetype")->members[3].second, 8);
  EXPECT_EQ(lib.FindEnum("ToolTypeEnum")->members[6].first, "qvOffCentre");
  EXPECT_EQ(lib.FindEnum("TarvikConnectType")->members[2].second, 2);
}

TEST(TypeLibraryTest, IdentifiersAreDistinct) {
  const TypeLibrary& lib = TheTypeLibrary();
  std::set<std::string> ids = {ToString(lib.guid)};
  for (const auto& c : lib.classes) ids.insert(ToString(c.guid));
  for (const auto& i : lib.interfaces) ids.insert(ToString(i.guid));
  for (const auto& e : lib.enums) ids.insert(ToString(e.guid));
  EXPECT_EQ(ids.size(), 30u);
  EXPECT_EQ(ToString(lib.guid).size(), 38u);
}

}  // namespace
}  // namespace qorvel
