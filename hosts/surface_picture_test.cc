#include "hosts/surface_picture.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <functional>
#include <numbers>
#include <regex>
#include <stdexcept>
#include <string>

namespace qorvel::hosts {
namespace {

using std::numbers::pi;

size_t Count(const std::string& s, const std::string& what) {
  size_t n = 0;
  for (size_t at = s.find(what); at != std::string::npos; at = s.find(what, at + 1)) ++n;
  return n;
}

SurfaceGrid Plane(int nlats, int nlons) {
  return PlaneGrid({0, 0, 0}, {4, 0, 0}, {0, 3, 1}, nlats, nlons);
}

SurfaceGrid QuarterCylinder() {
  return CylinderGrid({.origin = {0, 0, 0},
                       .axis = {0, 0, 1},
                       .reference = {1, 0, 0},
                       .radius = 2,
                       .angle = pi / 2,
                       .length = 5,
                       .nlats = 5,
                       .nlons = 4});
}

struct Case {
  const char* name;
  std::function<SurfaceGrid()> grid;
  SurfacePicture picture;
  int feet;
  int lines = 0;  // 0: NLats + NLons
};

const Case kCases[] = {
    {"plane with marks",
     [] { return Plane(3, 4); },
     {.title = "plane",
      .marks = {{{1, 1, 2}, Vec3{1, 1, 0.3}}, {{3, 2, -1}, std::nullopt}},
      .highlights = {{2, 2}, {1, 4}}},
     1},
    {"single position, nothing marked", [] { return Plane(1, 1); }, {}, 0},
    {"curve, all points equal",
     [] { return Plane(1, 5); },
     {.marks = {{{1, 1, 1}, Vec3{1, 1, 1}}, {{1, 1, 1}, Vec3{1, 1, 1}}}},
     2},
    {"cylinder from below",
     QuarterCylinder,
     {.marks = {{{3, 3, 2}, Vec3{1.4, 1.4, 2}}},
      .highlights = {{5, 4}},
      .azimuth_degrees = -120,
      .elevation_degrees = -90},
     1},
    {"large grid, every second longitudinal", [] { return Plane(2, 401); }, {}, 0, 2 + 201},
};

TEST(SurfacePicture, DrawsEveryPartOnTheCanvas) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    const SurfaceGrid grid = c.grid();
    const std::string svg = SurfaceSvg(grid.view(), c.picture);
    EXPECT_EQ(svg.rfind("<svg ", 0), 0u);
    EXPECT_TRUE(svg.ends_with("</svg>\n"));
    for (const char* element : {"g", "text", "defs", "marker"})
      EXPECT_EQ(Count(svg, "<" + std::string(element) + " ") +
                    Count(svg, "<" + std::string(element) + ">"),
                Count(svg, "</" + std::string(element) + ">"))
          << element;
    EXPECT_EQ(Count(svg, "nan"), 0u);
    EXPECT_EQ(Count(svg, "inf"), 0u);
    EXPECT_EQ(Count(svg, "<polyline"), size_t(c.lines ? c.lines : grid.nlats + grid.nlons));
    EXPECT_EQ(Count(svg, "class=\"point\""), c.picture.marks.size());
    EXPECT_EQ(Count(svg, "class=\"foot\""), size_t(c.feet));
    EXPECT_GE(Count(svg, "class=\"segment\""), size_t(c.feet));
    EXPECT_EQ(Count(svg, "class=\"moved\""), c.picture.highlights.size());
    EXPECT_EQ(Count(svg, "class=\"position\""), grid.view().size());
    // Every circle lands on the canvas, clear of its edges.
    const std::regex centre(
        "class=\"(?:point|foot|moved|position)\" cx=\"([-0-9.]+)\" cy=\"([-0-9.]+)\"");
    for (std::sregex_iterator m(svg.begin(), svg.end(), centre), end; m != end; ++m) {
      const double x = std::stod((*m)[1]), y = std::stod((*m)[2]);
      EXPECT_TRUE(x >= 10 && x <= 790 && y >= 10 && y <= 590) << m->str();
    }
  }
}

TEST(SurfacePicture, TitleIsEscapedText) {
  const SurfaceGrid grid = Plane(2, 2);
  const std::string svg =
      SurfaceSvg(grid.view(), {.title = "<b> & \"q\" \xff\x01 \xc3\xa9\xe2\x82\xac"});
  EXPECT_NE(
      svg.find(">&lt;b&gt; &amp; &quot;q&quot; \xEF\xBF\xBD\xEF\xBF\xBD \xc3\xa9\xe2\x82\xac<"),
      std::string::npos);
  EXPECT_EQ(svg.find("<b>"), std::string::npos);
}

TEST(SurfacePicture, RefusesBadInput) {
  const double nan = std::nan("");
  const SurfaceGrid grid = Plane(3, 3);
  const struct {
    const char* name;
    SurfacePicture picture;
  } kBad[] = {
      {"point not finite", {.marks = {{{0, nan, 0}, std::nullopt}}}},
      {"highlight outside", {.highlights = {{4, 1}}}},
      {"elevation past the pole", {.elevation_degrees = 91}},
      {"canvas too small", {.width = 10}},
  };
  for (const auto& bad : kBad) {
    SCOPED_TRACE(bad.name);
    EXPECT_THROW(SurfaceSvg(grid.view(), bad.picture), std::invalid_argument);
  }
  GridView short_points = grid.view();
  short_points.points = short_points.points.first(5);
  EXPECT_THROW(SurfaceSvg(short_points, {}), std::invalid_argument);
}

TEST(SurfacePicture, SameUnderACommaLocale) {
  const SurfaceGrid grid = QuarterCylinder();
  const SurfacePicture picture = kCases[3].picture;
  const std::string before = SurfaceSvg(grid.view(), picture);
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "no de_DE.UTF-8 locale";
  const std::string after = SurfaceSvg(grid.view(), picture);
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(before, after);
}

}  // namespace
}  // namespace qorvel::hosts
