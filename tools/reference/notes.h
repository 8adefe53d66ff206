#ifndef TOOLS_REFERENCE_NOTES_H_
#define TOOLS_REFERENCE_NOTES_H_

#include <string>
#include <string_view>
#include <vector>

namespace qorvel::reference {

// One block of a note: a paragraph, or an item of a bulleted list (consecutive items make one
// list).
struct NoteBlock {
  bool item = false;
  std::string text;  // lines joined by single blanks; `code` spans still in backticks
};

// A hand-written note of the reference, under a heading such as "[Tarvik3]" (a class or an
// enumeration), "[Tarvik3.ResizeBlock]" (every kind of a member) or "[Tarvik3.Units get]".
struct Note {
  std::string owner;   // the class or enumeration
  std::string member;  // empty for a note on the owner itself
  std::string kind;    // "get", "put" or empty for every kind
  int line = 0;        // of the heading, for messages
  std::vector<NoteBlock> blocks;

  std::string Key() const;  // as written in the heading, without the brackets
};

// Reads the notes file. Lines starting with '#' are comments, a blank line ends a paragraph,
// a line starting with "- " starts a list item, and other lines continue the block they follow.
// On a malformed file returns false with `error` naming the line.
bool ParseNotes(std::string_view text, std::vector<Note>* notes, std::string* error);

}  // namespace qorvel::reference

#endif  // TOOLS_REFERENCE_NOTES_H_
