// Writes the library's type library, and the version resource of the library file, from the one
// table:
//   make_typelib <out.tlb> <win32|win64> [<out version .rc>]
// It runs at build time, under Wine on other systems; the processor of the library it writes
// need not be its own.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <fstream>

#include "qorvel/frame/type_library.h"
#include "windows/typelib/typelib_writer.h"
#include "windows/typelib/version_resource.h"
#include "windows/typelib/wide_text.h"

namespace {

int Fail(const char* path, const std::string& message) {
  std::fprintf(stderr, "make_typelib: %s: %s\n", path, message.c_str());
  DeleteFileW(qorvel::Wide(path).c_str());  // nothing half-written for the build to pick up
  return 1;
}

int WriteVersionResource(const char* path) {
  const std::string text = qorvel::VersionResourceText(qorvel::TheTypeLibrary());
  if (text.empty()) return Fail(path, "the table's version block has no numeric version");
  std::ofstream out(path, std::ios::binary);
  out << text;
  out.close();
  return out ? 0 : Fail(path, "could not be written");
}

}  // namespace

int main(int argc, char** argv) {
  if ((argc != 3 && argc != 4) ||
      (std::strcmp(argv[2], "win32") != 0 && std::strcmp(argv[2], "win64") != 0)) {
    std::fprintf(stderr, "usage: make_typelib <out.tlb> <win32|win64> [<out version .rc>]\n");
    return 2;
  }
  const SYSKIND syskind = std::strcmp(argv[2], "win64") == 0 ? SYS_WIN64 : SYS_WIN32;
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
    std::fprintf(stderr, "make_typelib: COM did not start\n");
    return 1;
  }
  std::string error;
  const bool ok =
      qorvel::WriteTypeLibrary(qorvel::TheTypeLibrary(), qorvel::Wide(argv[1]), syskind, &error);
  CoUninitialize();
  if (!ok) return Fail(argv[1], error);
  return argc == 4 ? WriteVersionResource(argv[3]) : 0;
}
