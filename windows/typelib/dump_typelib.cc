// Prints a type library in the text form of the table, so the two can be compared:
//   dump_typelib --file <path.tlb> [win32|win64]   a library file, not registered
//   dump_typelib --registered <{guid}> <major> <minor>   the registered library
//   dump_typelib --table                            the table itself
// With a platform after --file, a library for another platform is an error.
#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "qorvel/frame/type_library.h"
#include "windows/typelib/tlb_file_check.h"
#include "windows/typelib/typelib_reader.h"
#include "windows/typelib/typelib_text.h"
#include "windows/typelib/wide_text.h"

namespace {

using Microsoft::WRL::ComPtr;

int Usage() {
  std::fprintf(stderr,
               "usage: dump_typelib --file <path.tlb> [win32|win64]\n"
               "       dump_typelib --registered <{guid}> <major> <minor>\n"
               "       dump_typelib --table\n");
  return 2;
}

int Fail(const std::string& message) {
  std::fprintf(stderr, "dump_typelib: %s\n", message.c_str());
  return 1;
}

// A version number: digits only, and small enough for a WORD.
bool ParseVersion(const char* text, WORD* version) {
  char* end = nullptr;
  const unsigned long value = std::strtoul(text, &end, 10);
  if (!*text || *end || value > 0xffff || *text == '-' || *text == '+') return false;
  *version = static_cast<WORD>(value);
  return true;
}

int Print(const qorvel::TypeLibrary& lib) {
  const std::string text = qorvel::TypeLibraryText(lib);
  std::fwrite(text.data(), 1, text.size(), stdout);
  return std::fflush(stdout) == 0 ? 0 : Fail("could not write the text");
}

int Dump(ITypeLib* loaded, const char* want_syskind) {
  qorvel::TypeLibrary lib;
  SYSKIND syskind;
  std::string error;
  if (!qorvel::ReadTypeLibrary(loaded, &lib, &syskind, &error)) return Fail(error);
  if (want_syskind) {
    const SYSKIND want = std::strcmp(want_syskind, "win64") == 0 ? SYS_WIN64 : SYS_WIN32;
    if (syskind != want) {
      return Fail("the library is for platform " + std::to_string(syskind) + ", not " +
                  want_syskind);
    }
  }
  return Print(lib);
}

int Run(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "--table") == 0) return Print(qorvel::TheTypeLibrary());
  ComPtr<ITypeLib> loaded;
  if ((argc == 3 || argc == 4) && std::strcmp(argv[1], "--file") == 0) {
    const char* syskind = argc == 4 ? argv[3] : nullptr;
    if (syskind && std::strcmp(syskind, "win32") != 0 && std::strcmp(syskind, "win64") != 0) {
      return Usage();
    }
    const std::wstring path = qorvel::Wide(argv[2]);
    std::ifstream in(std::filesystem::path(path), std::ios::binary);
    if (!in) return Fail(std::string(argv[2]) + ": cannot be opened");
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::string problem = qorvel::TypeLibraryFileProblem(bytes);
    if (!problem.empty()) return Fail(std::string(argv[2]) + ": " + problem);
    const HRESULT hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, loaded.GetAddressOf());
    if (FAILED(hr)) return Fail(std::string(argv[2]) + ": " + qorvel::HresultText(hr));
    return Dump(loaded.Get(), syskind);
  }
  if (argc == 5 && std::strcmp(argv[1], "--registered") == 0) {
    GUID guid;
    WORD major, minor;
    if (FAILED(CLSIDFromString(qorvel::Wide(argv[2]).c_str(), &guid))) {
      return Fail(std::string("not a GUID: ") + argv[2]);
    }
    if (!ParseVersion(argv[3], &major) || !ParseVersion(argv[4], &minor)) {
      return Fail(std::string("not a version: ") + argv[3] + " " + argv[4]);
    }
    const HRESULT hr = LoadRegTypeLib(guid, major, minor, 0, loaded.GetAddressOf());
    if (FAILED(hr)) return Fail(std::string(argv[2]) + ": " + qorvel::HresultText(hr));
    return Dump(loaded.Get(), nullptr);
  }
  return Usage();
}

}  // namespace

int main(int argc, char** argv) {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return Fail("COM did not start");
  const int status = Run(argc, argv);
  CoUninitialize();
  return status;
}
