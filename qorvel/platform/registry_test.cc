#include "qorvel/platform/registry.h"

#include <gtest/gtest.h>

namespace qorvel {
namespace {

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    registry_.SetString(HKEY_LOCAL_MACHINE, "SOFTWARE\\Halvern", "Name", "abc");
    ASSERT_EQ(registry_.RegOpenKeyA(HKEY_LOCAL_MACHINE, "software\\HALVERN", &key_), ERROR_SUCCESS);
  }
  Registry registry_;
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
  EXPECT_EQ(registry_.open_handles(), 0);
  EXPECT_EQ(registry_.close_calls(), 2);
}

}  // namespace
}  // namespace qorvel
