#ifndef QORVEL_WINDOWS_TYPELIB_TLB_FILE_CHECK_H_
#define QORVEL_WINDOWS_TYPELIB_TLB_FILE_CHECK_H_

#include <string>
#include <string_view>

namespace qorvel {

// Wine's type library loader trusts the sizes in a file's header and crashes on a cut-short or
// foreign file, so a file is looked at before it is loaded. Returns what is wrong with `bytes`
// as a type library file ("MSFT" form, or a program file that may hold one), or empty text when
// the header and the directory of segments lie within the file. The segments themselves are
// left to the loader.
std::string TypeLibraryFileProblem(std::string_view bytes);

}  // namespace qorvel

#endif  // QORVEL_WINDOWS_TYPELIB_TLB_FILE_CHECK_H_
