#include "windows/typelib/typelib_text.h"

#include <charconv>
#include <cstdio>

namespace qorvel {
namespace {

// INVOKEKIND and LIBFLAGS values, spelled out so the text form builds without <windows.h>.
constexpr int kInvokeFunc = 1;
constexpr int kInvokePropertyGet = 2;
constexpr int kInvokePropertyPut = 4;
constexpr uint16_t kLibFlagControl = 0x2;

std::string Hex(uint32_t value, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%0*x", digits, static_cast<unsigned>(value));
  return text;
}

// Text in double quotes, with quotes, backslashes and control characters escaped so that one
// item stays on one line.
std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20 || c == 0x7f) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\x%02x", c);
      out += escape;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out + "\"";
}

// The shortest text that reads back as the same double.
std::string Exact(double value) {
  char text[32];
  auto [end, ec] = std::to_chars(text, text + sizeof text, value);
  return ec == std::errc() ? std::string(text, end) : "?";
}

// The TYPEDESC chain of a parameter, written out: ptr(safearray(bstr)) for a text array by
// reference.
std::string TypeDescText(ParamType type, const std::string& enum_name, bool pointer) {
  std::string base;
  switch (type) {
    case ParamType::kNone:
      base = "void";
      break;
    case ParamType::kInteger:
      base = "i2";
      break;
    case ParamType::kLong:
      base = "i4";
      break;
    case ParamType::kDouble:
      base = "r8";
      break;
    case ParamType::kText:
      base = "bstr";
      break;
    case ParamType::kBool:
      base = "bool";
      break;
    case ParamType::kVariant:
      base = "variant";
      break;
    case ParamType::kEnum:
      base = "userdefined(" + enum_name + ")";
      break;
    case ParamType::kCollection:
      base = "dispatch";
      break;
    case ParamType::kTextArray:
      base = "safearray(bstr)";
      break;
    case ParamType::kDoubleArray:
      base = "safearray(r8)";
      break;
  }
  return pointer ? "ptr(" + base + ")" : base;
}

std::string DefaultText(const ParamInfo& p) {
  switch (p.type) {
    case ParamType::kText:
      return Quoted(p.default_text);
    case ParamType::kDouble:
      return Exact(p.default_number);
    default:
      // Integers, enumerations and truth values (-1 and 0) are whole numbers.
      return std::to_string(static_cast<long long>(p.default_number));
  }
}

std::string ParamText(const ParamInfo& p, bool unnamed) {
  std::string line = "    ";
  line += p.retval ? "retval" : "param " + (unnamed ? std::string("<value>") : p.name);
  line += " vt=" + Hex(AutomationVt(p), 4);
  line += " type=" + TypeDescText(p.type, p.enum_name, p.by_ref || p.retval);
  line += " flags=" + Hex(ParamFlags(p), 2);
  if (p.has_default) line += " default=" + DefaultText(p);
  return line + "\n";
}

int InvokeKind(MemberKind kind) {
  switch (kind) {
    case MemberKind::kMethod:
      return kInvokeFunc;
    case MemberKind::kGet:
      return kInvokePropertyGet;
    case MemberKind::kPut:
      return kInvokePropertyPut;
  }
  return 0;
}

const char* KindName(MemberKind kind) {
  switch (kind) {
    case MemberKind::kMethod:
      return "method";
    case MemberKind::kGet:
      return "get";
    case MemberKind::kPut:
      return "put";
  }
  return "?";
}

void AppendMember(std::string& out, size_t slot, const MemberInfo& m, bool events) {
  out += "  member " + std::to_string(slot) + " " + m.name + " " + KindName(m.kind) +
         " invoke=" + std::to_string(InvokeKind(m.kind)) + " dispid=" + Hex(m.dispid, 8);
  // A vtable member returns an HRESULT and hands its result through the retval parameter; a
  // dispatch member of an event interface returns nothing.
  out += events ? " returns=void" : " returns=hresult";
  out += " result=" + TypeDescText(m.result, m.result_enum, false);
  if (!m.browsable) out += " nonbrowsable";
  out += " help=" + Quoted(m.help) + "\n";
  for (size_t i = 0; i < m.params.size(); ++i) {
    // The new value of a put has no name in a type library: clients never pass it by name.
    const bool unnamed = m.kind == MemberKind::kPut && i + 1 == m.params.size();
    out += ParamText(m.params[i], unnamed);
  }
  if (!events && m.has_retval()) out += ParamText(m.retval_param(), true);
}

}  // namespace

std::string TypeLibraryText(const TypeLibrary& lib) {
  std::string out;
  out += "library " + lib.name + " guid=" + ToString(lib.guid) + "\n";
  out += "  help=" + Quoted(lib.help_string) + "\n";
  out += "  helpfile=" + Quoted(lib.help_file) + "\n";
  out += "  version=" + std::to_string(lib.major_version) + "." +
         std::to_string(lib.minor_version) + "\n";
  out += "  lcid=" + Hex(lib.locale, 4) + "\n";
  out += "  flags=" + Hex(lib.control_library ? kLibFlagControl : 0, 4) + "\n";
  out += "  types=" + std::to_string(lib.type_count()) + "\n";
  for (const EnumInfo& e : lib.enums) {
    out += "enum " + e.name + " guid=" + ToString(e.guid) + " flags=" + Hex(0, 4) + "\n";
    for (size_t i = 0; i < e.members.size(); ++i) {
      out += "  const " + std::to_string(i) + " " + e.members[i].first +
             " id=" + Hex(EnumMemberId(i), 8) +
             " vt=" + Hex(static_cast<uint16_t>(VarType::kLong), 4) +
             " value=" + std::to_string(e.members[i].second) + "\n";
    }
  }
  for (const InterfaceInfo& iface : lib.interfaces) {
    out += "interface " + iface.name + " guid=" + ToString(iface.guid) +
           (iface.events ? " kind=dispinterface" : " kind=dual") +
           " flags=" + Hex(iface.type_flags(), 4) + " base=" + std::string(iface.base_interface()) +
           " members=" + std::to_string(iface.members.size()) + "\n";
    for (size_t i = 0; i < iface.members.size(); ++i) {
      AppendMember(out, i, iface.members[i], iface.events);
    }
  }
  for (const ClassInfo& c : lib.classes) {
    out += "coclass " + c.name + " guid=" + ToString(c.guid) + " flags=" + Hex(c.type_flags(), 4) +
           "\n";
    for (const ImplementedInterface& impl : c.implemented_interfaces()) {
      out += "  implements " + impl.name + " implflags=" + Hex(impl.flags, 2) + "\n";
    }
  }
  return out;
}

}  // namespace qorvel
