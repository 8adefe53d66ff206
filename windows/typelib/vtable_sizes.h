#ifndef QORVEL_WINDOWS_TYPELIB_VTABLE_SIZES_H_
#define QORVEL_WINDOWS_TYPELIB_VTABLE_SIZES_H_

#include <string>

namespace qorvel {

// Wine's writer sizes a dual interface's vtable from the base's size in its own process and the
// members' in the library's, so a 32-bit library written by 64-bit Wine says 108 bytes where 20
// slots of 4 are 80. Sets, in the bytes of a saved library whose interfaces all derive from
// IDispatch, each interface's and dual interface's vtable size to IDispatch's slots and its own.
// Returns false with `error` when the bytes don't hold the types they claim.
bool FixVtableSizes(int pointer_size, std::string* bytes, std::string* error);

}  // namespace qorvel

#endif  // QORVEL_WINDOWS_TYPELIB_VTABLE_SIZES_H_
