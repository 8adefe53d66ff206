#ifndef QORVEL_WINDOWS_TYPELIB_TYPELIB_READER_H_
#define QORVEL_WINDOWS_TYPELIB_TYPELIB_READER_H_

#include <windows.h>

#include <string>

#include "qorvel/frame/type_library.h"

namespace qorvel {

// Reads a loaded type library back into the table's model, in the order the library holds its
// types. Anything the model can't hold is an error, not a guess: a flag, a parameter mode, a
// calling convention, a default of the wrong type, a vtable out of slot order. On failure
// returns false with `error` naming the item. `syskind` receives the library's platform.
bool ReadTypeLibrary(ITypeLib* lib, TypeLibrary* out, SYSKIND* syskind, std::string* error);

}  // namespace qorvel

#endif  // QORVEL_WINDOWS_TYPELIB_TYPELIB_READER_H_
