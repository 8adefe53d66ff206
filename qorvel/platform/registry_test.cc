#include "qorvel/platform/memory_registry.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <vector>

#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel {
namespace {

constexpr const char* kKey = "SOFTWARE\\Halvern";

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    registry_.SetString(root_key::kLocalMachine, kKey, "Name", "abc");
    ASSERT_EQ(registry_.RegOpenKeyA(root_key::kLocalMachine, "software\\HALVERN", &key_),
              reg_status::kSuccess);
  }
  int32_t Query(RegKey key, const char* name, uint8_t* data, uint32_t* size, uint32_t* type) {
    return registry_.RegQueryValueExA(key, name, nullptr, type, data, size);
  }
  MemoryRegistry memory_;
  CountingRegistry registry_{memory_};
  RegKey key_ = 0;
};

// Sizes are bytes as stored, terminators included, and a size-only query gives the same; a
// value larger than the buffer gives reg_status::kMoreData and copies nothing.
TEST_F(RegistryTest, QueriesGiveTypesAndByteCounts) {
  using Bytes = std::vector<uint8_t>;
  // clang-format off
  const std::tuple<const char*, RegValue, uint32_t> cases[] = {
      {"EmptyText", {reg_type::kString, {0}}, 8}, {"NoBytes", {reg_type::kBinary, {}}, 8},
      {"Unterminated", {reg_type::kString, {'a', 'b'}}, 8},
      {"Big", {reg_type::kBinary, Bytes(2047, 'x')}, 2048}, {"Big", {reg_type::kBinary, Bytes(2048, 'x')}, 2048},
      {"Big", {reg_type::kBinary, Bytes(2049, 'x')}, 2048}};
  // clang-format on
  for (const auto& [name, value, buffer_size] : cases) {
    registry_.SetValue(root_key::kLocalMachine, kKey, name, value);
    uint32_t size = 99;
    uint32_t type = 99;
    EXPECT_EQ(Query(key_, name, nullptr, &size, &type), reg_status::kSuccess);
    EXPECT_EQ(size, value.data.size()) << name << ": size only, with no buffer";
    std::vector<uint8_t> buffer(buffer_size + 1, ' ');
    size = buffer_size;
    const bool fits = value.data.size() <= buffer_size;
    EXPECT_EQ(Query(key_, name, buffer.data(), &size, &type),
              fits ? reg_status::kSuccess : reg_status::kMoreData);
    EXPECT_EQ(type, value.type) << name;
    ASSERT_EQ(size, value.data.size()) << name;
    if (fits) {
      EXPECT_TRUE(std::equal(value.data.begin(), value.data.end(), buffer.begin())) << name;
      EXPECT_EQ(buffer[size], ' ') << name << ": nothing written past the value";
    } else {
      EXPECT_EQ(buffer[0], ' ') << "nothing copied on more data";
    }
  }
  registry_.SetString(root_key::kCurrentUser, "K", "s", "");
  registry_.SetDword(root_key::kCurrentUser, "K", "d", 0x80000001);
  EXPECT_EQ(registry_.GetValue(root_key::kLocalMachine, "software\\halvern", "NAME"),
            (RegValue{reg_type::kString, {'a', 'b', 'c', 0}}));
  EXPECT_EQ(registry_.GetValue(root_key::kCurrentUser, "K", "s"),
            (RegValue{reg_type::kString, {0}}));
  EXPECT_EQ(registry_.GetValue(root_key::kCurrentUser, "K", "d"),
            (RegValue{reg_type::kDword, {1, 0, 0, 0x80}}));
}

