#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <thread>
#include <tuple>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include "qorvel/platform/error.h"
#include "qorvel/platform/memory_registry.h"

namespace qorvel {
namespace {

constexpr const char* kKey = "SOFTWARE\\Test";

RegValue Value(uint32_t type, std::string_view bytes) {
  return {type, {bytes.begin(), bytes.end()}};
}

// Latin-1 text as UTF-16, with its byte-order mark or without.
std::string Utf16(std::string_view latin1, bool big_endian, bool mark) {
  std::string out = mark ? (big_endian ? "\xFE\xFF" : "\xFF\xFE") : "";
  for (const char c : latin1) out += big_endian ? std::string{'\0', c} : std::string{c, '\0'};
  return out;
}

// The description of the error 5 a statement raises, "" when it raises none.
template <class Statement>
std::string Refusal(Statement&& statement, int number = 5) {
  try {
    statement();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), number) << e.description();
    return e.description();
  }
  return "";
}

TEST(RegFileTest, LoadsEveryValueForm) {
  MemoryRegistry registry;
  registry.LoadRegText(Utf16("Windows Registry Editor Version 5.00\r\n\r\n; a comment\r\n"
                             "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Test]\r\n@=\"d\xE9\"\r\n"
                             "\"Text\"=\"a \\\"quoted\\\" C:\\\\path\"\r\n"
                             "\"Dword\"=dword:00000a3c\r\n\"Binary\"=hex:01,02,ff\r\n"
                             "\"Expand\"=hex(2):25,00,41,00,25,00,00,00\r\n"
                             "\"Multi\"=hex(7):61,00,00,00,e9,00,00,00,\\\r\n    00,00\r\n"
                             "\"Qword\"=hex(b):01,00,00,00,00,00,00,00\r\n\"Empty\"=hex:\r\n",
                             false, true),
                       "test.reg");
  // Version 4 keeps hex text as its bytes; a UTF-8 mark is allowed, and a comment ending in a
  // backslash goes on no further. A deleted key takes its tree, not the keys that sort inside it.
  for (const char* key : {"SOFTWARE\\Test\\Gone\\Deep", "SOFTWARE\\Test\\Gone2"}) {
    registry.SetString(root_key::kLocalMachine, key, "drop", "1");
  }
  registry.LoadRegText(
      "\xEF\xBB\xBFREGEDIT4\n[-HKLM\\SOFTWARE\\Test\\Gone]\n[HKLM\\SOFTWARE\\Test\\Gone2]\n"
      "\"DROP\"=-\n[HKLM\\SOFTWARE\\Test]\n; a comment \\\n\"E4\"=hex(2):25,41,25,00\n"
      "\"A4\"=hex:01,\\\n\t  02,\\\n  03\n\"B4\" = dword:00000001\n",
      "4.reg");
  EXPECT_FALSE(registry.KeyExists(root_key::kLocalMachine, "software\\test\\gone"));
  EXPECT_FALSE(registry.KeyExists(root_key::kLocalMachine, "SOFTWARE\\Test\\Gone\\Deep"));
  EXPECT_TRUE(registry.KeyExists(root_key::kLocalMachine, "SOFTWARE\\Test\\Gone2"));
  EXPECT_FALSE(registry.GetValue(root_key::kLocalMachine, "SOFTWARE\\Test\\Gone2", "drop"));
  // Text reaches the byte-level calls as UTF-8, hex text of version 5 files included.
  // clang-format off
  const std::pair<const char*, RegValue> cases[] = {
      {"", Value(reg_type::kString, {"d\xC3\xA9\0", 4})},
      {"Text", Value(reg_type::kString, {"a \"quoted\" C:\\path\0", 19})},
      {"Dword", {reg_type::kDword, {0x3c, 0x0a, 0, 0}}},      {"Binary", {reg_type::kBinary, {1, 2, 0xff}}},
      {"Expand", Value(reg_type::kExpandString, {"%A%\0", 4})},  {"E4", Value(reg_type::kExpandString, {"%A%\0", 4})},
      {"Multi", Value(reg_type::kMultiString, {"a\0\xC3\xA9\0\0", 6})},
      {"Qword", {reg_type::kQword, {1, 0, 0, 0, 0, 0, 0, 0}}}, {"Empty", {reg_type::kBinary, {}}},
      {"A4", {reg_type::kBinary, {1, 2, 3}}},                  {"B4", {reg_type::kDword, {1, 0, 0, 0}}}};
  // clang-format on
  for (const auto& [name, value] : cases) {
    EXPECT_EQ(registry.GetValue(root_key::kLocalMachine, kKey, name), value) << name;
  }
}

