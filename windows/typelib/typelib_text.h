#ifndef QORVEL_WINDOWS_TYPELIB_TYPELIB_TEXT_H_
#define QORVEL_WINDOWS_TYPELIB_TYPELIB_TEXT_H_

#include <string>

#include "qorvel/frame/type_library.h"

namespace qorvel {

// A stable text form of everything a type library built from `lib` publishes, one item a line:
// the library's attributes, then its enumerations, interfaces and classes in table order. The
// table and a type library read back from a file give the same text exactly when the file holds
// every class, member, DISPID, parameter mode, default, help string and enumeration of the
// table. Registration data that a type library doesn't hold (misc status, toolbox bitmaps, the
// version block) is left out.
std::string TypeLibraryText(const TypeLibrary& lib);

}  // namespace qorvel

#endif  // QORVEL_WINDOWS_TYPELIB_TYPELIB_TEXT_H_
