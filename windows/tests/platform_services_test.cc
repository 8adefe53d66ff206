// Round trips through the system registry, message boxes, clipboard, launcher and running-object
// table, as a plain program, so it runs under Wine with no test framework installed there.

#include <windows.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <optional>
#include <span>
#include <sstream>
#include <string>

#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env_windows.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/messages.h"
#include "qorvel/platform/numbers.h"

namespace qorvel::win {
namespace {

int failures = 0;

void Check(bool ok, const std::string& what) {
  std::printf("%s  %s\n", ok ? "ok  " : "FAIL", what.c_str());
  if (!ok) ++failures;
}

// The number the call raised; 0 when it raised nothing.
int32_t RaisedBy(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

constexpr const char* kTestKey = "Software\\QorvelPlatformTest";

void RegistryRoundTrip(WindowsRegistry& registry) {
  const std::string key = std::string(kTestKey) + "\\Sub";
  registry.SetString(root_key::kCurrentUser, key, "Path", "C:\\Programme\\Z\xC3\xA4hler");
  registry.SetDword(root_key::kCurrentUser, key, "Version", 27);

  RegKey handle = 0;
  Check(registry.RegOpenKeyA(root_key::kCurrentUser, key, &handle) == reg_status::kSuccess,
        "open the written key");
  uint32_t type = 0;
  uint8_t buffer[64];
  uint32_t size = sizeof buffer;
  Check(registry.RegQueryValueExA(handle, "path", nullptr, &type, buffer, &size) == 0,
        "read a text value by its name in another case");
  const std::string expected = "C:\\Programme\\Z\xC3\xA4hler";
  Check(type == reg_type::kString &&
            std::string(reinterpret_cast<char*>(buffer), size) == expected + std::string(1, '\0'),
        "the text comes back as UTF-8 with its terminator");
  size = 4;
  Check(registry.RegQueryValueExA(handle, "Path", nullptr, &type, buffer, &size) ==
                reg_status::kMoreData &&
            size == expected.size() + 1,
        "a small buffer gives more-data and the size needed");
  size = sizeof buffer;
  Check(registry.RegQueryValueExA(handle, "Version", nullptr, &type, buffer, &size) == 0 &&
            type == reg_type::kDword && size == 4 && buffer[0] == 27 && buffer[1] == 0,
        "a DWORD reads as four bytes, low first");
  size = sizeof buffer;
  Check(registry.RegQueryValueExA(handle, "Missing", nullptr, &type, buffer, &size) ==
            reg_status::kFileNotFound,
        "a missing value gives file-not-found");
  Check(registry.RegCloseKey(handle) == reg_status::kSuccess, "close the key");
  Check(registry.RegCloseKey(handle) == reg_status::kInvalidHandle, "a closed handle is invalid");
  size = sizeof buffer;
  Check(registry.RegQueryValueExA(handle, "Path", nullptr, &type, buffer, &size) ==
            reg_status::kInvalidHandle,
        "a query on a closed handle gives invalid-handle");

  RegKey parent = 0;
  uint32_t sub_keys = 0;
  Check(registry.RegOpenKeyA(root_key::kCurrentUser, kTestKey, &parent) == 0 &&
            registry.RegQueryInfoKeyA(parent, &sub_keys) == 0 && sub_keys == 1,
        "the parent counts one key below it");
  registry.RegCloseKey(parent);

  Check(registry.GetValue(root_key::kCurrentUser, key, "Path") ==
            RegValue{reg_type::kString, {expected.begin(), expected.end() + 1}},
        "GetValue reads the same value");
  registry.DeleteValue(root_key::kCurrentUser, key, "Path");
  Check(!registry.GetValue(root_key::kCurrentUser, key, "Path"), "the deleted value is gone");
  registry.DeleteValue(root_key::kCurrentUser, key, "Path");  // not there: no error
  registry.DeleteKey(root_key::kCurrentUser, kTestKey);
  Check(registry.RegOpenKeyA(root_key::kCurrentUser, key, &handle) == reg_status::kFileNotFound,
        "the deleted tree can't be opened");
  Check(RaisedBy([&] { registry.SetString(0x1234, "A", "B", "C"); }) == err::kInvalidCall,
        "a write below an unknown root raises 5");
  Check(registry.RegOpenKeyA(0x1234, "A", &handle) == reg_status::kInvalidHandle,
        "an open below an unknown handle gives invalid-handle");
}

std::string FileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

void MessagesAnsweredAndRecorded(WindowsMessages& messages) {
  char directory[MAX_PATH];
  GetTempPathA(MAX_PATH, directory);
  const std::string log = std::string(directory) + "qorvel_messages.log";
  DeleteFileA(log.c_str());
  SetEnvironmentVariableA(kMessageLogVariable, log.c_str());
  const DWORD start = GetTickCount();
  messages.ShowMessage("Zebrin could not be started.\rCheck registry", kCriticalStopBox,
                       "Start Zebrin");
  messages.ShowMessage("Tab\there, back\\slash, \xC3\xA4", kExclamationBox, "Ulmora");
  Check(GetTickCount() - start < 10000, "both boxes answered themselves");
  Check(FileText(log) ==
            "4112\tStart Zebrin\tZebrin could not be started.\\rCheck registry\r\n"
            "4144\tUlmora\tTab\\there, back\\\\slash, \\u00E4\r\n",
        "both boxes recorded, one line each");
  SetEnvironmentVariableA(kMessageLogVariable, nullptr);
  DeleteFileA(log.c_str());
}

void ClipboardRoundTrip(WindowsClipboard& clipboard) {
  clipboard.SetText("12,5 \xC3\xA4");
  Check(clipboard.GetText() == "12,5 \xC3\xA4", "the clipboard gives back its text");
  clipboard.SetText("");
  Check(clipboard.GetText().empty(), "an empty text empties it");
}

void Launcher(WindowsLauncher& launcher) {
  Check(RaisedBy([&] { launcher.LaunchProgram("C:\\no\\such\\program.exe", 3); }) ==
            err::kFileNotFound,
        "a missing program raises 53");
  Check(RaisedBy([&] { launcher.LaunchProgram("", 3); }) == err::kFileNotFound,
        "an empty path raises 53");
  char system[MAX_PATH];
  GetSystemDirectoryA(system, MAX_PATH);
  int32_t task = 0;
  Check(RaisedBy([&] {
          task = launcher.LaunchProgram(std::string(system) + "\\hostname.exe", 3);
        }) == 0 &&
            task > 0,
        "a real program starts and gives its process id");
}

// An object that answers "Answer" with 42.
class Answerer : public Dispatch {
 public:
  Variant Invoke(std::string_view member, CallKind, std::span<Variant>) override {
    if (member == "Answer") return int32_t{42};
    Raise(err::kNoMember);
  }
};

void RunningObjectsThroughCom(WindowsRegistry& registry, WindowsRunningObjects& running) {
  const char* kProgId = "Qorvel.PlatformTest";
  const char* kClsid = "{6B1D3F0E-5A2C-4C7B-9E11-2F8D7A4C3B51}";
  registry.SetString(root_key::kClassesRoot, std::string(kProgId) + "\\CLSID", "", kClsid);
  registry.SetString(root_key::kClassesRoot, std::string("CLSID\\") + kClsid, "", kProgId);

  Check(RaisedBy([&] { running.BindRunning(kProgId); }) == err::kCantCreate,
        "nothing running yet: 429");
  Check(RaisedBy([&] { running.Register(kProgId, std::make_shared<Answerer>()); }) == 0,
        "register the running object");
  AutomationObject bound;
  Check(RaisedBy([&] { bound = running.BindRunning("qorvel.platformtest"); }) == 0 && bound,
        "the registered object binds, by its name in any case");
  if (bound) Check(GetMember(bound, "Answer").ToLong() == 42, "and answers through IDispatch");
  bound.reset();
  running.Revoke(kProgId);
  Check(RaisedBy([&] { running.BindRunning(kProgId); }) == err::kCantCreate,
        "the revoked object is gone: 429");
  Check(RaisedBy([&] { running.BindRunning("No.Such.Class"); }) == err::kCantCreate,
        "an unknown class: 429");

  int made = 0;
  Check(RaisedBy([&] {
          running.RegisterClassServer(kProgId, [&made] {
            ++made;
            return std::make_shared<Answerer>();
          });
        }) == 0,
        "register the class server");
  AutomationObject created;
  Check(RaisedBy([&] { created = running.CreateNew(kProgId); }) == 0 && created && made == 1,
        "CreateNew makes an object through the class server");
  if (created) Check(GetMember(created, "Answer").ToLong() == 42, "which answers");
  created.reset();
  running.RevokeClassServer(kProgId);
  Check(RaisedBy([&] { running.CreateNew("No.Such.Class"); }) == err::kCantCreate,
        "CreateNew of an unknown class: 429");
  Check(RaisedBy([&] { running.Register("No.Such.Class", std::make_shared<Answerer>()); }) ==
            err::kInvalidCall,
        "registering an unknown class raises 5");

  registry.DeleteKey(root_key::kClassesRoot, kProgId);
  registry.DeleteKey(root_key::kClassesRoot, std::string("CLSID\\") + kClsid);
}

void NumberSymbolsFromTheRegion(WindowsEnv& env) {
  const NumberSymbols symbols = env.number_symbols();
  Check(!symbols.decimal.empty() && !symbols.thousand.empty() && !symbols.currency.empty(),
        "the region gives decimal '" + symbols.decimal + "', grouping '" + symbols.thousand +
            "', currency '" + symbols.currency + "'");
  // Scripts play a comma region by writing the user's decimal symbol; the next number sees it.
  WindowsRegistry& registry = env.registry();
  const char* kNames[] = {"sDecimal", "sThousand"};
  std::optional<RegValue> saved[2];
  for (int i = 0; i < 2; ++i)
    saved[i] = registry.GetValue(root_key::kCurrentUser, kInternationalKey, kNames[i]);
  const std::string other = symbols.decimal == "," ? "." : ",";
  SetDecimalSymbol(registry, other);
  Check(env.number_symbols().decimal == other,
        "a decimal symbol written to the registry shows at the next number");
  for (int i = 0; i < 2; ++i) {
    if (saved[i]) {
      registry.SetValue(root_key::kCurrentUser, kInternationalKey, kNames[i], *saved[i]);
    } else {
      registry.DeleteValue(root_key::kCurrentUser, kInternationalKey, kNames[i]);
    }
  }
  Check(env.number_symbols().decimal == symbols.decimal &&
            env.number_symbols().thousand == symbols.thousand,
        "and the region's own symbols are back once the values are");
  Check(&Env::Default() != nullptr && dynamic_cast<WindowsEnv*>(&Env::Default()) != nullptr,
        "the default environment is the Windows one");
}

}  // namespace
}  // namespace qorvel::win

int main() {
  using namespace qorvel::win;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  {
    WindowsEnv env;
    RegistryRoundTrip(env.registry());
    MessagesAnsweredAndRecorded(env.messages());
    ClipboardRoundTrip(env.clipboard());
    Launcher(env.launcher());
    RunningObjectsThroughCom(env.registry(), env.running_objects());
    NumberSymbolsFromTheRegion(env);
  }
  CoUninitialize();
  std::printf("%s\n", failures == 0 ? "all passed" : "FAILED");
  return failures == 0 ? 0 : 1;
}
