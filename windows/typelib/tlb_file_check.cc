#include "windows/typelib/tlb_file_check.h"

#include <cstdint>

namespace qorvel {
namespace {

constexpr size_t kHeaderSize = 0x54;
constexpr size_t kTypeCountAt = 0x20;
constexpr size_t kFlagsAt = 0x14;  // the low bits are the platform; 0x100 adds a help DLL field
constexpr uint32_t kHelpDllFlag = 0x100;
constexpr size_t kSegments = 15;
constexpr size_t kSegmentEntrySize = 16;  // offset, length and two reserved words
constexpr size_t kTypeEntrySize = 0x64;   // a type's entry in the first segment
constexpr size_t kMembersAt = 0x04;       // where its members' records begin
constexpr size_t kCountsAt = 0x18;        // functions in the low word, variables in the high

uint32_t ReadU32(std::string_view bytes, size_t at) {
  uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

}  // namespace

std::string TypeLibraryFileProblem(std::string_view bytes) {
  if (bytes.substr(0, 2) == "MZ") return {};  // a program file; the loader reads its resource
  if (bytes.substr(0, 4) != "MSFT") return "not a type library";
  if (bytes.size() < kHeaderSize) return "cut short in its header";
  const uint32_t types = ReadU32(bytes, kTypeCountAt);
  size_t at = kHeaderSize;
  if (ReadU32(bytes, kFlagsAt) & kHelpDllFlag) at += 4;
  if (types > (bytes.size() - at) / 4) return "cut short in its list of types";
  at += size_t{types} * 4;
  if (kSegments * kSegmentEntrySize > bytes.size() - at) return "cut short in its directory";
  const size_t directory = at;
  for (size_t i = 0; i < kSegments; ++i, at += kSegmentEntrySize) {
    const uint32_t offset = ReadU32(bytes, at), length = ReadU32(bytes, at + 4);
    if (offset == 0xffffffff) continue;  // an empty segment
    if (offset > bytes.size() || length > bytes.size() - offset) {
      return "segment " + std::to_string(i) + " lies beyond the end of the file";
    }
  }
  // The records of each type's members lie outside the segments: a length, the records, then
  // an id, a name and an offset for each member.
  const uint32_t entries = ReadU32(bytes, directory),
                 entries_length = ReadU32(bytes, directory + 4);
  if (entries == 0xffffffff || entries_length / kTypeEntrySize < types) {
    return "its types have no entries";
  }
  for (uint32_t i = 0; i < types; ++i) {
    const size_t entry = entries + i * kTypeEntrySize;
    const uint32_t members = ReadU32(bytes, entry + kMembersAt);
    const uint32_t counts = ReadU32(bytes, entry + kCountsAt);
    const uint64_t count = (counts & 0xffff) + (counts >> 16);
    if (count == 0) continue;
    if (members > bytes.size() || bytes.size() - members < 4) {
      return "the members of type " + std::to_string(i) + " lie beyond the end of the file";
    }
    const uint64_t length = 4 + uint64_t{ReadU32(bytes, members)} + 12 * count;
    if (length > bytes.size() - members) {
      return "the members of type " + std::to_string(i) + " lie beyond the end of the file";
    }
  }
  return {};
}

}  // namespace qorvel
