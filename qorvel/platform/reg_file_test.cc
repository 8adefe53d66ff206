#include <gtest/gtest.h>

#include "qorvel/platform/error.h"
#include "qorvel/platform/registry.h"

namespace qorvel {
namespace {

constexpr const char* kKey = "SOFTWARE\\Test";

std::vector<uint8_t> Bytes(std::string_view text) { return {text.begin(), text.end()}; }

TEST(RegFileTest, LoadsEveryValueForm) {
  Registry registry;
  registry.LoadRegText(
      "Windows Registry Editor Version 5.00\r\n"
      "\r\n"
      "; a comment\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Test]\r\n"
      "@=\"default\"\r\n"
      "\"Text\"=\"a \\\"quoted\\\" C:\\\\path\"\r\n"
      "\"Dword\"=dword:00000a3c\r\n"
      "\"Binary\"=hex:01,02,ff\r\n"
      "\"Expand\"=hex(2):25,00\r\n"
      "\"Multi\"=hex(7):61,00,00,\\\r\n"
      "    62,00,00\r\n"
      "\"Qword\"=hex(b):01,00,00,00,00,00,00,00\r\n"
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
      {"Expand", {REG_EXPAND_SZ, {0x25, 0}}},
      {"Multi", {REG_MULTI_SZ, {0x61, 0, 0, 0x62, 0, 0}}},
      {"Qword", {REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}}},
      {"Empty", {REG_BINARY, {}}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(registry.GetValue(HKEY_LOCAL_MACHINE, kKey, c.name), c.value) << c.name;
  }
}

TEST(RegFileTest, DeletesKeysAndValues) {
  Registry registry;
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
      "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Test]\r\n\"T\"=\"\xC3\xA9\"\r\n";
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
  Registry registry;
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
  };
  for (const auto& [text, message] : cases) {
    Registry registry;
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
  Registry registry;
  try {
    registry.LoadRegFile("/nonexistent/file.reg");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 53);
  }
}

}  // namespace
}  // namespace qorvel
