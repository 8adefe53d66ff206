#include <windows.h>

#include <string>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/process.h"
#include "qorvel/platform/process_windows.h"

namespace qorvel {
namespace win {

std::optional<uint32_t> StartProgram(const std::string& path, int show_command) {
  // A NUL inside the path would silently start a different program.
  if (path.empty() || path.find('\0') != std::string::npos) return std::nullopt;
  const std::wstring application = Widen(path);
  // The program is named on its own, so nothing is searched for; the command line only repeats
  // it for the program's argv[0], quoted because install paths hold blanks.
  std::wstring command_line = L"\"" + application + L"\"";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = static_cast<WORD>(show_command);
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(application.c_str(), command_line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                      nullptr, &startup, &process)) {
    return std::nullopt;
  }
  // Nothing waits for the program, so its handles go at once.
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return process.dwProcessId;
}

}  // namespace win

bool StartProcess(const std::string& path) {
  return win::StartProgram(path, SW_SHOWNORMAL).has_value();
}

}  // namespace qorvel
