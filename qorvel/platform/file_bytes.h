#ifndef QORVEL_PLATFORM_FILE_BYTES_H_
#define QORVEL_PLATFORM_FILE_BYTES_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace qorvel {

// The bytes of the file at `path`, read as `kind` ("a registry file"): error 53 when there is
// none, and error 5 naming the file for a directory, a file that can't be read, or one of more
// than `limit` bytes. `check_start` sees the first bytes as soon as they are read and may raise,
// so a device or a pipe that can't hold such a file stops early; reading stops at the limit
// too, having taken no more memory than the file gave.
std::string ReadFileBytes(const std::string& path, size_t limit, std::string_view kind,
                          const std::function<void(std::string_view)>& check_start = {});

// Writes `bytes` to `path` whole or not at all: into a new file beside it, then renamed over
// it, so a write that fails part way (a full disk, a size limit) leaves the old file as it was
// and raises error 5 naming the file.
void WriteFileBytes(const std::string& path, std::string_view bytes);

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_FILE_BYTES_H_
