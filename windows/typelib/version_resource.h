#ifndef QORVEL_WINDOWS_TYPELIB_VERSION_RESOURCE_H_
#define QORVEL_WINDOWS_TYPELIB_VERSION_RESOURCE_H_

#include <string>

#include "qorvel/frame/type_library.h"

namespace qorvel {

// The VERSIONINFO resource of the library file, in resource script form, from the table's
// version block: US English, Windows Latin-1, the numeric versions read from "FileVersion"
// and "ProductVersion" ("1.00.0005" is 1,0,0,5). Empty text when a version doesn't read.
std::string VersionResourceText(const TypeLibrary& lib);

}  // namespace qorvel

#endif  // QORVEL_WINDOWS_TYPELIB_VERSION_RESOURCE_H_
