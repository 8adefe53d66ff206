#include "hosts/surface_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <stdexcept>
#include <string>

namespace qorvel::hosts {
namespace {

using std::numbers::pi;

SurfaceGrid Wavy(int n) {
  std::vector<double> points(3 * n * n);
  for (int lon = 0; lon < n; ++lon) {
    for (int lat = 0; lat < n; ++lat) {
      const double x = 6.0 * lat / (n - 1), y = 6.0 * lon / (n - 1);
      const size_t i = lat + n * lon, nn = n * n;
      points[i] = x;
      points[i + nn] = y;
      points[i + 2 * nn] = std::sin(x) * std::cos(y);
    }
  }
  return GridThroughPoints(n, n, points);
}

Cylinder QuarterCylinder() {  // 8 segments over a quarter turn
  return {.origin = {1, 2, 3},
          .axis = {0, 0, 2},
          .reference = {1, 0, 0},
          .radius = 2,
          .angle = pi / 2,
          .length = 5,
          .nlats = 9,
          .nlons = 4};
}

Sphere WholeSphere() {  // poles included, 8 segments per quarter both ways
  return {.centre = {0, 0, 1},
          .axis = {0, 0, 1},
          .reference = {1, 0, 0},
          .radius = 3,
          .lat_from = -pi / 2,
          .lat_to = pi / 2,
          .lon_from = 0,
          .lon_to = 2 * pi,
          .nlats = 17,
          .nlons = 33};
}

struct Shape {
  const char* name;
  std::function<SurfaceGrid()> make;
};

const Shape kShapes[] = {
    {"plane",
     [] {
       return PlaneGrid({1, 1, 1}, {4, 0, 1}, {0, 3, 0}, 5, 4);
     }},
    {"cylinder", [] { return CylinderGrid(QuarterCylinder()); }},
    {"sphere", [] { return SphereGrid(WholeSphere()); }},
    {"wavy", [] { return Wavy(10); }},
    {"1 x N curve",
     [] {
       return GridThroughPoints(1, 4, std::vector<double>{0, 0, 0, 0, 0, 1, 0, -1, 0, 0, 1, 1});
     }},
    {"N x 1 curve",
     [] {
       return PlaneGrid({0, 0, 0}, {2, 2, 0}, {}, 3, 1);
     }},
    {"point",
     [] {
       return PlaneGrid({1, 2, 3}, {}, {}, 1, 1);
     }},
};

TEST(SurfaceGeometryTest, PointsOnTheSurfaceProjectToThemselves) {
  for (const Shape& shape : kShapes) {
    const SurfaceGrid grid = shape.make();
    const SurfaceIndex index(grid.view());
    for (double a : {0.0, 0.37, 0.5, 1.0}) {
      for (double b : {0.0, 0.81, 1.0}) {
        const double lat = 1 + a * (grid.nlats - 1), lon = 1 + b * (grid.nlons - 1);
        const Vec3 on = Evaluate(grid.view(), lat, lon);
        const Projection p = index.Nearest(on);
        const double scale = 1 + Norm(on);
        EXPECT_LE(p.distance, 1e-9 * scale) << shape.name << " at " << lat << ", " << lon;
        EXPECT_LE(Norm(p.point - on), 1e-9 * scale) << shape.name;
        EXPECT_LE(Norm(Evaluate(grid.view(), p.lat_param(), p.lon_param()) - on), 1e-9 * scale);
      }
    }
  }
}

TEST(SurfaceGeometryTest, PointsOffAPlaneDropStraightOntoIt) {
  const SurfaceGrid grid = PlaneGrid({1, 1, 1}, {4, 0, 0}, {0, 3, 4}, 6, 5);
  const SurfaceIndex index(grid.view());
  const Vec3 normal{0, -0.8, 0.6};
  struct Case {
    double lat, lon, offset;
    Vec3 along;  // added off the plane's edges
    double lat_foot, lon_foot;
  };
  const Case cases[] = {
      {2.5, 3.1, 0.7, {}, 2.5, 3.1},   {1, 1, -2, {}, 1, 1},           {6, 5, 1e-6, {}, 6, 5},
      {3.3, 2.2, 100, {}, 3.3, 2.2},   {4, 1, 0.5, {0, -3, -4}, 4, 1}, {6, 2, 1, {2, 0, 0}, 6, 2},
      {1, 5, 1, {-1, 0.6, 0.8}, 1, 5},
  };
  for (const Case& c : cases) {
    const Vec3 foot = Evaluate(grid.view(), c.lat, c.lon);
    const Projection p = index.Nearest(foot + c.offset * normal + c.along);
    EXPECT_LE(Norm(p.point - Evaluate(grid.view(), c.lat_foot, c.lon_foot)), 1e-9 * 10)
        << c.lat << ", " << c.lon;
    EXPECT_NEAR(p.distance, Norm(c.offset * normal + c.along), 1e-9 * 10);
  }
}

// At 8 patches a quarter turn a cylinder's arcs stay within 1.1e-9 of its radius, a sphere's
// patches within 1.6e-5; the nearest point strays from the radial foot as the surface's normal
// strays from the radial direction, the more the farther the query and the nearer the centre.
TEST(SurfaceGeometryTest, PointsOffARoundSurfaceProjectRadially) {
  const Cylinder quarter = QuarterCylinder();
  Cylinder whole = quarter;
  whole.angle = 2 * pi;
  whole.nlats = 33;
  const Sphere sphere = WholeSphere();
  const SurfaceGrid sphere_grid = SphereGrid(sphere);
  const SurfaceIndex sphere_index(sphere_grid.view());
  for (double radius : {0.3, 0.9, 1.1, 4.0}) {
    for (double angle : {0.0, 0.1, 0.77, 1.5}) {
      const Vec3 radial{std::cos(angle), std::sin(angle), 0};
      for (const Cylinder& c : {quarter, whole}) {
        const SurfaceGrid grid = CylinderGrid(c);
        const Vec3 foot = c.origin + Vec3{0, 0, 1.7} + c.radius * radial;
        const double off = std::abs(radius - 1) * c.radius;
        const Projection p =
            SurfaceIndex(grid.view()).Nearest(foot + (radius - 1) * c.radius * radial);
        EXPECT_NEAR(p.distance, off, 1.1e-9 * c.radius) << radius << ", " << angle;
        EXPECT_LE(Norm(p.point - foot), 1.1e-9 * c.radius + 1e-7 * off / radius)
            << radius << ", " << angle;
      }
      const Vec3 direction{0.6 * radial.x, 0.6 * radial.y, 0.8};
      const Projection p = sphere_index.Nearest(sphere.centre + radius * sphere.radius * direction);
      const double off = std::abs(radius - 1) * sphere.radius;
      EXPECT_NEAR(p.distance, off, 1.6e-5 * sphere.radius);
      EXPECT_LE(Norm(p.point - (sphere.centre + sphere.radius * direction)), 1e-3 * off / radius);
    }
  }
}

// Tangents far longer than their cell, or pointing back, fold a patch over itself: the nearest
// point is still the nearest of a dense sample.
TEST(SurfaceGeometryTest, FoldedPatchesGiveTheirNearestPoint) {
  const std::function<void(SurfaceGrid&)> folds[] = {
      [](SurfaceGrid& g) { g.u_after.magnitude[0] = g.u_before.magnitude[1] = -4; },  // a loop
      [](SurfaceGrid& g) {  // a crumple: one corner raised, its tangents steep and opposed
        g.points[11] = 1;
        g.u_after.vector[8] = g.u_before.vector[11] = 6;
        g.t_after.vector[8] = g.t_before.vector[11] = -6;
      },
  };
  for (const auto& fold : folds) {
    SurfaceGrid grid = PlaneGrid({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 2, 2);
    fold(grid);
    const SurfaceIndex index(grid.view());
    for (Vec3 q :
         {Vec3{-0.5, 0.75, 0}, {-0.5, 0.75, -0.5}, {0, 0.5, 0.5}, {0.5, 0, 0}, {0.75, 0.5, 0}}) {
      double sampled = INFINITY;
      for (int i = 0; i <= 400; ++i) {
        for (int j = 0; j <= 100; ++j) {
          sampled =
              std::min(sampled, Norm(Evaluate(grid.view(), 1 + i / 400.0, 1 + j / 100.0) - q));
        }
      }
      EXPECT_LE(index.Nearest(q).distance, sampled + 1e-12) << q.x << ", " << q.y << ", " << q.z;
    }
  }
}

TEST(SurfaceGeometryTest, BadInputIsRefusedWithTheReason) {
  SurfaceGrid grid = PlaneGrid({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 3, 4);
  auto index_of = [&] { SurfaceIndex index(grid.view()); };
  Cylinder cylinder = QuarterCylinder();
  Sphere sphere = WholeSphere();
  struct Case {
    std::function<void()> act;
    const char* reason;
  };
  const Case cases[] = {
      {[] {
         PlaneGrid({}, {1, 0, 0}, {0, 1, 0}, 0, 2);
       },
       "must be 1 to 32767, got 0 by 2"},
      {[] {
         PlaneGrid({}, {1, 0, 0}, {0, 1, 0}, 2, 32768);
       },
       "must be 1 to 32767"},
      {[] {
         PlaneGrid({NAN, 0, 0}, {1, 0, 0}, {0, 1, 0}, 2, 2);
       },
       "not a finite number"},
      {[] {
         PlaneGrid({}, {1, 0, 0}, {2, 0, 0}, 2, 2);
       },
       "edges are parallel"},
      {[=]() mutable {
         cylinder.radius = 0;
         CylinderGrid(cylinder);
       },
       "radius must be above 0"},
      {[=]() mutable {
         sphere.lat_to = 2;
         SphereGrid(sphere);
       },
       "latitudes must rise"},
      {[] { GridThroughPoints(2, 2, std::vector<double>(11)); }, "11 numbers given"},
      {[&] {
         grid.u_after.magnitude.pop_back();
         index_of();
       },
       "U after magnitude holds 11"},
      {[&] {
         grid.t_before.vector[1 + 3 * 2] = NAN;
         index_of();
       },
       "T before direction at (2, 3)"},
      {[&] { Evaluate(grid.view(), 1, 4.5); }, "outside 1 to 3 and 1 to 4"},

  };
  for (const Case& c : cases) {
    grid = PlaneGrid({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 3, 4);
    try {
      c.act();
      ADD_FAILURE() << "taken: " << c.reason;
    } catch (const std::invalid_argument& e) {
      EXPECT_NE(std::string(e.what()).find(c.reason), std::string::npos) << e.what();
    }
  }
  const SurfaceIndex index(grid.view());
  EXPECT_THROW(index.Nearest({0, NAN, 0}), std::invalid_argument);
  EXPECT_THROW(index.Nearest({0, 0, 1e101}), std::invalid_argument);
  EXPECT_EQ(index.Nearest({0.5, 0.5, 2}).distance, 2) << "the index serves on after a refusal";
}

}  // namespace
}  // namespace qorvel::hosts