// A handle is good from its open to its close, each open gives a new one, and the roots are
// keys that are always open.
TEST_F(RegistryTest, HandlesLiveFromOpenToClose) {
  uint32_t size = 0;
  RegKey root = 0, below = 0, other = 0;
  ASSERT_EQ(registry_.RegOpenKeyA(root_key::kLocalMachine, "", &root), reg_status::kSuccess);
  ASSERT_EQ(registry_.RegOpenKeyA(root, "Software", &below), reg_status::kSuccess);
  ASSERT_EQ(registry_.RegOpenKeyA(below, "halvern", &other), reg_status::kSuccess);
  EXPECT_NE(other, key_);
  EXPECT_EQ(Query(other, "Name", nullptr, &size, nullptr), reg_status::kSuccess);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(registry_.open_handles(), 4);
  for (RegKey h : {root, below, other}) EXPECT_EQ(registry_.RegCloseKey(h), reg_status::kSuccess);

  EXPECT_EQ(Query(key_, "missing", nullptr, &size, nullptr), reg_status::kFileNotFound);
  EXPECT_EQ(registry_.RegCloseKey(key_), reg_status::kSuccess);
  EXPECT_EQ(Query(key_, "Name", nullptr, &size, nullptr), reg_status::kInvalidHandle);
  EXPECT_EQ(registry_.RegCloseKey(key_), reg_status::kInvalidHandle);
  EXPECT_EQ(Query(0, "Name", nullptr, &size, nullptr), reg_status::kInvalidHandle);
  EXPECT_EQ(registry_.RegOpenKeyA(root_key::kLocalMachine, "SOFTWARE\\Nowhere", &other),
            reg_status::kFileNotFound);
  EXPECT_EQ(registry_.RegOpenKeyA(root_key::kLocalMachine, "SOFTWARE", nullptr),
            reg_status::kInvalidParameter);
  EXPECT_EQ(registry_.RegOpenKeyA(0x80000004, "", &other), reg_status::kInvalidHandle)
      << "no root here";

  registry_.SetString(root_key::kCurrentUser, "", "AtRoot", "xy");
  EXPECT_EQ(registry_.RegCloseKey(root_key::kCurrentUser), reg_status::kSuccess);
  EXPECT_EQ(Query(root_key::kCurrentUser, "atroot", nullptr, &size, nullptr), reg_status::kSuccess);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(registry_.open_handles(), 0);
}

TEST_F(RegistryTest, EveryWriteMovesTheGeneration) {
  const std::pair<const char*, std::function<void()>> writes[] = {
      {"SetString", [&] { registry_.SetString(root_key::kCurrentUser, "K", "v", "x"); }},
      {"SetDword", [&] { registry_.SetDword(root_key::kCurrentUser, "K", "d", 1); }},
      {"CreateKey", [&] { registry_.CreateKey(root_key::kCurrentUser, "K\\Sub"); }},
      {"DeleteValue", [&] { registry_.DeleteValue(root_key::kCurrentUser, "K", "v"); }},
      {"DeleteKey", [&] { registry_.DeleteKey(root_key::kCurrentUser, "K"); }},
      {"LoadRegText", [&] { memory_.LoadRegText("REGEDIT4\n[HKCU\\K]\n", "g.reg"); }},
  };
  for (const auto& [name, write] : writes) {
    const uint64_t before = memory_.generation();
    write();
    EXPECT_NE(memory_.generation(), before) << name;
  }
  const uint64_t now = memory_.generation();
  registry_.GetValue(root_key::kCurrentUser, "K", "v");
  EXPECT_EQ(memory_.generation(), now) << "reads leave it";
  EXPECT_NE(MemoryRegistry().generation(), MemoryRegistry().generation()) << "each its own";
  EXPECT_EQ(ErrorOf([&] { registry_.SetString(0x1234, "K", "v", "x"); }), 5) << "unknown root";
  EXPECT_EQ(ErrorOf([&] { registry_.CreateKey(0, "K"); }), 5);
}

// "HOST2" and "HOST_X" sort among the keys below "HOST" without being below it. (Deleting a key
// takes the same tree; the .reg tests show it.)
TEST_F(RegistryTest, KeysBelowAreTheSubtreeAlone) {
  for (const char* key : {"Host", "Host\\Sub", "Host\\Sub\\Deep", "Host2", "Host_X"}) {
    registry_.SetString(root_key::kCurrentUser, key, "v", "1");
  }
  EXPECT_EQ(memory_.KeysBelow(root_key::kCurrentUser, "host"),
            (std::vector<std::string>{"HKEY_CURRENT_USER\\HOST\\SUB",
                                      "HKEY_CURRENT_USER\\HOST\\SUB\\DEEP"}));
  // The platform's count is of the keys directly below.
  RegKey host = 0;
  uint32_t sub_keys = 99;
  ASSERT_EQ(registry_.RegOpenKeyA(root_key::kCurrentUser, "host", &host), reg_status::kSuccess);
  EXPECT_EQ(registry_.RegQueryInfoKeyA(host, &sub_keys), reg_status::kSuccess);
  EXPECT_EQ(sub_keys, 1u);
  EXPECT_EQ(registry_.RegQueryInfoKeyA(root_key::kCurrentUser, &sub_keys), reg_status::kSuccess);
  EXPECT_EQ(sub_keys, 3u);
  registry_.DeleteKey(root_key::kCurrentUser, "Host");
  EXPECT_EQ(registry_.RegQueryInfoKeyA(host, &sub_keys), reg_status::kFileNotFound);
  EXPECT_EQ(registry_.RegCloseKey(host), reg_status::kSuccess);
  EXPECT_EQ(registry_.RegQueryInfoKeyA(host, &sub_keys), reg_status::kInvalidHandle);
}

}  // namespace
}  // namespace qorvel
