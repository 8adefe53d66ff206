#ifndef QORVEL_PLATFORM_REG_FILE_H_
#define QORVEL_PLATFORM_REG_FILE_H_

#include <string>
#include <string_view>
#include <vector>

#include "qorvel/platform/registry.h"

namespace qorvel {

// Reads a whole .reg file ("REGEDIT4" or "Windows Registry Editor Version 5.00"; UTF-8, or
// UTF-16LE with its byte-order mark) into the changes it asks for. A malformed file raises
// error 5 naming the source and the line, so nothing of it is applied.
std::vector<RegOp> ParseRegText(std::string_view bytes, std::string_view source_name);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_REG_FILE_H_
