#include "qorvel/platform/memory_registry.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <vector>

#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"

namespace qorvel {
namespace {

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    registry_.SetString(HKEY_LOCAL_MACHINE, "SOFTWARE\\Halvern", "Name", "abc");
    ASSERT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "software\\HALVERN", &key_), ERROR_SUCCESS);
  }
  MemoryRegistry memory_;
  CountingRegistry registry_{memory_};
  HKEY key_ = 0;
};

TEST_F(RegistryTest, QueryCountsBytesWithTheTerminator) {
  uint8_t data[8] = {};
  uint32_t size = sizeof data;
  uint32_t type = 0;
  EXPECT_EQ(registry_.RegQueryValueExA(key_, "name", nullptr, &type, data, &size), ERROR_SUCCESS);
  EXPECT_EQ(type, REG_SZ);
  EXPECT_EQ(size, 4u);
  EXPECT_STREQ(reinterpret_cast<char*>(data), "abc");
}

TEST_F(RegistryTest, BufferBoundary) {
  const std::pair<size_t, int32_t> cases[] = {
      {2047, ERROR_SUCCESS}, {2048, ERROR_SUCCESS}, {2049, ERROR_MORE_DATA}};
  for (const auto& [bytes, result] : cases) {
    registry_.SetValue(HKEY_LOCAL_MACHINE, "SOFTWARE\\Halvern", "Big",
                       RegValue{REG_BINARY, std::vector<uint8_t>(bytes, 'x')});
    std::vector<uint8_t> buffer(2048, ' ');
    uint32_t size = 2048;
    uint32_t type = 0;
    EXPECT_EQ(registry_.RegQueryValueExA(key_, "Big", nullptr, &type, buffer.data(), &size),
              result);
    EXPECT_EQ(size, bytes);
    EXPECT_EQ(buffer[0], result == ERROR_SUCCESS ? 'x' : ' ') << "nothing copied on more data";
  }
}

TEST_F(RegistryTest, HandlesFailOnceClosedOrUnknown) {
  uint32_t size = 0;
  EXPECT_EQ(registry_.RegQueryValueExA(key_, "missing", nullptr, nullptr, nullptr, &size),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry_.RegCloseKey(key_), ERROR_SUCCESS);
  EXPECT_EQ(registry_.RegQueryValueExA(key_, "Name", nullptr, nullptr, nullptr, &size),
            ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry_.RegCloseKey(key_), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry_.RegQueryValueExA(0, "Name", nullptr, nullptr, nullptr, &size),
            ERROR_INVALID_HANDLE);
  HKEY other = 0;
  EXPECT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Nowhere", &other),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE", nullptr),
            ERROR_INVALID_PARAMETER);
  EXPECT_EQ(registry_.open_handles(), 0);
  EXPECT_EQ(registry_.close_calls(), 2);
}

