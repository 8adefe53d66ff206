#include "tools/reference/notebook.h"

namespace qorvel::reference {
namespace {

// The members a class's page documents: its default interface, then its events.
std::vector<const InterfaceInfo*> InterfacesOf(const TypeLibrary& library, const ClassInfo& cls) {
  std::vector<const InterfaceInfo*> list = {library.FindInterface(cls.default_interface)};
  if (!cls.event_interface.empty()) list.push_back(library.FindInterface(cls.event_interface));
  return list;
}

std::string SharedKey(const ClassInfo& cls, const MemberInfo& member) {
  return cls.name + "." + member.name;
}

std::string OwnKey(const ClassInfo& cls, const MemberInfo& member) {
  return SharedKey(cls, member) + " " + KindName(member.kind);
}

// Names are compared exactly: a note spells a member as the library publishes it.
const ClassInfo* ExactClass(const TypeLibrary& library, const std::string& name) {
  for (const ClassInfo& cls : library.classes) {
    if (cls.name == name) return &cls;
  }
  return nullptr;
}

bool IsEnum(const TypeLibrary& library, const std::string& name) {
  for (const EnumInfo& e : library.enums) {
    if (e.name == name) return true;
  }
  return false;
}

// Whether the note's member (and kind, when it names one) stands in the class's interfaces.
bool Names(const TypeLibrary& library, const ClassInfo& cls, const Note& note) {
  for (const InterfaceInfo* iface : InterfacesOf(library, cls)) {
    for (const MemberInfo& m : iface->members) {
      if (m.name == note.member && (note.kind.empty() || note.kind == KindName(m.kind))) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace

const char* KindName(MemberKind kind) {
  switch (kind) {
    case MemberKind::kGet:
      return "get";
    case MemberKind::kPut:
      return "put";
    case MemberKind::kMethod:
      break;
  }
  return "method";
}

bool NoteBook::Build(const TypeLibrary& library, std::vector<Note> notes, NoteBook* book,
                     std::vector<std::string>* problems) {
  problems->clear();
  book->notes_.clear();
  for (Note& note : notes) {
    const std::string where = "line " + std::to_string(note.line) + ": note [" + note.Key() + "]";
    const ClassInfo* cls = ExactClass(library, note.owner);
    if (note.member.empty()) {
      if (!cls && !IsEnum(library, note.owner) && note.owner != library.name) {
        problems->push_back(where + " names neither the library nor a class or enumeration");
      }
    } else if (!cls) {
      problems->push_back(where + " names no class of the type library");
    } else if (!Names(library, *cls, note)) {
      problems->push_back(where + " is for a member the type library lacks");
    }
    book->notes_[note.Key()] = std::move(note);
  }
  if (!book->notes_.count(library.name)) {
    problems->push_back("the library " + library.name + " has no note");
  }
  for (const ClassInfo& cls : library.classes) {
    if (!book->notes_.count(cls.name)) problems->push_back("class " + cls.name + " has no note");
    for (const InterfaceInfo* iface : InterfacesOf(library, cls)) {
      for (const MemberInfo& m : iface->members) {
        const bool shared = book->notes_.count(SharedKey(cls, m)) > 0;
        const bool own = book->notes_.count(OwnKey(cls, m)) > 0;
        const std::string what = "member " + cls.name + "." + m.name + " (" +
                                 (iface->events ? "event" : KindName(m.kind)) + ")";
        if (!shared && !own) problems->push_back(what + " has no note");
        if (shared && own) problems->push_back(what + " has a shared note and one of its own");
      }
    }
  }
  for (const EnumInfo& e : library.enums) {
    if (!book->notes_.count(e.name)) problems->push_back("enumeration " + e.name + " has no note");
  }
  return problems->empty();
}

const Note& NoteBook::ForOwner(const std::string& name) const { return notes_.at(name); }

const Note& NoteBook::ForMember(const ClassInfo& cls, const MemberInfo& member) const {
  auto own = notes_.find(OwnKey(cls, member));
  return own != notes_.end() ? own->second : notes_.at(SharedKey(cls, member));
}

}  // namespace qorvel::reference
