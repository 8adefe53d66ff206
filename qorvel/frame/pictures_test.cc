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

TEST(PicturesTest, IconsAreOne32By32ImageOfTheirDepth) {
  const std::pair<const char*, int> icons[] = {{"Zebrin", 4},
                                               {"Tarvik3", 4},
                                               {"Ulmora27", 4},
                                               {"UlmoraNearestPoints", 8},
                                               {"UlmoraSurfaceInfo", 8}};
  std::set<std::vector<uint8_t>> distinct;
  for (const auto& [name, bits] : icons) {
    auto ico = ControlPicture(name);
    ASSERT_GT(ico.size(), 62u) << name;
    EXPECT_EQ(U16(ico, 2), 1) << name;  // an icon
    EXPECT_EQ(U16(ico, 4), 1) << name;  // one image
    EXPECT_EQ(ico[6], 32);
    EXPECT_EQ(ico[7], 32);
    EXPECT_EQ(ico[8], bits == 4 ? 16 : 0) << name;  // colour count
    EXPECT_EQ(U16(ico, 10), 1) << name;             // planes
    EXPECT_EQ(U16(ico, 12), bits) << name;
    EXPECT_EQ(U32(ico, 14), ico.size() - 22) << name;  // bytes of the image
    const uint32_t offset = U32(ico, 18);
    EXPECT_EQ(U32(ico, offset), 40u);        // BITMAPINFOHEADER
    EXPECT_EQ(U32(ico, offset + 4), 32u);    // width
    EXPECT_EQ(U32(ico, offset + 8), 64u);    // image and mask
    EXPECT_EQ(U16(ico, offset + 14), bits);  // bits per pixel
    EXPECT_EQ(U32(ico, offset + 16), 0u);    // uncompressed
    const size_t palette = size_t(1) << bits;
    EXPECT_EQ(ico.size(), 22 + 40 + palette * 4 + 32 * 32 * bits / 8 + 128) << name;
    distinct.insert({ico.begin(), ico.end()});
  }
  EXPECT_EQ(distinct.size(), 5u);
  EXPECT_TRUE(ControlPicture("ValueBox").empty());
}

TEST(PicturesTest, ToolboxBitmapsAre760BytesOf24Bits) {
  std::set<std::vector<uint8_t>> distinct;
  for (int32_t number = 30000; number <= 30005; ++number) {
    auto bmp = ToolboxBitmap(number);
    ASSERT_EQ(bmp.size(), 760u) << number;
    EXPECT_EQ(U32(bmp, 0), 40u);
    EXPECT_EQ(U32(bmp, 4), 16u);
    EXPECT_EQ(U32(bmp, 8), 15u);
    EXPECT_EQ(U16(bmp, 12), 1);   // planes
    EXPECT_EQ(U16(bmp, 14), 24);  // bits per pixel
    EXPECT_EQ(U32(bmp, 16), 0u);  // uncompressed
    EXPECT_EQ(U32(bmp, 20), 720u);
    distinct.insert({bmp.begin(), bmp.end()});
  }
  EXPECT_EQ(distinct.size(), 6u);
  EXPECT_TRUE(ToolboxBitmap(29999).empty());
  EXPECT_TRUE(ToolboxBitmap(30006).empty());
}

TEST(PicturesTest, EveryPublishedClassHasItsPictures) {
  for (const ClassInfo& c : TheTypeLibrary().classes) {
    const bool drawn = c.control && c.name != "ValueBox";
    EXPECT_EQ(ControlPicture(c.name).empty(), !drawn) << c.name;
    if (c.control) {
      EXPECT_EQ(ToolboxBitmap(c.toolbox_bitmap).size(), 760u) << c.name;
    }
  }
  EXPECT_FALSE(ControlPicture("zebrin").empty());
  EXPECT_TRUE(ControlPicture("").empty());
}

}  // namespace
}  // namespace qorvel
