#ifndef QORVEL_MACHINING_TARVIK_STUFF_H_
#define QORVEL_MACHINING_TARVIK_STUFF_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qorvel/frame/host_link.h"
#include "qorvel/platform/safe_array.h"

namespace qorvel {

// The module of the machining host: its link and the small text protocol of its SIZE queries.
namespace tarvik_stuff {

inline HostLink& Link() { return HostLink::Of(Host::kTarvik); }

// The host's version as a 32-bit number; 0 for an empty link, a gone host or a reply that
// doesn't convert.
int32_t FetchHostVersion();

// Sends a query with the host's message dialogs switched off, and restores them when the saved
// setting held "TRUE" in any case. Returns the reply.
std::string QuietHostQuery(const std::string& query);

// Sizes the model (kind 1), a workplane (2), a pattern (3) or a toolpath (4). Fills `values`
// and returns true when the reply holds the right number of fields. A `name` other than ";" is
// quoted in place, so the caller's variable changes.
VariantBool ReadExtents(int16_t kind, SafeArray& values, std::string& name);

// Reduces each run of blanks to one and strips both ends. Positions are 16-bit: a text of more
// than 32,767 characters overflows (error 6).
std::string CollapseBlanks(std::string_view text);

// Whether the host holds a model: any non-zero number in the reply to "SIZE COMPONENTS".
VariantBool ModelLoadedProbe();

// A Double as it goes into a command: the picture "0.######" with the regional decimal symbol.
std::string HostNumberText(double value);

// Text helpers with the semantics of the protocol.
std::vector<std::string_view> SplitAt(std::string_view text, std::string_view separator);
void RemoveAll(std::string& text, std::string_view word);
std::string_view StripBlanks(std::string_view text);

}  // namespace tarvik_stuff
}  // namespace qorvel

#endif  // QORVEL_MACHINING_TARVIK_STUFF_H_
