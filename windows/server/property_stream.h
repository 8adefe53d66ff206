#ifndef WINDOWS_SERVER_PROPERTY_STREAM_H_
#define WINDOWS_SERVER_PROPERTY_STREAM_H_

#include <objidl.h>

#include "qorvel/frame/property_bag.h"

namespace qorvel::win {

// A control's saved properties in a stream, for containers that save controls through
// IPersistStreamInit. The library's own format, little-endian:
//   "QVPB", u16 version (1), u16 count, u32 size of what follows, then `count` entries:
//   u8 name length, the name in UTF-8, u16 VARTYPE, the value (VT_I2 and VT_BOOL 2 bytes,
//   VT_I4 4, VT_R8 8, VT_BSTR a u32 length and UTF-8).
// A control that saves nothing writes the header with no entries.
void WritePropertyStream(const PropertyBag& bag, IStream* stream);
// Raises (a platform HRESULT as the number, with a description) for a stream that is short, of
// another format or version, or malformed; nothing is read past the declared size.
PropertyBag ReadPropertyStream(IStream* stream);
// The most WritePropertyStream can write for the library's controls.
inline constexpr ULONG kMostPropertyStreamBytes = 1024;

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_PROPERTY_STREAM_H_
