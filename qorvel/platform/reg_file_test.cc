#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "qorvel/platform/error.h"
#include "qorvel/platform/memory_registry.h"

namespace qorvel {
namespace {

constexpr const char* kKey = "SOFTWARE\\Test";

std::vector<uint8_t> Bytes(std::string_view text) { return {text.begin(), text.end()}; }

TEST(RegFileTest, LoadsEveryValueForm) {
  MemoryRegistry registry;
  registry.LoadRegText(
      "Windows Registry Editor Version 5.00\r\n"
      "\r\n"
      "; a comment\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Test]\r\n"
      "@=\"default\"\r\n"
      "\"Text\"=\"a \\\"quoted\\\" C:\\\\path\"\r\n"
      "\"Dword\"=dword:00000a3c\r\n"
      "\"Binary\"=hex:01,02,ff\r\n"
      "\"Expand\"=hex(2):25,00,41,00,25,00,00,00\r\n"
      "\"Multi\"=hex(7):61,00,00,00,e9,00,00,00,\\\r\n"
      "    00,00\r\n"
      "\"HexText\"=hex(1):62,00,00,00\r\n"
      "\"Qword\"=hex(b):01,00,00,00,00,00,00,00\r\n"
      "\"Link\"=hex(6):41,00\r\n"
      "\"Empty\"=hex:\r\n",
      "test.reg");
  struct Case {
    const char* name;
    RegValue value;
  } cases[] = {
      {"", {REG_SZ, Bytes(std::string_view("default\0", 8))}},
      {"Text", {REG_SZ, Bytes(std::string_view("a \"quoted\" C:\\path\0", 19))}},
      {"Dword", {REG_DWORD, {0x3c, 0x0a, 0, 0}}},
      {"Binary", {REG_BINARY, {1, 2, 0xff}}},
      // Text in hex forms is UTF-16 in these files and reaches the byte-level calls as UTF-8.
      {"Expand", {REG_EXPAND_SZ, Bytes(std::string_view("%A%\0", 4))}},
      {"Multi", {REG_MULTI_SZ, Bytes(std::string_view("a\0\xC3\xA9\0\0", 6))}},
      {"HexText", {REG_SZ, Bytes(std::string_view("b\0", 2))}},
      {"Qword", {REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}}},
      {"Link", {6, {0x41, 0}}},
      {"Empty", {REG_BINARY, {}}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(registry.GetValue(HKEY_LOCAL_MACHINE, kKey, c.name), c.value) << c.name;
  }
}

TEST(RegFileTest, Regedit4KeepsHexTextAsItsBytes) {
  MemoryRegistry registry;
  registry.LoadRegText(
      "REGEDIT4\n[HKLM\\SOFTWARE\\Test]\n\"E\"=hex(2):25,41,25,00\n\"M\"=hex(7):61,00,62,00,00\n",
      "4.reg");
  EXPECT_EQ(registry.GetValue(HKEY_LOCAL_MACHINE, kKey, "E"),
            (RegValue{REG_EXPAND_SZ, Bytes(std::string_view("%A%\0", 4))}));
  EXPECT_EQ(registry.GetValue(HKEY_LOCAL_MACHINE, kKey, "M"),
            (RegValue{REG_MULTI_SZ, Bytes(std::string_view("a\0b\0\0", 5))}));
}

TEST(RegFileTest, DeletesKeysAndValues) {
  MemoryRegistry registry;
  registry.SetString(HKEY_CURRENT_USER, "A\\B\\C", "x", "1");
  registry.SetString(HKEY_CURRENT_USER, "A", "keep", "1");
  registry.SetString(HKEY_CURRENT_USER, "A", "drop", "1");
  registry.LoadRegText("REGEDIT4\n[-HKEY_CURRENT_USER\\A\\B]\n[HKCU\\A]\n\"drop\"=-\n", "d.reg");
  EXPECT_FALSE(registry.KeyExists(HKEY_CURRENT_USER, "A\\B"));
  EXPECT_FALSE(registry.KeyExists(HKEY_CURRENT_USER, "a\\b\\c"));
  EXPECT_TRUE(registry.GetValue(HKEY_CURRENT_USER, "A", "KEEP").has_value());
  EXPECT_FALSE(registry.GetValue(HKEY_CURRENT_USER, "A", "drop").has_value());
}

TEST(RegFileTest, ReadsUtf16WithByteOrderMark) {
  const std::string text =
      "Windows Registry Editor Version 5.00\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Test]\r\n"
      "\"T\"=\"\xC3\xA9\"\r\n";
  std::string utf16 = "\xFF\xFE";
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\xC3') {
      utf16 += "\xE9";  // é as one UTF-16 unit
      utf16 += '\0';
      ++i;
    } else {
      utf16 += text[i];
      utf16 += '\0';
    }
  }
  MemoryRegistry registry;
  registry.LoadRegText(utf16, "u.reg");
  EXPECT_EQ(registry.GetValue(HKEY_LOCAL_MACHINE, kKey, "T")->data,
            Bytes(std::string_view("\xC3\xA9\0", 3)));
}

