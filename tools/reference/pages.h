#ifndef TOOLS_REFERENCE_PAGES_H_
#define TOOLS_REFERENCE_PAGES_H_

#include <string>

#include "qorvel/frame/type_library.h"
#include "tools/reference/notebook.h"

namespace qorvel::reference {

// index.html: the library's attributes, its classes and its enumerations.
std::string IndexPage(const TypeLibrary& library, const NoteBook& notes);

// <Class>.html: the class, then each member of its default interface in slot order and each
// event of its event interface.
std::string ClassPage(const TypeLibrary& library, const ClassInfo& cls, const NoteBook& notes);

}  // namespace qorvel::reference

#endif  // TOOLS_REFERENCE_PAGES_H_
