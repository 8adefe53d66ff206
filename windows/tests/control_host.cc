// The six controls in a container that nobody here wrote: Wine's own ATL host sites them at run
// time, a form designer of our own sites them at design time, and the ValueBox is typed into key
// by key through its real EDIT window. Prints what it checked and exits non-zero at the first
// difference.
//   control_host [--bench [KEYS]] [--screens DIR]
// --screens: pauses where the screen shows the run-mode and the design-mode forms, so that the
// runner can take screenshots (see Screens). --bench: the cost of one key typed into the
// ValueBox against one typed into a plain EDIT, KEYS keys a round (4000).

#include <windows.h>

#include <ole2.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/error.h"
#include "windows/tests/checks.h"
#include "windows/tests/control_phases.h"

using namespace qorvel;
using namespace qorvel::win;
using namespace qorvel::win::testing;

namespace {

// Everything released, the DLL says it can go.
void CheckUnload() {
  CoFreeUnusedLibrariesEx(0, 0);
  HMODULE dll = GetModuleHandleW(L"QorvelOLE.dll");
  if (dll == nullptr) {
    Check(true, "QorvelOLE.dll was unloaded once everything was released");
    return;
  }
  auto can_unload = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
      reinterpret_cast<void*>(GetProcAddress(dll, "DllCanUnloadNow")));
  Check(can_unload && can_unload() == S_OK,
        "DllCanUnloadNow says S_OK once every window is destroyed and every control released");
}

}  // namespace

int main(int argc, char** argv) {
  bool bench = false;
  int keys = 4000;
  std::wstring screens_dir;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--bench") == 0) {
      bench = true;
      if (i + 1 < argc && argv[i + 1][0] != '-') keys = std::atoi(argv[++i]);
    } else if (std::strcmp(argv[i], "--screens") == 0 && i + 1 < argc) {
      screens_dir = Widen(argv[++i]);
    } else {
      std::fprintf(stderr, "usage: control_host [--bench [KEYS]] [--screens DIR]\n");
      return 2;
    }
  }
  if (FAILED(OleInitialize(nullptr))) {
    std::printf("control_host: FAILED: OleInitialize\n");
    return 1;
  }
  bool failed = false;
  {
    const Screens screens(screens_dir);
    const ControlLog log;
    const AtlHost atl;
    try {
      if (bench) MeasureKeyCost(atl, keys);
      CheckRunMode(atl, log, screens);
      CheckValueBoxKeys(atl);
      CheckPersistence(log);
      CheckDesignMode(screens);
      CheckUnload();
    } catch (const CheckFailed& e) {
      std::printf("FAILED: %s\n", e.what());
      failed = true;
    } catch (const Error& e) {
      std::printf("FAILED: raised %d %s\n", e.number(), e.description().c_str());
      failed = true;
    }
  }
  OleUninitialize();
  std::printf("control_host: %d checks passed, %d not checked: %s\n", PassedChecks(),
              UncheckedChecks(), failed ? "FAILED" : "passed");
  return failed ? 1 : 0;
}
