#include "qorvel/frame/registry_value.h"

#include <gtest/gtest.h>

#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"

namespace qorvel {
namespace {

constexpr const char* kKey = "SOFTWARE\\Halvern\\Test";

class ReadRegistryValueTest : public ::testing::Test {
 protected:
  void Set(uint32_t type, std::vector<uint8_t> bytes) {
    env_.env().registry().SetValue(root_key::kLocalMachine, kKey, "v",
                                   RegValue{type, std::move(bytes)});
  }
  static std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }
  std::string Read() { return ReadRegistryValue(root_key::kLocalMachine, kKey, "v"); }

  ScopedEnv env_;
};

TEST_F(ReadRegistryValueTest, DwordsFormatWithAtLeastThreeDigits) {
  // clang-format off
  const std::pair<uint32_t, const char*> cases[] = {
      {0, "000"}, {5, "005"}, {27, "027"}, {999, "999"}, {2620, "2620"},
      {0x80000000u, "2147483648"}, {0xFFFFFFFFu, "4294967295"}};
  // clang-format on
  for (const auto& [value, text] : cases) {
    env_.env().registry().SetDword(root_key::kLocalMachine, kKey, "v", value);
    EXPECT_EQ(Read(), text) << value;
  }
}

TEST_F(ReadRegistryValueTest, TextPathCutsByByteCount) {
  struct Case {
    uint32_t type;
    std::string stored;
    std::string expected;
  } cases[] = {
      {reg_type::kString, std::string("2620\0", 5), "2620"},
      {reg_type::kString, std::string("\0", 1), ""},    // size 1: empty text
      {reg_type::kString, "", std::string(2048, ' ')},  // size 0: the cut fails
      {reg_type::kString, "abc", "ab"},                 // no terminator: last char lost
      {reg_type::kBinary, "\x01\x02\x03", "\x01\x02"},  // binary takes the text path
      {reg_type::kExpandString, std::string("%PATH%\0", 7), "%PATH%"},  // no expansion
      {reg_type::kString, std::string(2047, 'x') + '\0', std::string(2047, 'x')},
      {reg_type::kString, std::string(2048, 'x') + '\0', "Not Found"},  // more data than the buffer
  };
  for (const Case& c : cases) {
    Set(c.type, Bytes(c.stored));
    EXPECT_EQ(Read(), c.expected) << c.stored.size() << " bytes of type " << c.type;
  }
}

// Each call closes the key it opened, found or not.
TEST_F(ReadRegistryValueTest, MissingKeyOrValueIsNotFound) {
  CountingRegistry& registry = env_.env().registry();
  env_.env().registry().SetString(root_key::kLocalMachine, kKey, "other", "x");
  const int before = registry.close_calls();
  EXPECT_EQ(Read(), "Not Found");
  EXPECT_EQ(ReadRegistryValue(root_key::kLocalMachine, "SOFTWARE\\Nowhere", "v"), "Not Found");
  EXPECT_EQ(ReadRegistryValue(root_key::kCurrentUser, kKey, "other"), "Not Found");
  EXPECT_EQ(registry.close_calls(), before + 3);
  EXPECT_EQ(registry.open_handles(), 0);
}

}  // namespace
}  // namespace qorvel
