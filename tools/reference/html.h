#ifndef TOOLS_REFERENCE_HTML_H_
#define TOOLS_REFERENCE_HTML_H_

#include <functional>
#include <string>
#include <string_view>

#include "tools/reference/notes.h"

namespace qorvel::reference {

std::string Escape(std::string_view text);

// A whole page around `body`: the shared stylesheet inline, so each page stands alone.
std::string Page(std::string_view title, std::string_view body);

// A note's blocks as paragraphs and lists. A `code` span becomes <code>, linked where `link`
// gives an address for its text (a member, a class or an enumeration).
using Linker = std::function<std::string(std::string_view code)>;
std::string RenderNote(const Note& note, const Linker& link);

}  // namespace qorvel::reference

#endif  // TOOLS_REFERENCE_HTML_H_
