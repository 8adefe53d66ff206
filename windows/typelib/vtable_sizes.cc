#include "windows/typelib/vtable_sizes.h"

#include <cstdint>

#include "windows/typelib/tlb_file_check.h"

namespace qorvel {
namespace {

constexpr size_t kHeaderSize = 0x54;
constexpr size_t kTypeCountAt = 0x20;
constexpr size_t kFlagsAt = 0x14;
constexpr uint32_t kHelpDllFlag = 0x100;
constexpr size_t kTypeEntrySize = 0x64;
constexpr size_t kCountsAt = 0x18;  // functions in the low word
constexpr size_t kTypeFlagsAt = 0x30;
constexpr size_t kVtableSizeAt = 0x4e;
constexpr uint32_t kInterface = 3, kDispatch = 4;  // TKIND_ values, in the low bits of the kind
constexpr uint32_t kDualFlag = 0x40;
constexpr uint32_t kDispatchSlots = 7;

uint32_t ReadU32(const std::string& bytes, size_t at) {
  uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

}  // namespace

bool FixVtableSizes(int pointer_size, std::string* bytes, std::string* error) {
  if (const std::string problem = TypeLibraryFileProblem(*bytes);
      !problem.empty() || bytes->substr(0, 4) != "MSFT") {
    *error = "the saved library is " + (problem.empty() ? "not in the expected form" : problem);
    return false;
  }
  const uint32_t types = ReadU32(*bytes, kTypeCountAt);
  size_t directory = kHeaderSize + size_t{types} * 4;
  if (ReadU32(*bytes, kFlagsAt) & kHelpDllFlag) directory += 4;
  const size_t entries = ReadU32(*bytes, directory);  // checked above to hold every type
  for (uint32_t i = 0; i < types; ++i) {
    const size_t entry = entries + i * kTypeEntrySize;
    const uint32_t kind = ReadU32(*bytes, entry) & 0xf;
    const uint32_t functions = ReadU32(*bytes, entry + kCountsAt) & 0xffff;
    const bool dual = (ReadU32(*bytes, entry + kTypeFlagsAt) & kDualFlag) != 0;
    // A dual interface is saved as its dispatch face, with the size of its vtable face.
    if (kind != kInterface && !(kind == kDispatch && dual)) continue;
    const uint32_t slots = kDispatchSlots + functions;
    const uint32_t size = slots * static_cast<uint32_t>(pointer_size);
    (*bytes)[entry + kVtableSizeAt] = static_cast<char>(size & 0xff);
    (*bytes)[entry + kVtableSizeAt + 1] = static_cast<char>(size >> 8);
  }
  return true;
}

}  // namespace qorvel
