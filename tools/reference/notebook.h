#ifndef TOOLS_REFERENCE_NOTEBOOK_H_
#define TOOLS_REFERENCE_NOTEBOOK_H_

#include <map>
#include <string>
#include <vector>

#include "qorvel/frame/type_library.h"
#include "tools/reference/notes.h"

namespace qorvel::reference {

// The notes matched against the type library, so that the reference can't fall behind it: the
// library itself, every class, enumeration and member (of the default and the event interface) has
// exactly one note, and every note belongs to something the library publishes.
class NoteBook {
 public:
  // False with one line per problem when the two disagree.
  static bool Build(const TypeLibrary& library, std::vector<Note> notes, NoteBook* book,
                    std::vector<std::string>* problems);

  const Note& ForOwner(const std::string& name) const;  // the library, a class or an enumeration
  const Note& ForMember(const ClassInfo& cls, const MemberInfo& member) const;

 private:
  std::map<std::string, Note> notes_;  // by Note::Key()
};

// "method", "get", "put", as the notes and the pages name a member's kind.
const char* KindName(MemberKind kind);

}  // namespace qorvel::reference

#endif  // TOOLS_REFERENCE_NOTEBOOK_H_