TEST_F(RegistryTest, SizesCountBytesOfEveryValue) {
  struct Case {
    const char* name;
    RegValue value;
  } cases[] = {
      {"EmptyText", {REG_SZ, {0}}},
      {"NoBytes", {REG_BINARY, {}}},
      {"Unterminated", {REG_SZ, {'a', 'b'}}},
      {"Dword", {REG_DWORD, {0x3c, 0x0a, 0, 0}}},
  };
  for (const Case& c : cases) {
    registry_.SetValue(HKEY_LOCAL_MACHINE, "SOFTWARE\\Halvern", c.name, c.value);
    uint32_t size = 99;
    uint32_t type = 99;
    EXPECT_EQ(registry_.RegQueryValueExA(key_, c.name, nullptr, &type, nullptr, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(size, c.value.data.size()) << c.name << ": size only, with no buffer";
    std::vector<uint8_t> buffer(8, ' ');
    size = static_cast<uint32_t>(buffer.size());
    EXPECT_EQ(registry_.RegQueryValueExA(key_, c.name, nullptr, &type, buffer.data(), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, c.value.type) << c.name;
    ASSERT_EQ(size, c.value.data.size()) << c.name;
    EXPECT_TRUE(std::equal(c.value.data.begin(), c.value.data.end(), buffer.begin())) << c.name;
    EXPECT_EQ(buffer[size], ' ') << c.name << ": nothing written past the value";
  }
}

TEST_F(RegistryTest, SetStringAndSetDwordStoreTheirBytes) {
  registry_.SetString(HKEY_CURRENT_USER, "K", "s", "");
  registry_.SetDword(HKEY_CURRENT_USER, "K", "d", 0x80000001);
  EXPECT_EQ(registry_.GetValue(HKEY_CURRENT_USER, "k", "S"), (RegValue{REG_SZ, {0}}));
  EXPECT_EQ(registry_.GetValue(HKEY_CURRENT_USER, "K", "d"),
            (RegValue{REG_DWORD, {0x01, 0, 0, 0x80}}));
}

TEST_F(RegistryTest, OpenGivesFreshHandlesAndOpensRootsAndSubkeys) {
  HKEY root = 0;
  HKEY again = 0;
  ASSERT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "", &root), ERROR_SUCCESS);
  ASSERT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Halvern", &again), ERROR_SUCCESS);
  EXPECT_NE(root, key_);
  EXPECT_NE(again, key_);
  HKEY below = 0;
  ASSERT_EQ(registry_.RegOpenKeyA(root, "Software", &below), ERROR_SUCCESS);
  HKEY child = 0;
  ASSERT_EQ(registry_.RegOpenKeyA(below, "halvern", &child), ERROR_SUCCESS);
  uint32_t size = 0;
  EXPECT_EQ(registry_.RegQueryValueExA(child, "Name", nullptr, nullptr, nullptr, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(registry_.open_handles(), 5);
  for (HKEY h : {root, again, below, child, key_})
    EXPECT_EQ(registry_.RegCloseKey(h), ERROR_SUCCESS);
  EXPECT_EQ(registry_.open_handles(), 0);
}

TEST_F(RegistryTest, RootsAreKeysThatNeverClose) {
  registry_.SetString(HKEY_CURRENT_USER, "", "AtRoot", "xy");
  uint8_t data[8] = {};
  uint32_t size = sizeof data;
  EXPECT_EQ(registry_.RegQueryValueExA(HKEY_CURRENT_USER, "atroot", nullptr, nullptr, data, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(registry_.RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
  size = sizeof data;
  EXPECT_EQ(registry_.RegQueryValueExA(HKEY_CURRENT_USER, "AtRoot", nullptr, nullptr, data, &size),
            ERROR_SUCCESS);
  HKEY h = 0;
  EXPECT_EQ(registry_.RegOpenKeyA(0x80000004, "", &h), ERROR_INVALID_HANDLE) << "not a root here";
  EXPECT_EQ(registry_.open_handles(), 1);
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
  EXPECT_NE(MemoryRegistry().generation(), MemoryRegistry().generation())
      << "each registry its own";
}

TEST_F(RegistryTest, DeleteKeyTakesTheSubtreeAndSparesSiblings) {
  // "HOST2" sorts between "HOST" and "HOST\\SUB": the tree must still go whole.
  for (const char* key : {"Host", "Host\\Sub", "Host\\Sub\\Deep", "Host2", "Host_X"}) {
    registry_.SetString(HKEY_CURRENT_USER, key, "v", "1");
  }
  EXPECT_EQ(registry_.KeysBelow(HKEY_CURRENT_USER, "host"),
            (std::vector<std::string>{"HKEY_CURRENT_USER\\HOST\\SUB",
                                      "HKEY_CURRENT_USER\\HOST\\SUB\\DEEP"}));
  registry_.DeleteKey(HKEY_CURRENT_USER, "Host");
  EXPECT_FALSE(registry_.KeyExists(HKEY_CURRENT_USER, "Host"));
  EXPECT_FALSE(registry_.KeyExists(HKEY_CURRENT_USER, "Host\\Sub"));
  EXPECT_FALSE(registry_.KeyExists(HKEY_CURRENT_USER, "Host\\Sub\\Deep"));
  EXPECT_TRUE(registry_.KeyExists(HKEY_CURRENT_USER, "Host2"));
  EXPECT_TRUE(registry_.KeyExists(HKEY_CURRENT_USER, "Host_X"));
}

TEST_F(RegistryTest, WritesBelowAnUnknownRootFail) {
  EXPECT_EQ(ErrorOf([&] { registry_.SetString(0x1234, "K", "v", "x"); }), 5);
  EXPECT_EQ(ErrorOf([&] { registry_.CreateKey(0, "K"); }), 5);
}

TEST_F(RegistryTest, ConcurrentReadersKeepTheCounts) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([this] {
      for (int i = 0; i < 200; ++i) {
        HKEY h = 0;
        uint8_t data[8];
        uint32_t size = sizeof data;
        registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Halvern", &h);
        registry_.RegQueryValueExA(h, "Name", nullptr, nullptr, data, &size);
        registry_.RegCloseKey(h);
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(registry_.open_handles(), 1);
  EXPECT_EQ(registry_.close_calls(), 800);
}

}  // namespace
}  // namespace qorvel
