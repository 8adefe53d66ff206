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
    registry_.SetString(HKEY_LOCAL_MACHINE, kKey, "Name", "abc");
    ASSERT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "software\\HALVERN", &key_), ERROR_SUCCESS);
  }
  int32_t Query(HKEY key, const char* name, uint8_t* data, uint32_t* size, uint32_t* type) {
    return registry_.RegQueryValueExA(key, name, nullptr, type, data, size);
  }
  MemoryRegistry memory_;
  CountingRegistry registry_{memory_};
  HKEY key_ = 0;
};

// Sizes are bytes as stored, terminators included, and a size-only query gives the same; a
// value larger than the buffer gives ERROR_MORE_DATA and copies nothing.
TEST_F(RegistryTest, QueriesGiveTypesAndByteCounts) {
  using Bytes = std::vector<uint8_t>;
  // clang-format off
  const std::tuple<const char*, RegValue, uint32_t> cases[] = {
      {"EmptyText", {REG_SZ, {0}}, 8}, {"NoBytes", {REG_BINARY, {}}, 8},
      {"Unterminated", {REG_SZ, {'a', 'b'}}, 8},
      {"Big", {REG_BINARY, Bytes(2047, 'x')}, 2048}, {"Big", {REG_BINARY, Bytes(2048, 'x')}, 2048},
      {"Big", {REG_BINARY, Bytes(2049, 'x')}, 2048}};
  // clang-format on
  for (const auto& [name, value, buffer_size] : cases) {
    registry_.SetValue(HKEY_LOCAL_MACHINE, kKey, name, value);
    uint32_t size = 99;
    uint32_t type = 99;
    EXPECT_EQ(Query(key_, name, nullptr, &size, &type), ERROR_SUCCESS);
    EXPECT_EQ(size, value.data.size()) << name << ": size only, with no buffer";
    std::vector<uint8_t> buffer(buffer_size + 1, ' ');
    size = buffer_size;
    const bool fits = value.data.size() <= buffer_size;
    EXPECT_EQ(Query(key_, name, buffer.data(), &size, &type),
              fits ? ERROR_SUCCESS : ERROR_MORE_DATA);
    EXPECT_EQ(type, value.type) << name;
    ASSERT_EQ(size, value.data.size()) << name;
    if (fits) {
      EXPECT_TRUE(std::equal(value.data.begin(), value.data.end(), buffer.begin())) << name;
      EXPECT_EQ(buffer[size], ' ') << name << ": nothing written past the value";
    } else {
      EXPECT_EQ(buffer[0], ' ') << "nothing copied on more data";
    }
  }
  registry_.SetString(HKEY_CURRENT_USER, "K", "s", "");
  registry_.SetDword(HKEY_CURRENT_USER, "K", "d", 0x80000001);
  EXPECT_EQ(registry_.GetValue(HKEY_LOCAL_MACHINE, "software\\halvern", "NAME"),
            (RegValue{REG_SZ, {'a', 'b', 'c', 0}}));
  EXPECT_EQ(registry_.GetValue(HKEY_CURRENT_USER, "K", "s"), (RegValue{REG_SZ, {0}}));
  EXPECT_EQ(registry_.GetValue(HKEY_CURRENT_USER, "K", "d"),
            (RegValue{REG_DWORD, {1, 0, 0, 0x80}}));
}

// A handle is good from its open to its close, each open gives a new one, and the roots are
// keys that are always open.
TEST_F(RegistryTest, HandlesLiveFromOpenToClose) {
  uint32_t size = 0;
  HKEY root = 0, below = 0, other = 0;
  ASSERT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "", &root), ERROR_SUCCESS);
  ASSERT_EQ(registry_.RegOpenKeyA(root, "Software", &below), ERROR_SUCCESS);
  ASSERT_EQ(registry_.RegOpenKeyA(below, "halvern", &other), ERROR_SUCCESS);
  EXPECT_NE(other, key_);
  EXPECT_EQ(Query(other, "Name", nullptr, &size, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(registry_.open_handles(), 4);
  for (HKEY h : {root, below, other}) EXPECT_EQ(registry_.RegCloseKey(h), ERROR_SUCCESS);

  EXPECT_EQ(Query(key_, "missing", nullptr, &size, nullptr), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry_.RegCloseKey(key_), ERROR_SUCCESS);
  EXPECT_EQ(Query(key_, "Name", nullptr, &size, nullptr), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry_.RegCloseKey(key_), ERROR_INVALID_HANDLE);
  EXPECT_EQ(Query(0, "Name", nullptr, &size, nullptr), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Nowhere", &other),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE", nullptr),
            ERROR_INVALID_PARAMETER);
  EXPECT_EQ(registry_.RegOpenKeyA(0x80000004, "", &other), ERROR_INVALID_HANDLE) << "no root here";

  registry_.SetString(HKEY_CURRENT_USER, "", "AtRoot", "xy");
  EXPECT_EQ(registry_.RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
  EXPECT_EQ(Query(HKEY_CURRENT_USER, "atroot", nullptr, &size, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(registry_.open_handles(), 0);
}

TEST_F(RegistryTest, EveryWriteMovesTheGeneration) {
  const std::pair<const char*, std::function<void()>> writes[] = {
      {"SetString", [&] { registry_.SetString(HKEY_CURRENT_USER, "K", "v", "x"); }},
      {"SetDword", [&] { registry_.SetDword(HKEY_CURRENT_USER, "K", "d", 1); }},
      {"CreateKey", [&] { registry_.CreateKey(HKEY_CURRENT_USER, "K\\Sub"); }},
      {"DeleteValue", [&] { registry_.DeleteValue(HKEY_CURRENT_USER, "K", "v"); }},
      {"DeleteKey", [&] { registry_.DeleteKey(HKEY_CURRENT_USER, "K"); }},
      {"LoadRegText", [&] { registry_.LoadRegText("REGEDIT4\n[HKCU\\K]\n", "g.reg"); }},
  };
  for (const auto& [name, write] : writes) {
    const uint64_t before = registry_.generation();
    write();
    EXPECT_NE(registry_.generation(), before) << name;
  }
  const uint64_t now = registry_.generation();
  registry_.GetValue(HKEY_CURRENT_USER, "K", "v");
  EXPECT_EQ(registry_.generation(), now) << "reads leave it";
  EXPECT_NE(MemoryRegistry().generation(), MemoryRegistry().generation()) << "each its own";
  EXPECT_EQ(ErrorOf([&] { registry_.SetString(0x1234, "K", "v", "x"); }), 5) << "unknown root";
  EXPECT_EQ(ErrorOf([&] { registry_.CreateKey(0, "K"); }), 5);
}

// "HOST2" and "HOST_X" sort among the keys below "HOST" without being below it. (Deleting a key
// takes the same tree; the .reg tests show it.)
TEST_F(RegistryTest, KeysBelowAreTheSubtreeAlone) {
  for (const char* key : {"Host", "Host\\Sub", "Host\\Sub\\Deep", "Host2", "Host_X"}) {
    registry_.SetString(HKEY_CURRENT_USER, key, "v", "1");
  }
  EXPECT_EQ(registry_.KeysBelow(HKEY_CURRENT_USER, "host"),
            (std::vector<std::string>{"HKEY_CURRENT_USER\\HOST\\SUB",
                                      "HKEY_CURRENT_USER\\HOST\\SUB\\DEEP"}));
}

}  // namespace
}  // namespace qorvel
