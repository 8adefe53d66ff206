#include "tools/reference/notes.h"

#include <algorithm>
#include <set>

namespace qorvel::reference {
namespace {

bool IsNameChar(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

bool IsName(std::string_view text) {
  if (text.empty()) return false;
  for (char c : text) {
    if (!IsNameChar(c)) return false;
  }
  return true;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) {
    text.remove_suffix(1);
  }
  return text;
}

// "Owner", "Owner.Member" or "Owner.Member get"; false for anything else.
bool ParseHeading(std::string_view inside, Note* note) {
  std::string_view names = inside;
  if (size_t blank = inside.find(' '); blank != std::string_view::npos) {
    names = inside.substr(0, blank);
    note->kind = std::string(Trim(inside.substr(blank + 1)));
    if (note->kind != "get" && note->kind != "put") return false;
  }
  std::string_view owner = names;
  if (size_t dot = names.find('.'); dot != std::string_view::npos) {
    owner = names.substr(0, dot);
    note->member = std::string(names.substr(dot + 1));
    if (!IsName(note->member)) return false;
  } else if (!note->kind.empty()) {
    return false;
  }
  note->owner = std::string(owner);
  return IsName(owner);
}

}  // namespace

std::string Note::Key() const {
  std::string key = owner;
  if (!member.empty()) key += "." + member;
  if (!kind.empty()) key += " " + kind;
  return key;
}

bool ParseNotes(std::string_view text, std::vector<Note>* notes, std::string* error) {
  notes->clear();
  std::set<std::string> keys;
  bool in_block = false;  // the next text line continues the last block
  int line_number = 0;
  auto fail = [&](const std::string& why) {
    *error = "line " + std::to_string(line_number) + ": " + why;
    return false;
  };
  // A note needs text, and every `code` span in it an end.
  auto close_note = [&]() {
    if (notes->empty()) return true;
    const Note& note = notes->back();
    line_number = note.line;
    if (note.blocks.empty()) return fail("note [" + note.Key() + "] is empty");
    for (const NoteBlock& block : note.blocks) {
      if (std::count(block.text.begin(), block.text.end(), '`') % 2 != 0) {
        return fail("note [" + note.Key() + "] has a ` without its closing one");
      }
    }
    return true;
  };
  while (!text.empty()) {
    size_t end = text.find('\n');
    std::string_view raw = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    ++line_number;
    if (!raw.empty() && raw.front() == '#') continue;
    std::string_view line = Trim(raw);
    if (line.empty()) {
      in_block = false;
      continue;
    }
    if (line.front() == '[') {
      if (line.back() != ']') return fail("a heading must end with ']'");
      int heading_line = line_number;
      if (!close_note()) return false;
      line_number = heading_line;
      Note note;
      note.line = line_number;
      if (!ParseHeading(line.substr(1, line.size() - 2), &note)) {
        return fail("malformed heading " + std::string(line) +
                    "; expected [Name], [Class.Member] or [Class.Member get|put]");
      }
      if (!keys.insert(note.Key()).second) return fail("second note [" + note.Key() + "]");
      notes->push_back(std::move(note));
      in_block = false;
      continue;
    }
    if (notes->empty()) return fail("text before the first heading");
    std::vector<NoteBlock>& blocks = notes->back().blocks;
    bool item = line.size() >= 2 && line[0] == '-' && line[1] == ' ';
    if (item || !in_block) {
      blocks.push_back({item, std::string(item ? Trim(line.substr(2)) : line)});
    } else {
      blocks.back().text += ' ';
      blocks.back().text += line;
    }
    in_block = true;
  }
  return close_note();
}

}  // namespace qorvel::reference
