#include "qorvel/server/registration.h"

#include <atomic>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

// The automation marshalers: one for dual interfaces, one for pure dispatch interfaces, as
// type library registration names them.
constexpr const char* kDualProxy = "{00020424-0000-0000-C000-000000000046}";
constexpr const char* kDispatchProxy = "{00020420-0000-0000-C000-000000000046}";
constexpr const char* kLibraryFlagControl = "2";

std::atomic<int> locks{0};

void Set(const std::string& key, const std::string& name, const std::string& text) {
  Env::Current().registry().SetString(root_key::kClassesRoot, key, name, text);
}

void RegisterClassKeys(const TypeLibrary& lib, const ClassInfo& c, const std::string& server) {
  const std::string clsid = ToString(c.guid);
  const std::string key = "CLSID\\" + clsid;
  const std::string prog_id = lib.name + "." + c.name;
  Set(key, "", c.name);
  Set(key + "\\InprocServer32", "", server);
  Set(key + "\\InprocServer32", "ThreadingModel", "Apartment");
  Set(key + "\\ProgID", "", prog_id);
  Set(key + "\\TypeLib", "", ToString(lib.guid));
  Set(key + "\\Version", "", "1.0");
  if (c.control) {
    Env::Current().registry().CreateKey(root_key::kClassesRoot, key + "\\Control");
    Set(key + "\\ToolboxBitmap32", "",
        server + ", " + std::to_string(c.toolbox_bitmap));
    Set(key + "\\MiscStatus", "", "0");
    Set(key + "\\MiscStatus\\1", "", std::to_string(c.misc_status));
  }
  Set(prog_id, "", c.name);
  Set(prog_id + "\\CLSID", "", clsid);
}

// Removes a parent key that registering may have made, once nothing is left in it.
void DropIfEmpty(const std::string& key) {
  Registry& registry = Env::Current().registry();
  RegKey handle = 0;
  if (registry.RegOpenKeyA(root_key::kClassesRoot, key, &handle) != reg_status::kSuccess) return;
  uint32_t size = 0;
  uint32_t sub_keys = 0;
  const bool has_default = registry.RegQueryValueExA(handle, "", nullptr, nullptr, nullptr,
                                                     &size) == reg_status::kSuccess;
  const bool has_keys =
      registry.RegQueryInfoKeyA(handle, &sub_keys) != reg_status::kSuccess || sub_keys > 0;
  registry.RegCloseKey(handle);
  if (!has_default && !has_keys) registry.DeleteKey(root_key::kClassesRoot, key);
}

}  // namespace

int32_t DllRegisterServer(const ServerFile& file) try {
  const TypeLibrary& lib = TheTypeLibrary();
  const std::string lib_key = "TypeLib\\" + ToString(lib.guid) + "\\1.0";
  const size_t folder_end = file.path.find_last_of("\\/");
  Set(lib_key, "", lib.help_string);
  Set(lib_key + (file.win64 ? "\\0\\win64" : "\\0\\win32"), "", file.path);
  Set(lib_key + "\\FLAGS", "", kLibraryFlagControl);
  Set(lib_key + "\\HELPDIR", "",
      folder_end == std::string::npos ? "" : file.path.substr(0, folder_end));
  for (const ClassInfo& c : lib.classes) RegisterClassKeys(lib, c, file.path);
  for (const InterfaceInfo& i : lib.interfaces) {
    const std::string key = "Interface\\" + ToString(i.guid);
    Set(key, "", i.name);
    const char* proxy = i.events ? kDispatchProxy : kDualProxy;
    Set(key + "\\ProxyStubClsid", "", proxy);
    Set(key + "\\ProxyStubClsid32", "", proxy);
    Set(key + "\\TypeLib", "", ToString(lib.guid));
    Set(key + "\\TypeLib", "Version", "1.0");
  }
  return hresult::kOk;
} catch (const Error&) {
  return hresult::kSelfRegClass;
}

int32_t DllUnregisterServer() try {
  const TypeLibrary& lib = TheTypeLibrary();
  Registry& registry = Env::Current().registry();
  const std::string lib_key = "TypeLib\\" + ToString(lib.guid);
  registry.DeleteKey(root_key::kClassesRoot, lib_key + "\\1.0");
  DropIfEmpty(lib_key);  // other versions of the library stay
  for (const ClassInfo& c : lib.classes) {
    registry.DeleteKey(root_key::kClassesRoot, "CLSID\\" + ToString(c.guid));
    registry.DeleteKey(root_key::kClassesRoot, lib.name + "." + c.name);
  }
  for (const InterfaceInfo& i : lib.interfaces) {
    registry.DeleteKey(root_key::kClassesRoot, "Interface\\" + ToString(i.guid));
  }
  for (const char* parent : {"TypeLib", "CLSID", "Interface"}) DropIfEmpty(parent);
  return hresult::kOk;
} catch (const Error&) {
  return hresult::kSelfRegClass;
}

int32_t DllGetClassObject(const Guid& clsid, ClassFactory* factory) {
  for (const ClassInfo& c : TheTypeLibrary().classes) {
    if (c.guid == clsid) {
      const ClassFactory found = FactoryOf(c.name);
      if (!found) return hresult::kClassNotAvailable;
      if (factory) *factory = found;
      return hresult::kOk;
    }
  }
  return hresult::kClassNotAvailable;
}

int32_t DllCanUnloadNow() {
  return LiveObjects() == 0 && locks == 0 ? hresult::kOk : hresult::kFalse;
}

// An unlock without a lock is ignored, so it can't keep the library loaded for ever.
void LockServer(bool lock) {
  if (lock) {
    ++locks;
    return;
  }
  int held = locks.load();
  while (held > 0 && !locks.compare_exchange_weak(held, held - 1)) {
  }
}
namespace {
// The default value of a key as text; empty when it isn't there or isn't text.
std::string ClassesRootText(const std::string& key) {
  const std::optional<RegValue> value =
      Env::Current().registry().GetValue(root_key::kClassesRoot, key, "");
  if (!value || (value->type != reg_type::kString && value->type != reg_type::kExpandString))
    return "";
  std::string text(value->data.begin(), value->data.end());
  return text.substr(0, text.find('\0'));
}
}  // namespace

AutomationObject CreateObject(std::string_view prog_id) {
  const std::string clsid = ClassesRootText(std::string(prog_id) + "\\CLSID");
  if (clsid.empty() || ClassesRootText("CLSID\\" + clsid + "\\InprocServer32").empty()) {
    Raise(err::kCantCreate);
  }
  for (const ClassInfo& c : TheTypeLibrary().classes) {
    ClassFactory factory = nullptr;
    if (EqualsNoCase(ToString(c.guid), clsid) &&
        DllGetClassObject(c.guid, &factory) == hresult::kOk) {
      return factory();
    }
  }
  Raise(err::kCantCreate);
}

}  // namespace qorvel
