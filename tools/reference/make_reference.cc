// Writes the HTML reference of the library's classes from the type library table and the
// hand-written notes:
//   make_reference NOTES OUTPUT_DIR
// It refuses (exit 1) a member without a note and a note for something the table lacks, so the
// pages can't quietly fall behind the table.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "qorvel/frame/type_library.h"
#include "tools/reference/notebook.h"
#include "tools/reference/notes.h"
#include "tools/reference/pages.h"

namespace {

bool WriteFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  out.close();
  if (!out) std::cerr << "make_reference: cannot write " << path << "\n";
  return bool(out);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace qorvel::reference;
  if (argc != 3) {
    std::cerr << "usage: make_reference NOTES OUTPUT_DIR\n";
    return 2;
  }
  const std::string notes_path = argv[1];
  const std::string out_dir = argv[2];

  std::ifstream in(notes_path, std::ios::binary);
  if (!in) {
    std::cerr << "make_reference: cannot read " << notes_path << "\n";
    return 1;
  }
  std::stringstream text;
  text << in.rdbuf();

  std::vector<Note> notes;
  std::string error;
  if (!ParseNotes(text.str(), &notes, &error)) {
    std::cerr << "make_reference: " << notes_path << ": " << error << "\n";
    return 1;
  }
  const qorvel::TypeLibrary& library = qorvel::TheTypeLibrary();
  NoteBook book;
  std::vector<std::string> problems;
  if (!NoteBook::Build(library, std::move(notes), &book, &problems)) {
    for (const std::string& problem : problems) {
      std::cerr << "make_reference: " << notes_path << ": " << problem << "\n";
    }
    return 1;
  }

  if (!WriteFile(out_dir + "/index.html", IndexPage(library, book))) return 1;
  for (const qorvel::ClassInfo& cls : library.classes) {
    if (!WriteFile(out_dir + "/" + cls.name + ".html", ClassPage(library, cls, book))) return 1;
  }
  return 0;
}
