#ifndef WINDOWS_SERVER_MODULE_H_
#define WINDOWS_SERVER_MODULE_H_

#include <windows.h>

#include <oaidl.h>

#include <string>

#include "qorvel/frame/type_library.h"

namespace qorvel::win {

// The DLL itself: its handle and full path, and the type library it carries as a resource,
// loaded once (nullptr when it can't be, so objects then answer without type information).
HMODULE ThisModule();
std::string ThisModulePath();
ITypeLib* ModuleTypeLib();
// The type information of one of the library's types by its identifier; a new reference, or
// nullptr.
ITypeInfo* TypeInfoOf(const Guid& guid);

GUID ToGuid(const Guid& guid);

// The module's lock count, kept by the class factories' LockServer.
void LockModule(bool lock);

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_MODULE_H_
