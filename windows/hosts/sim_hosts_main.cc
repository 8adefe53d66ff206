// qorvel_sim_hosts.exe: the simulated hosts as a Windows program, one process serving them all.
// Installed under the real programs' names, it starts as they do: as zebrin.exe or tarvik.exe
// (the launcher runs the path from the registry, no arguments) it runs that simulator,
// registered as running; with -Embedding (COM starting it for a class) it serves the classes;
// and it always serves the control, "QorvelSim.Control", through which scripts run and inspect
// the simulators. A copy started while another serves hands its launch to that one and ends,
// so the control sees every simulator.
//
// The program ends on SimControl.Quit, or once nothing is left for it to do: no control and no
// object of it held by a client, and no launched program running (a launched program, like the
// real one, runs until Exit). Wine doesn't collect the references of a client that ended without
// releasing them (WScript.Quit does that), so the program also ends when nothing has called the
// control or any simulator for kIdleLimit: a test run never leaves it behind for long.
#include <windows.h>

#include <objbase.h>
#include <shellapi.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "hosts/sim_control.h"
#include "hosts/simulators.h"
#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"
#include "windows/hosts/program_running_objects.h"

namespace qorvel::win {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// How long the program waits for its first client after starting, how long it stays once
// nobody holds anything of it, and how long it stays while nothing calls it.
constexpr auto kFirstClientWait = 10s;
constexpr auto kLastClientGrace = 500ms;
constexpr auto kIdleLimit = 5min;
constexpr UINT kTickMs = 100;
constexpr int kTicksPerActivityCheck = 10;

// Controls that clients hold (the one in the running-object table holds no lease), and the
// calls they have had.
std::atomic<int> leases{0};
std::atomic<int64_t> control_calls{0};
// A client has come: from now on the program ends soon after the last one has gone.
std::atomic<bool> served{false};

class LeasedControl final : public hosts::SimControl {
 public:
  explicit LeasedControl(Hooks hooks) : SimControl(std::move(hooks)) {
    ++leases;
    served = true;
  }
  ~LeasedControl() override { --leases; }

  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) override {
    ++control_calls;
    return SimControl::Invoke(member, kind, args);
  }
};

// Grows with every call to the control or to a simulator: the simulators log every call.
int64_t Activity() {
  int64_t calls = control_calls;
  for (const auto& host : hosts::StartedHosts()) calls += int64_t(host->log().size());
  return calls;
}

// The simulator the program's own file name stands for, or nullptr.
const char* ProgramClass(const std::wstring& path) {
  const std::string name = LowerCase(Narrow(path.c_str(), path.size()));
  const size_t slash = name.find_last_of("\\/");
  const std::string file = slash == std::string::npos ? name : name.substr(slash + 1);
  if (file == "zebrin.exe") return hosts::kZebrinClass;
  if (file == "tarvik.exe") return hosts::kTarvikClass;
  return nullptr;
}

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = GetModuleFileNameW(nullptr, path.data(), DWORD(path.size()));
    if (n < path.size()) return path.substr(0, n);
    path.resize(path.size() * 2);
  }
}

bool StartedByCom() {
  int argc = 0;
  LPWSTR* argv = CommandLineToArgvW(GetCommandLineW(), &argc);
  bool embedding = false;
  for (int i = 1; argv && i < argc; ++i) {
    const std::string arg = LowerCase(Narrow(argv[i], wcslen(argv[i])));
    embedding |= arg == "-embedding" || arg == "/embedding";
  }
  LocalFree(argv);
  return embedding;
}

// A copy already serving the simulators, which then starts the program's simulator itself;
// a copy started by hand leaves the serving to it.
bool HandOver(RunningObjects& running, const char* class_name) {
  try {
    AutomationObject control = running.BindRunning(hosts::kSimControlClass);
    if (class_name) Call(control, "Launch", class_name);
    return true;
  } catch (const Error&) {
    return false;  // none runs, or it ended meanwhile: this copy serves
  }
}

class Program {
 public:
  explicit Program(ProgramEnv& env) : env_(env) {}

  void Serve(const char* launched_class) {
    const hosts::SimControl::Hooks hooks{
        .quit = [] { PostQuitMessage(0); },
        .launched = [this](const std::shared_ptr<hosts::SimHost>& h) { launched_.push_back(h); }};
    RunningObjects& running = env_.running_objects();
    running.Register(hosts::kSimControlClass, std::make_shared<hosts::SimControl>(hooks));
    running.RegisterClassServer(hosts::kSimControlClass,
                                [hooks] { return std::make_shared<LeasedControl>(hooks); });
    running.RegisterClassServer(hosts::kZebrinClass, [] {
      served = true;
      return hosts::NewZebrin();
    });
    running.RegisterClassServer(hosts::kTarvikClass, [] {
      served = true;
      return hosts::NewTarvik();
    });
    // Ulmora has no class server; refusing at once spares a client COM's long wait for one.
    running.RegisterClassServer(hosts::kUlmoraClass, []() -> AutomationObject {
      Raise(err::kCantCreate, "The simulated Ulmora starts only by SimControl.Run");
    });
    if (launched_class) {
      AutomationObject control = running.BindRunning(hosts::kSimControlClass);
      Call(control, "Launch", launched_class);
    }
    Loop();
    for (const auto& host : hosts::StartedHosts()) host->GoAway();
    env_.running_objects().RevokeAll();
  }

 private:
  // A client holds a control or an object of the program beyond those the running-object
  // table holds, or a launched program runs.
  bool Wanted() const {
    if (leases > 0 || size_t(LiveDispatches()) > env_.running_objects().registered()) return true;
    for (const auto& weak : launched_) {
      const auto host = weak.lock();
      if (host && !host->gone() && !host->exited) return true;
    }
    return false;
  }

  void Loop() {
    SetTimer(nullptr, 0, kTickMs, nullptr);
    Clock::time_point last_wanted = Clock::now(), last_active = last_wanted;
    int64_t activity = Activity();
    int ticks = 0;
    MSG msg;
    while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
      if (msg.message != WM_TIMER || msg.hwnd != nullptr) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
        continue;
      }
      env_.running_objects().RegisterDue();
      const Clock::time_point now = Clock::now();
      if (Wanted()) {
        last_wanted = now;
      } else if (now - last_wanted > (served ? kLastClientGrace : kFirstClientWait)) {
        break;
      }
      if (++ticks % kTicksPerActivityCheck == 0) {
        const int64_t a = Activity();
        if (a != activity) last_active = now;
        activity = a;
        if (now - last_active > kIdleLimit) break;
      }
    }
  }

  ProgramEnv& env_;
  std::vector<std::weak_ptr<hosts::SimHost>> launched_;
};

int Main() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  int status = 0;
  {
    ProgramEnv env(&Env::Default());
    Env::Install(&env);
    const char* launched_class = ProgramClass(ModulePath());
    try {
      // COM starts a copy only when none serves the class it wants.
      if (StartedByCom() || !HandOver(env.running_objects(), launched_class)) {
        Program(env).Serve(launched_class);
      }
    } catch (const Error& e) {
      const std::wstring text = Widen(e.description());
      OutputDebugStringW(text.c_str());
      status = 2;
    }
    Env::Install(nullptr);
  }
  CoUninitialize();
  return status;
}

}  // namespace
}  // namespace qorvel::win

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) { return qorvel::win::Main(); }
