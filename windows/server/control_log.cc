#include "windows/server/control_log.h"

#include <windows.h>

#include <string>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win {

// The file is opened for each line: events are few, and a test may read the file while the
// container still runs.
void LogControlEvent(std::string_view class_name, std::string_view event) noexcept {
  wchar_t path[MAX_PATH * 4];
  const DWORD n = GetEnvironmentVariableW(L"QORVEL_CONTROL_LOG", path, std::size(path));
  if (n == 0 || n >= std::size(path)) return;
  try {
    const std::string line = std::string(class_name) + " " + std::string(event) + "\r\n";
    HANDLE file = CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    CloseHandle(file);
  } catch (...) {  // a log line is never worth a failure of the container's call
  }
}

}  // namespace qorvel::win
