#include "windows/server/module.h"

#include <atomic>
#include <mutex>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win {
namespace {

HMODULE module = nullptr;
std::atomic<LONG> module_locks{0};

}  // namespace

void SetThisModule(HMODULE m) { module = m; }

HMODULE ThisModule() { return module; }

std::string ThisModulePath() {
  wchar_t path[MAX_PATH * 4];
  const DWORD n = GetModuleFileNameW(module, path, static_cast<DWORD>(std::size(path)));
  return Narrow(path, n);
}

// Loaded once and kept for the life of the module: every object's type information comes
// from it.
ITypeLib* ModuleTypeLib() {
  static ITypeLib* const lib = [] {
    ITypeLib* loaded = nullptr;
    const std::wstring path = Widen(ThisModulePath());
    if (FAILED(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &loaded))) return (ITypeLib*)nullptr;
    return loaded;
  }();
  return lib;
}

ITypeInfo* TypeInfoOf(const Guid& guid) {
  ITypeLib* lib = ModuleTypeLib();
  ITypeInfo* info = nullptr;
  if (lib == nullptr || FAILED(lib->GetTypeInfoOfGuid(ToGuid(guid), &info))) return nullptr;
  return info;
}

GUID ToGuid(const Guid& g) {
  GUID out;
  out.Data1 = g.data1;
  out.Data2 = g.data2;
  out.Data3 = g.data3;
  for (int i = 0; i < 8; ++i) out.Data4[i] = g.data4[i];
  return out;
}

void LockModule(bool lock) {
  if (lock) {
    ++module_locks;
  } else if (module_locks > 0) {
    --module_locks;
  }
}

LONG ModuleLocks() { return module_locks.load(); }

}  // namespace qorvel::win
