#include "qorvel/frame/pictures.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "qorvel/frame/type_library.h"

namespace qorvel {
namespace {

uint32_t U32(std::span<const uint8_t> b, size_t at) {
  return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | uint32_t(b[at + 3]) << 24;
}
uint16_t U16(std::span<const uint8_t> b, size_t at) { return uint16_t(b[at] | b[at + 1] << 8); }

// What a container reads before it draws: one 32x32 icon image of the stated depth, whose
// directory entry agrees with the image it points at.
TEST(PicturesTest, EachDrawnControlHasOne32By32IconOfItsDepth) {
  std::set<std::vector<uint8_t>> distinct;
  for (const ClassInfo& c : TheTypeLibrary().classes) {
    auto ico = ControlPicture(c.name);
    if (!c.control || c.name == "ValueBox") {
      EXPECT_TRUE(ico.empty()) << c.name;
      continue;
    }
    // The surface controls shade their surfaces with 256 colours; the host controls use 16.
    const int bits = c.name == "UlmoraNearestPoints" || c.name == "UlmoraSurfaceInfo" ? 8 : 4;
    ASSERT_GT(ico.size(), 62u) << c.name;
    EXPECT_EQ(U16(ico, 2), 1) << c.name;  // an icon
    EXPECT_EQ(U16(ico, 4), 1) << c.name;  // with one image
    EXPECT_EQ(ico[6], 32);
    EXPECT_EQ(ico[7], 32);
    EXPECT_EQ(U16(ico, 12), bits) << c.name;
    const uint32_t offset = U32(ico, 18);
    EXPECT_EQ(offset + U32(ico, 14), ico.size()) << c.name;
    EXPECT_EQ(U32(ico, offset + 4), 32u);    // width
    EXPECT_EQ(U32(ico, offset + 8), 64u);    // image and mask
    EXPECT_EQ(U16(ico, offset + 14), bits);  // bits per pixel
    EXPECT_EQ(ico.size(), 22 + 40 + (4u << bits) + 32 * 32 * bits / 8 + 128) << c.name;
    distinct.insert({ico.begin(), ico.end()});
  }
  EXPECT_EQ(distinct.size(), 5u);
  EXPECT_FALSE(ControlPicture("zebrin").empty());
  EXPECT_TRUE(ControlPicture("").empty());
}

TEST(PicturesTest, EachControlHasA760Byte16By15ToolboxBitmap) {
  std::set<std::vector<uint8_t>> distinct;
  for (const ClassInfo& c : TheTypeLibrary().classes) {
    if (!c.control) continue;
    auto bmp = ToolboxBitmap(c.toolbox_bitmap);
    ASSERT_EQ(bmp.size(), 760u) << c.name;
    EXPECT_EQ(U32(bmp, 0), 40u);
    EXPECT_EQ(U32(bmp, 4), 16u);
    EXPECT_EQ(U32(bmp, 8), 15u);
    EXPECT_EQ(U16(bmp, 14), 24);  // bits per pixel
    distinct.insert({bmp.begin(), bmp.end()});
  }
  EXPECT_EQ(distinct.size(), 6u);
  EXPECT_TRUE(ToolboxBitmap(29999).empty());
  EXPECT_TRUE(ToolboxBitmap(30006).empty());
}

}  // namespace
}  // namespace qorvel
