#ifndef QORVEL_FRAME_TYPE_LIBRARY_H_
#define QORVEL_FRAME_TYPE_LIBRARY_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qorvel/platform/variant.h"

namespace qorvel {

struct Guid {
  uint32_t data1;
  uint16_t data2;
  uint16_t data3;
  uint8_t data4[8];
  bool operator==(const Guid&) const = default;
};
std::string ToString(const Guid& guid);  // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"

// The type of a parameter or result as the library publishes it.
enum class ParamType {
  kNone,  // no result
  kInteger,
  kLong,
  kDouble,
  kText,
  kBool,
  kVariant,
  kEnum,        // a 32-bit enumeration; ParamInfo::enum_name says which
  kCollection,  // the platform's Collection object
  kTextArray,
  kDoubleArray,
};

// The VARIANT type of a parameter or result as published, without flags: enumerations are
// 32-bit, a Collection is an IDispatch, and an array gives its element type (AutomationVt adds
// the array flag). kNone gives kEmpty.
VarType AutomationType(ParamType type);

// Flags of OLE Automation as a type library records them (TYPEFLAG_, IMPLTYPEFLAG_, PARAMFLAG_).
inline constexpr uint16_t kTypeFlagCanCreate = 0x2;
inline constexpr uint16_t kTypeFlagHidden = 0x10;
inline constexpr uint16_t kTypeFlagControl = 0x20;
inline constexpr uint16_t kTypeFlagDual = 0x40;
inline constexpr uint16_t kTypeFlagNonExtensible = 0x80;
inline constexpr uint16_t kTypeFlagOleAutomation = 0x100;
inline constexpr uint16_t kTypeFlagDispatchable = 0x1000;  // derives from IDispatch
inline constexpr uint16_t kImplTypeFlagDefault = 0x1;
inline constexpr uint16_t kImplTypeFlagSource = 0x2;
inline constexpr uint16_t kParamFlagIn = 0x1;
inline constexpr uint16_t kParamFlagOut = 0x2;
inline constexpr uint16_t kParamFlagRetval = 0x8;
inline constexpr uint16_t kParamFlagOptional = 0x10;
inline constexpr uint16_t kParamFlagHasDefault = 0x20;

struct ParamInfo {
  std::string name;
  ParamType type = ParamType::kNone;
  std::string enum_name;  // for kEnum
  bool by_ref = false;
  bool optional = false;
  bool has_default = false;
  double default_number = 0;  // the default of a numeric or truth-value parameter
  std::string default_text;   // the default of a text parameter
  bool retval = false;        // the result slot of a vtable signature; see retval_param()
};

// The full VARIANT code of a parameter as a client passes it through Invoke: 0x6008 for a text
// array by reference, 0x4005 for a Double by reference, 0x0003 for an enumeration by value. A
// type library spells the same thing as a TYPEDESC chain (VT_PTR for the reference, VT_SAFEARRAY
// for the array, VT_USERDEFINED for an enumeration); this is that chain folded into one code.
uint16_t AutomationVt(const ParamInfo& param);
// PARAMFLAG_ bits of a parameter: by-reference parameters are in and out, since the member may
// change the caller's variable; a result slot is out and retval.
uint16_t ParamFlags(const ParamInfo& param);

enum class MemberKind { kMethod, kGet, kPut };

struct MemberInfo {
  std::string name;
  MemberKind kind = MemberKind::kMethod;
  int32_t dispid = 0;
  std::vector<ParamInfo> params;  // for a put, the new value is the last one
  ParamType result = ParamType::kNone;
  std::string result_enum;  // for a kEnum result
  bool browsable = true;
  std::string help;

  // In the vtable of a dual interface a result is not returned (the HRESULT is) but written
  // through one more, last parameter marked out and retval; gets and methods alike.
  bool has_retval() const { return result != ParamType::kNone; }
  // That last parameter; unnamed, as no client passes it by name. Meaningless without a result.
  ParamInfo retval_param() const;
};

struct InterfaceInfo {
  std::string name;
  Guid guid;
  bool events = false;              // a pure dispatch (source) interface
  std::vector<MemberInfo> members;  // in slot order

  // Both kinds derive from IDispatch. A default interface is dual (vtable and Invoke) and
  // automation-compatible; an event interface is a pure dispatch interface the container
  // implements. Neither is for browsing, and neither gains members at run time. The flags
  // include kTypeFlagDispatchable, which the system derives from the base itself.
  std::string_view base_interface() const { return "IDispatch"; }
  uint16_t type_flags() const;
};

// An interface a class lists, with its IMPLTYPEFLAG_ bits.
struct ImplementedInterface {
  std::string name;
  uint16_t flags = 0;
};

struct ClassInfo {
  std::string name;
  Guid guid;
  bool control = false;
  std::string default_interface;
  std::string event_interface;  // empty for none
  uint32_t misc_status = 0;
  int32_t toolbox_bitmap = 0;  // 0 for none

  // The control flag on controls; no class is created through its type information.
  uint16_t type_flags() const;
  // The default interface, then the event interface as the default source, when there is one.
  std::vector<ImplementedInterface> implemented_interfaces() const;
};

struct EnumInfo {
  std::string name;
  Guid guid;
  std::vector<std::pair<std::string, int32_t>> members;  // member ids 0x40000000 + position
};

struct TypeLibrary {
  std::string name;
  Guid guid;
  std::string help_string;
  std::string help_file;
  uint16_t major_version = 1;
  uint16_t minor_version = 0;
  uint32_t locale = 0x409;
  bool control_library = true;
  std::vector<ClassInfo> classes;
  std::vector<InterfaceInfo> interfaces;  // default and event interfaces
  std::vector<EnumInfo> enums;
  std::vector<std::pair<std::string, std::string>> version_block;  // "FileVersion" -> "1.00.0005"

  int type_count() const { return int(classes.size() + interfaces.size() + enums.size()); }
  const ClassInfo* FindClass(std::string_view name) const;  // without regard to case
  const InterfaceInfo* FindInterface(std::string_view name) const;
  const EnumInfo* FindEnum(std::string_view name) const;
};

const TypeLibrary& TheTypeLibrary();

// A member of an interface by name and kind, without regard to case; nullptr when absent.
const MemberInfo* FindMember(const InterfaceInfo& iface, std::string_view name, MemberKind kind);
const MemberInfo* FindMember(const InterfaceInfo& iface, int32_t dispid, MemberKind kind);
inline constexpr int32_t kFirstEnumMemberId = 0x40000000;
// The member identifier of the enumeration member at `position` in its table.
constexpr int32_t EnumMemberId(size_t position) {
  return kFirstEnumMemberId + static_cast<int32_t>(position);
}

}  // namespace qorvel

#endif  // QORVEL_FRAME_TYPE_LIBRARY_H_