TEST(RegFileTest, RefusesMalformedFilesWholeWithTheLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"[HKEY_LOCAL_MACHINE\\X]\n", "m.reg: line 1: not a registry file"},
      {"REGEDIT4\n\"v\"=\"x\"\n", "m.reg: line 2: value before any key"},
      {"REGEDIT4\n[HKLM\\X]\n\"v\"=dword:xyz\n", "m.reg: line 3: bad dword value"},
      {"REGEDIT4\n[HKLM\\X]\n\"v\"=dword:123456789\n", "m.reg: line 3: bad dword value"},
      {"REGEDIT4\n[HKLM\\X]\n\"a\"=hex:01,\\\n  0g\n", "m.reg: line 3: bad hex byte"},
      {"REGEDIT4\n\n[HKEY_NOWHERE\\X]\n", "m.reg: line 3: unknown root key"},
      {"REGEDIT4\n[HKLM\\X\n", "m.reg: line 2: key line without its closing ']'"},
      {"REGEDIT4\n[HKLM\\X]\n\"v\"=\"open\n", "m.reg: line 3: text without its closing quote"},
      {"REGEDIT4\n[HKLM\\X]\n\"v\" \"x\"\n", "m.reg: line 3: expected '='"},
      {"REGEDIT4\n[-HKLM\\X]\n\"v\"=\"x\"\n", "m.reg: line 3: value under a deleted key"},
      {"REGEDIT4\n[HKLM\\X]\n\"v\"=\"a\\q\"\n", "m.reg: line 3: unknown escape"},
      {"REGEDIT4\n[HKLM\\X]\n\"v\"=str:x\n", "m.reg: line 3: unknown value data"},
      {"", "m.reg: line 1: empty file"},
      {"REGEDIT4\n[HKLM\\X]\n[-HKEY_CURRENT_USER]\n", "m.reg: line 3: a root key can't be deleted"},
      {"Windows Registry Editor Version 5.00\n[HKLM\\X]\n\"e\"=hex(2):41,00,\\\n 42\n",
       "m.reg: line 3: UTF-16 text with an odd number of bytes"},
  };
  for (const auto& [text, message] : cases) {
    MemoryRegistry registry;
    try {
      registry.LoadRegText(text, "m.reg");
      ADD_FAILURE() << "accepted: " << text;
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), 5);
      EXPECT_EQ(e.description().rfind(message, 0), 0u) << e.description();
    }
    EXPECT_FALSE(registry.KeyExists(HKEY_LOCAL_MACHINE, "X")) << "half-loaded: " << text;
  }
}

TEST(RegFileTest, MissingFileIsError53) {
  MemoryRegistry registry;
  try {
    registry.LoadRegFile("/nonexistent/file.reg");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 53);
  }
}

TEST(RegFileTest, LinesContinueCommentsAndKeysDoNot) {
  MemoryRegistry registry;
  registry.LoadRegText(
      "\xEF\xBB\xBFREGEDIT4\n"
      "[HKEY_CURRENT_USER\\K]\n"
      "; a comment ending in a backslash \\\n"
      "\"A\"=hex:01,\\\n"
      "\t  02,\\\n"
      "  03\n"
      "\"B\" = dword:00000001\n",
      "c.reg");
  EXPECT_EQ(registry.GetValue(HKEY_CURRENT_USER, "K", "A"), (RegValue{REG_BINARY, {1, 2, 3}}));
  EXPECT_EQ(registry.GetValue(HKEY_CURRENT_USER, "K", "B"), (RegValue{REG_DWORD, {1, 0, 0, 0}}));
}

TEST(RegFileTest, KeyDeletionSparesSiblingsThatSortInside) {
  MemoryRegistry registry;
  for (const char* key : {"App", "App\\Sub", "App2", "App2\\Sub"}) {
    registry.SetString(HKEY_LOCAL_MACHINE, key, "v", "1");
  }
  registry.LoadRegText("REGEDIT4\n[-HKLM\\App]\n", "d.reg");
  EXPECT_FALSE(registry.KeyExists(HKEY_LOCAL_MACHINE, "App\\Sub"));
  EXPECT_TRUE(registry.KeyExists(HKEY_LOCAL_MACHINE, "App2\\Sub"));
}

TEST(RegFileTest, MalformedFileLeavesExistingValuesAlone) {
  MemoryRegistry registry;
  registry.SetString(HKEY_CURRENT_USER, "Keep", "v", "old");
  const std::string text =
      "REGEDIT4\n[-HKCU\\Keep]\n[HKCU\\Keep]\n\"v\"=\"new\"\n\"w\"=hex(zz):00\n";
  try {
    registry.LoadRegText(text, "bad.reg");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.description(), "bad.reg: line 5: bad hex(n): type");
  }
  EXPECT_EQ(registry.GetValue(HKEY_CURRENT_USER, "Keep", "v"),
            (RegValue{REG_SZ, Bytes(std::string_view("old\0", 4))}));
}

TEST(RegFileTest, LoadsFromDisk) {
  const std::string path = ::testing::TempDir() + "reg_file_test.reg";
  std::ofstream(path, std::ios::binary) << "REGEDIT4\r\n[HKCR\\.txt]\r\n@=\"txtfile\"\r\n";
  MemoryRegistry registry;
  registry.LoadRegFile(path);
  std::remove(path.c_str());
  EXPECT_EQ(registry.GetValue(HKEY_CLASSES_ROOT, ".TXT", ""),
            (RegValue{REG_SZ, Bytes(std::string_view("txtfile\0", 8))}));
}

}  // namespace
}  // namespace qorvel
