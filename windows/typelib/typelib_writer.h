#ifndef QORVEL_WINDOWS_TYPELIB_TYPELIB_WRITER_H_
#define QORVEL_WINDOWS_TYPELIB_TYPELIB_WRITER_H_

#include <windows.h>

#include <string>

#include "qorvel/frame/type_library.h"

namespace qorvel {

// Writes `lib` as a type library file for `syskind` through ICreateTypeLib2. On failure returns
// false with `error` naming the call that failed and the item it was writing.
bool WriteTypeLibrary(const TypeLibrary& lib, const std::wstring& path, SYSKIND syskind,
                      std::string* error);

}  // namespace qorvel

#endif  // QORVEL_WINDOWS_TYPELIB_TYPELIB_WRITER_H_
