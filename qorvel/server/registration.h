#ifndef QORVEL_SERVER_REGISTRATION_H_
#define QORVEL_SERVER_REGISTRATION_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "qorvel/frame/type_library.h"
#include "qorvel/platform/variant.h"
#include "qorvel/server/classes.h"

namespace qorvel {

// The results of the server calls. The numbers are the platform's HRESULTs, so the Windows face
// returns them as they are.
namespace hresult {
inline constexpr int32_t kOk = 0;
inline constexpr int32_t kFalse = 1;
inline constexpr int32_t kClassNotAvailable = static_cast<int32_t>(0x80040111);
inline constexpr int32_t kSelfRegClass = static_cast<int32_t>(0x80040201);  // a refused write
}  // namespace hresult

// The file registration names as the server: the bare name where there is no file system of
// the platform's (the portable build), the DLL's full path on Windows, whose type library entry
// is for the processor the DLL was built for.
struct ServerFile {
  std::string path = "QorvelOLE.ocx";
  bool win64 = false;
};

// The in-process server protocol, on the platform registry. Registering writes the type
// library, the seven classes (programmatic names "QorvelOLE.<class>", apartment-threaded) and
// the interfaces under HKEY_CLASSES_ROOT; unregistering removes exactly that, and the parent
// keys CLSID, Interface and TypeLib when nothing else is left in them. hresult::kSelfRegClass when
// the registry refuses a write.
int32_t DllRegisterServer(const ServerFile& file = {});
int32_t DllUnregisterServer();
// The factory of a class identifier of the library; hresult::kClassNotAvailable for another one
// or for a class that isn't built yet.
int32_t DllGetClassObject(const Guid& clsid, ClassFactory* factory);
// hresult::kOk when no object of the library and no lock is left, hresult::kFalse otherwise.
int32_t DllCanUnloadNow();
// The class factories' LockServer: a lock keeps the library loaded until it is released.
void LockServer(bool lock);

// Creates a published class by its programmatic name ("QorvelOLE.Zebrin", any case), found
// through the registry as a client's runtime finds it: the ProgID's CLSID, that class's
// InprocServer32 entry, then the library's class factory. Raises 429 when the name or its class
// isn't registered, or the class isn't built yet.
AutomationObject CreateObject(std::string_view prog_id);

}  // namespace qorvel

#endif  // QORVEL_SERVER_REGISTRATION_H_
