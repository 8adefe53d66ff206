#include "windows/tests/control_log.h"

#include <windows.h>

#include <string>
#include <vector>

namespace qorvel::win::testing {

ControlLog::ControlLog() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetEnvironmentVariableW(L"QORVEL_CONTROL_LOG", path, MAX_PATH);
  if (length > 0 && length < MAX_PATH) path_.assign(path, length);
}

void ControlLog::Clear() const {
  if (path_.empty()) return;
  HANDLE file = CreateFileW(path_.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            nullptr, TRUNCATE_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

namespace {

std::string ReadAll(const std::wstring& path) {
  std::string bytes;
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return bytes;
  char buffer[4096];
  DWORD got = 0;
  while (ReadFile(file, buffer, sizeof buffer, &got, nullptr) && got > 0) bytes.append(buffer, got);
  CloseHandle(file);
  // A writer that kept its handle across our truncation leaves a gap of zeros before its line.
  std::erase(bytes, '\0');
  return bytes;
}

}  // namespace

bool ControlLog::Written() const { return !path_.empty() && !ReadAll(path_).empty(); }

std::vector<std::string> ControlLog::EventsOf(const std::string& class_name) const {
  std::vector<std::string> events;
  if (path_.empty()) return events;
  const std::string text = ReadAll(path_);
  const std::string prefix = class_name + " ";
  size_t at = 0;
  while (at < text.size()) {
    size_t end = text.find('\n', at);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(at, end - at);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.compare(0, prefix.size(), prefix) == 0) events.push_back(line.substr(prefix.size()));
    at = end + 1;
  }
  return events;
}

std::string Sequence(const std::vector<std::string>& events) {
  std::string text;
  for (size_t i = 0; i < events.size(); ++i) {
    if (i > 0 && events[i] == events[i - 1]) continue;
    if (!text.empty()) text += ", ";
    text += events[i];
  }
  return text;
}

}  // namespace qorvel::win::testing
