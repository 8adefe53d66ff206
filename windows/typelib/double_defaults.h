#ifndef QORVEL_WINDOWS_TYPELIB_DOUBLE_DEFAULTS_H_
#define QORVEL_WINDOWS_TYPELIB_DOUBLE_DEFAULTS_H_

#include <string>
#include <vector>

namespace qorvel {

// Wine's type library writer can't store a Double default value: it saves a record that reads
// back as a VARIANT of no valid type. So a Double default is written as a text placeholder of
// eight characters instead, and then put in its place in the saved file: the record "VT_BSTR,
// length 8, the text" becomes "VT_R8, the 8 bytes of the Double", which fits in its room and is
// how a type library stores a Double.

// The placeholder of the index-th distinct Double.
std::string DoublePlaceholder(size_t index);

// Replaces, in the bytes of a saved type library, every record of each placeholder with that of
// its value. Returns false with `error` when a placeholder has no record.
bool PatchDoubleDefaults(const std::vector<double>& values, std::string* bytes, std::string* error);

}  // namespace qorvel

#endif  // QORVEL_WINDOWS_TYPELIB_DOUBLE_DEFAULTS_H_
