#include "qorvel/frame/type_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

using K = MemberKind;
using P = ParamType;

const TypeLibrary& Lib() { return TheTypeLibrary(); }
const MemberInfo& Member(const char* iface, const char* name, K kind = K::kMethod) {
  return *FindMember(*Lib().FindInterface(iface), name, kind);
}

TEST(TypeLibraryTest, EveryClassListsItsInterfacesWithTheFlagsOfTheirKind) {
  EXPECT_EQ(Lib().type_count(), 29);
  std::set<std::string> listed;
  for (const ClassInfo& c : Lib().classes) {
    EXPECT_EQ(c.type_flags(), c.name == "PointClass" ? 0 : kTypeFlagControl) << c.name;
    EXPECT_FALSE(c.type_flags() & kTypeFlagCanCreate);
    EXPECT_EQ(c.event_interface.empty(), c.name == "PointClass");
    EXPECT_EQ(Lib().FindClass(LowerCase(c.name)), &c);  // lookups ignore case
    for (const ImplementedInterface& i : c.implemented_interfaces()) {
      const InterfaceInfo* iface = Lib().FindInterface(UpperCase(i.name));
      ASSERT_NE(iface, nullptr) << c.name << " lists " << i.name;
      EXPECT_TRUE(listed.insert(i.name).second) << i.name << " listed twice";
      // A default interface is dual; events are the class's default source.
      EXPECT_EQ(iface->type_flags(), iface->events ? 0x1090 : 0x11D0) << i.name;
      EXPECT_EQ(i.flags,
                iface->events ? kImplTypeFlagDefault | kImplTypeFlagSource : kImplTypeFlagDefault)
          << i.name;
    }
  }
  EXPECT_EQ(listed.size(), Lib().interfaces.size());
}

TEST(TypeLibraryTest, DispidsAreUniqueExceptAGetAndItsPut) {
  const std::set<std::string> put_only = {"_Zebrin.InformationWindow", "_Ulmora27.Dialogs",
                                          "_ValueBox.SetValue"};
  for (const InterfaceInfo& iface : Lib().interfaces) {
    std::map<std::pair<int32_t, K>, const MemberInfo*> seen;
    for (const MemberInfo& m : iface.members) {
      const std::string where = iface.name + "." + m.name;
      EXPECT_TRUE(seen.emplace(std::pair{m.dispid, m.kind}, &m).second) << where;
      const uint32_t band = iface.events ? 0 : m.kind == K::kMethod ? 0x60030000 : 0x68030000;
      EXPECT_EQ(uint32_t(m.dispid) & 0xFFFF0000, band) << where;
      EXPECT_EQ(FindMember(iface, m.dispid, m.kind), &m) << where;
      EXPECT_EQ(FindMember(iface, UpperCase(m.name), m.kind), &m) << where;
    }
    for (const auto& [key, m] : seen) {
      const std::string where = iface.name + "." + m->name;
      const auto get = seen.find({key.first, K::kGet}), put = seen.find({key.first, K::kPut});
      if (key.second == K::kMethod) {
        EXPECT_TRUE(get == seen.end() && put == seen.end()) << where << " shares its DISPID";
      } else if (key.second == K::kPut) {
        EXPECT_EQ(get == seen.end(), put_only.count(where) == 1) << where;
        if (get == seen.end()) continue;
        EXPECT_EQ(get->second->name, m->name) << where;
        ASSERT_EQ(m->params.size(), get->second->params.size() + 1) << where;
        EXPECT_EQ(m->params.back().type, get->second->result) << where;
        EXPECT_EQ(m->params.back().enum_name, get->second->result_enum) << where;
      }
    }
  }
}

TEST(TypeLibraryTest, ResultsTravelAsTheLastOutRetvalParameter) {
  for (const InterfaceInfo& iface : Lib().interfaces) {
    for (const MemberInfo& m : iface.members) {
      const std::string where = iface.name + "." + m.name;
      EXPECT_EQ(m.has_retval(), m.kind == K::kGet || m.result != P::kNone) << where;
      EXPECT_FALSE((m.kind == K::kPut || iface.events) && m.has_retval()) << where;
      EXPECT_FALSE(m.kind == K::kPut && m.params.empty()) << where;
      if (!m.has_retval()) continue;
      const ParamInfo r = m.retval_param();
      EXPECT_EQ(ParamFlags(r), kParamFlagOut | kParamFlagRetval) << where;
      EXPECT_EQ(AutomationVt(r), uint16_t(AutomationType(m.result)) | kByRefFlag) << where;
    }
  }
  EXPECT_EQ(AutomationVt(Member("_Ulmora27", "Evaluate").retval_param()), 0x400C);
  EXPECT_EQ(AutomationVt(Member("_Ulmora27", "GetSelectedEntities").params[0]), 0x6008);
  EXPECT_EQ(AutomationVt(Member("_PointClass", "X", K::kPut).params[0]), 0x4005);
}

