#ifndef QORVEL_PLATFORM_REG_FILE_H_
#define QORVEL_PLATFORM_REG_FILE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "qorvel/platform/registry.h"

namespace qorvel {

// The most a .reg file may hold. The editor's own files are far smaller; the cap keeps a device
// or a pipe that never ends from filling memory.
inline constexpr size_t kMaxRegFileBytes = size_t{256} << 20;

// One change a .reg file asks for.
struct RegOp {
  enum Kind { kCreateKey, kDeleteKey, kSetValue, kDeleteValue } kind;
  RegKey root;
  std::string key;
  std::string name;  // empty for the default value
  RegValue value;
};

// Reads a whole .reg file ("REGEDIT4" or "Windows Registry Editor Version 5.00"; UTF-8, or
// UTF-16LE with its byte-order mark) into the changes it asks for. A malformed file raises
// error 5 naming the source and the line, so nothing of it is applied; text in another encoding
// (UTF-16 big-endian or without its mark, UTF-32) or binary data raises error 5 that says so.
std::vector<RegOp> ParseRegText(std::string_view bytes, std::string_view source_name);

// The bytes of the .reg file at `path`: error 53 when there is none, and error 5 naming the
// file for a directory, a file that can't be read, one of more than `limit` bytes, or one whose
// first bytes show it holds no registry text. Reading stops as soon as that is clear.
std::string ReadRegFile(const std::string& path, size_t limit = kMaxRegFileBytes);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_REG_FILE_H_