// Every refusal is error 5 naming the source and what is wrong, and leaves the registry as it was.
TEST(RegFileTest, RefusesMalformedTextWhole) {
  const std::string v4 = "REGEDIT4\n[HKLM\\X]\n";
  const std::string wide = Utf16("REGEDIT4\r\n", false, true);
  // clang-format off
  const std::pair<std::string, const char*> cases[] = {
      {"[HKEY_LOCAL_MACHINE\\X]\n", "line 1: not a registry file"},
      {"REGEDIT4\n\"v\"=\"x\"\n", "line 2: value before any key"},
      {v4 + "\"v\"=dword:xyz\n", "line 3: bad dword value"},
      {v4 + "\"v\"=dword:123456789\n", "line 3: bad dword value"},
      {v4 + "\"a\"=hex:01,\\\n  0g\n", "line 3: bad hex byte"},
      {"REGEDIT4\n\n[HKEY_NOWHERE\\X]\n", "line 3: unknown root key"},
      {"REGEDIT4\n[HKLM\\X\n", "line 2: key line without its closing ']'"},
      {v4 + "\"v\"=\"open\n", "line 3: text without its closing quote"},
      {v4 + "\"v\" \"x\"\n", "line 3: expected '='"},
      {"REGEDIT4\n[-HKLM\\X]\n\"v\"=\"x\"\n", "line 3: value under a deleted key"},
      {v4 + "\"v\"=\"a\\q\"\n", "line 3: unknown escape"},
      {v4 + "\"v\"=str:x\n", "line 3: unknown value data"},
      {v4 + "[-HKEY_CURRENT_USER]\n", "line 3: a root key can't be deleted"},
      {"Windows Registry Editor Version 5.00\n[HKLM\\X]\n\"e\"=hex(2):41,00,\\\n 42\n",
       "line 3: UTF-16 text with an odd number of bytes"},
      {"REGEDIT4\n[-HKCU\\Keep]\n[HKCU\\Keep]\n\"v\"=\"new\"\n\"w\"=hex(zz):00\n",
       "line 5: bad hex(n): type"},
      {"", "empty file"},
      {"\n; REGEDIT4\n", "no \"REGEDIT4\" or \"Windows Registry Editor Version 5.00\" line"},
      // Text in an encoding the editor doesn't write is named, not misread.
      {Utf16("REGEDIT4\r\n", true, true), "UTF-16 big-endian text (byte-order mark FE FF)"},
      {Utf16("REGEDIT4\r\n", false, false), "UTF-16 little-endian text without a byte-order mark"},
      {Utf16("REGEDIT4\r\n", true, false), "UTF-16 big-endian text without a byte-order mark"},
      {std::string("\xFF\xFE\0\0R\0\0\0", 8), "UTF-32 little-endian text (byte-order mark"},
      {std::string("\0\0\0R\0\0\0E", 8), "UTF-32 big-endian text without a byte-order mark"},
      {wide + "\n", "UTF-16 text cut off in the middle of a character"},
      {v4 + std::string(1, '\0'), "a zero byte at offset 18"},
      {wide + std::string(2, '\0'), "a zero character at offset 22"}};
  // clang-format on
  for (const auto& [text, message] : cases) {
    MemoryRegistry registry;
    registry.SetString(root_key::kCurrentUser, "Keep", "v", "old");
    const std::string refusal = Refusal([&] { registry.LoadRegText(text, "m.reg"); });
    EXPECT_EQ(refusal.rfind("m.reg: " + std::string(message), 0), 0u) << refusal;
    EXPECT_FALSE(registry.KeyExists(root_key::kLocalMachine, "X")) << "half-loaded: " << text;
    EXPECT_EQ(registry.GetValue(root_key::kCurrentUser, "Keep", "v"),
              Value(reg_type::kString, {"old\0", 4}));
  }
}

// A file is read only up to a cap, and only while it can still be a registry file, so a device
// or an endless pipe is refused without filling memory.
TEST(RegFileTest, RefusesFilesThatCantBeRegistryFiles) {
  const std::string dir = ::testing::TempDir();
  const std::string reg = dir + "reg_file_test.reg";
  const std::string fifo = dir + "reg_file_test.fifo";
  const std::string text = "REGEDIT4\r\n[HKCR\\.txt]\r\n@=\"txtfile\"\r\n";  // 36 bytes
  std::ofstream(reg, std::ios::binary) << text;
  // clang-format off
  const std::tuple<std::string, size_t, int, std::string> cases[] = {  // "" and 0: it loads
      {reg, 36, 0, ""},  {reg, 35, 5, reg + ": more than 35 bytes"},
      {dir, kMaxRegFileBytes, 5, dir + ": a directory"},
      {"/nonexistent/file.reg", kMaxRegFileBytes, 53, "/nonexistent/file.reg: file not found"},
#ifndef _WIN32
      {fifo, 36, 0, ""}, {fifo, 35, 5, fifo + ": more than 35 bytes"},
      {"/dev/zero", kMaxRegFileBytes, 5, "/dev/zero: a zero byte at offset 0"},
#endif
  };
  // clang-format on
  for (const auto& [path, limit, number, message] : cases) {
    std::thread writer;
#ifndef _WIN32
    if (path == fifo) {  // a pipe tells no size: it is cut off as it is read
      std::remove(fifo.c_str());
      ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
      writer = std::thread([&] { std::ofstream(fifo, std::ios::binary) << text; });
    }
#endif
    MemoryRegistry registry;
    const std::string refusal = Refusal([&] { registry.LoadRegFile(path, limit); }, number);
    if (writer.joinable()) writer.join();
    EXPECT_EQ(refusal.rfind(message, 0), 0u) << path << ": " << refusal;
    EXPECT_EQ(registry.GetValue(root_key::kClassesRoot, ".TXT", "").has_value(), number == 0)
        << path;
  }
  std::remove(reg.c_str());
  std::remove(fifo.c_str());
  EXPECT_EQ(kMaxRegFileBytes, 256u << 20);
}

}  // namespace
}  // namespace qorvel
