#include "qorvel/platform/file_bytes.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

#include "qorvel/platform/error.h"

namespace qorvel {
namespace {

[[noreturn]] void Refuse(const std::string& path, const std::string& what) {
  Raise(err::kInvalidCall, path + ": " + what);
}

std::string SizeText(size_t bytes) {
  constexpr size_t kMiB = size_t{1} << 20;
  if (bytes >= kMiB && bytes % kMiB == 0) return std::to_string(bytes / kMiB) + " MiB";
  return std::to_string(bytes) + " bytes";
}

[[noreturn]] void TooLarge(const std::string& path, size_t limit, std::string_view kind) {
  Refuse(path, "more than " + SizeText(limit) + ", far more than " + std::string(kind) + " holds");
}

[[noreturn]] void CantRead(const std::string& path, int error) {
  Refuse(path,
         "can't be read" + (error != 0 ? " (" + std::generic_category().message(error) + ")" : ""));
}

[[noreturn]] void CantWrite(const std::string& path, int error) {
  Refuse(path, "can't be written" +
                   (error != 0 ? " (" + std::generic_category().message(error) + ")" : ""));
}

// A name beside `path` that no other save of this process is using.
std::string TemporaryBeside(const std::string& path) {
  static std::atomic<unsigned> serial{0};
  const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
  return path + ".saving-" + std::to_string(stamp) + "-" + std::to_string(serial++);
}

}  // namespace

std::string ReadFileBytes(const std::string& path, size_t limit, std::string_view kind,
                          const std::function<void(std::string_view)>& check_start) {
  namespace fs = std::filesystem;
  std::error_code ec;
  const fs::file_status status = fs::status(path, ec);
  if (status.type() == fs::file_type::not_found) {
    Raise(err::kFileNotFound, path + ": file not found");
  }
  if (fs::is_directory(status)) Refuse(path, "a directory, not " + std::string(kind));
  // A regular file tells its size, so one too large is refused unread; devices and pipes tell
  // none and are cut off as they are read.
  if (fs::is_regular_file(status) && fs::file_size(path, ec) > limit && !ec) {
    TooLarge(path, limit, kind);
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) CantRead(path, errno);
  // In chunks, joined once the file has ended, so a stream takes no more memory than it gave.
  constexpr size_t kChunk = 64 * 1024;
  std::vector<std::string> chunks;
  size_t total = 0;
  while (file) {
    // One byte past the limit tells a file of exactly the limit from a larger one.
    std::string chunk(std::min(kChunk - 1, limit - total) + 1, '\0');
    file.read(chunk.data(), std::streamsize(chunk.size()));
    chunk.resize(size_t(file.gcount()));
    total += chunk.size();
    if (chunks.empty() && check_start) check_start(chunk);
    if (total > limit) TooLarge(path, limit, kind);
    chunks.push_back(std::move(chunk));
  }
  if (file.bad()) CantRead(path, errno);
  std::string bytes;
  bytes.reserve(total);
  for (std::string& chunk : chunks) bytes += std::exchange(chunk, {});
  return bytes;
}

void WriteFileBytes(const std::string& path, std::string_view bytes) {
  namespace fs = std::filesystem;
  std::error_code ec;
  if (fs::is_directory(path, ec)) Refuse(path, "a directory, not a file");
  const std::string temporary = TemporaryBeside(path);
  errno = 0;
  {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    if (file) file.write(bytes.data(), std::streamsize(bytes.size()));
    if (file) file.close();
    if (!file) {
      const int error = errno;
      fs::remove(temporary, ec);
      CantWrite(path, error);
    }
  }
  fs::rename(temporary, path, ec);
  if (ec) {
    const int error = ec.value();
    fs::remove(temporary, ec);
    CantWrite(path, error);
  }
}

}  // namespace qorvel