TEST(TypeLibraryTest, OptionalArgumentsComeLastAndCarryDefaultsWhereClientsRelyOnThem) {
  for (const InterfaceInfo& iface : Lib().interfaces) {
    for (const MemberInfo& m : iface.members) {
      bool optional_seen = false;
      for (const ParamInfo& p : m.params) {
        const std::string where = iface.name + "." + m.name + "." + p.name;
        EXPECT_TRUE(p.optional || !optional_seen) << where << " follows an optional one";
        optional_seen |= p.optional;
        EXPECT_TRUE(p.by_ref || !p.optional) << where;
        EXPECT_TRUE(p.optional || !p.has_default) << where;
        EXPECT_EQ(ParamFlags(p) & kParamFlagOut, p.by_ref ? kParamFlagOut : 0) << where;
        EXPECT_EQ(p.type == P::kEnum, Lib().FindEnum(p.enum_name) != nullptr) << where;
        EXPECT_NE(p.enum_name, "CoordinateMode") << where;
      }
    }
  }
  for (const char* host : {"_Zebrin", "_Tarvik3"}) {
    const ParamInfo& status = Member(host, "Connect").params.at(0);
    EXPECT_EQ(ParamFlags(status), kParamFlagIn | kParamFlagOut | kParamFlagOptional) << host;
    EXPECT_EQ(AutomationVt(status), 0x4003) << host;
  }
  const auto& resize = Member("_Tarvik3", "ResizeBlock").params;
  ASSERT_EQ(resize.size(), 7u);
  for (size_t i = 1; i < resize.size(); ++i) {
    EXPECT_EQ(AutomationVt(resize[i]), 0x400B) << resize[i].name;
    EXPECT_TRUE(resize[i].has_default && resize[i].default_number == 0) << resize[i].name;
  }
  // Length, TipRad, Angle, Chamfer, XOffset, YOffset, ToolNumber, ToolName.
  const double tool[] = {-1, -1, -1, -1, 0, 0, -1, 0};
  const auto& define = Member("_Tarvik3", "DefineTool").params;
  ASSERT_EQ(define.size(), 10u);
  for (size_t i = 2; i < define.size(); ++i) {
    EXPECT_TRUE(define[i].has_default && define[i].default_number == tool[i - 2]) << define[i].name;
  }
  EXPECT_TRUE(AutomationVt(define[9]) == 0x4008 && define[9].default_text.empty());
}

TEST(TypeLibraryTest, HelpStringsOnlyOnTarvikAndValueBoxAndHiddenRowsOnlyWhereMeant) {
  for (const InterfaceInfo& iface : Lib().interfaces) {
    for (const MemberInfo& m : iface.members) {
      const bool tarvik = iface.name == "_Tarvik3", valuebox = iface.name == "_ValueBox";
      EXPECT_TRUE(m.help.empty() || tarvik || (valuebox && m.name == "value")) << m.name;
      const bool hidden = (tarvik || iface.name == "_Ulmora27") &&
                          (m.name == "WindowState" || (tarvik && m.name == "Units"));
      EXPECT_EQ(m.browsable, !hidden) << iface.name << "." << m.name;
    }
  }
  const auto& tarvik = Lib().FindInterface("_Tarvik3")->members;  // WindowState twice
  EXPECT_EQ(std::count_if(tarvik.begin(), tarvik.end(), [](auto& m) { return !m.help.empty(); }),
            11);
  EXPECT_EQ(Member("_ValueBox", "value", K::kPut).help, Member("_ValueBox", "value", K::kGet).help);
}

TEST(TypeLibraryTest, EnumerationMembersAreNumberedFromTheFirstId) {
  EXPECT_EQ(EnumMemberId(0), 0x40000000);
  std::set<std::string> names;  // they are globals to a client
  for (const EnumInfo& e : Lib().enums)
    for (const auto& [name, v] : e.members) EXPECT_TRUE(names.insert(name).second) << name;
  auto value = [](const char* name) {
    for (const auto& [member, v] : Lib().FindEnum("qvEntityType")->members)
      if (member == name) return v;
    return -1;
  };
  EXPECT_EQ(value("qvTypeWireframe"), value("qvTypeArc") | value("qvTypeLine") |
                                          value("qvTypeCurve") | value("qvTypeCompCurve"));
  EXPECT_EQ(value("qvTypeModel"), value("qvTypeSurface") | value("qvTypeSolid"));
}

TEST(TypeLibraryTest, IdentifiersAreDistinct) {
  std::set<std::string> ids = {ToString(Lib().guid)};
  for (const auto& c : Lib().classes) ids.insert(ToString(c.guid));
  for (const auto& i : Lib().interfaces) ids.insert(ToString(i.guid));
  for (const auto& e : Lib().enums) ids.insert(ToString(e.guid));
  EXPECT_EQ(ids.size(), 30u);  // the library and its 29 types
  EXPECT_EQ(ToString(Guid{0x1, 0x2, 0x3, {0xa, 0xb, 0, 0, 0, 0, 0, 0xff}}),
            "{00000001-0002-0003-0A0B-0000000000FF}");
}

}  // namespace
}  // namespace qorvel
