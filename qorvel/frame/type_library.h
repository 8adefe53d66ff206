#ifndef QORVEL_FRAME_TYPE_LIBRARY_H_
#define QORVEL_FRAME_TYPE_LIBRARY_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

struct ParamInfo {
  std::string name;
  ParamType type = ParamType::kNone;
  std::string enum_name;  // for kEnum
  bool by_ref = false;
  bool optional = false;
  bool has_default = false;
  double default_number = 0;  // the default of a numeric or truth-value parameter
  std::string default_text;   // the default of a text parameter
};

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
};

struct InterfaceInfo {
  std::string name;
  Guid guid;
  bool events = false;              // a pure dispatch (source) interface
  std::vector<MemberInfo> members;  // in slot order
};

struct ClassInfo {
  std::string name;
  Guid guid;
  bool control = false;
  std::string default_interface;
  std::string event_interface;  // empty for none
  uint32_t misc_status = 0;
  int32_t toolbox_bitmap = 0;  // 0 for none
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

// Member and class names match without regard to case, as automation lookups do.
bool SameNameNoCase(std::string_view a, std::string_view b);

}  // namespace qorvel

#endif  // QORVEL_FRAME_TYPE_LIBRARY_H_
