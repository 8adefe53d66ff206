#include "hosts/surface_shapes.h"

#include <numbers>
#include <stdexcept>

#include "qorvel/platform/error.h"

namespace qorvel::hosts {
namespace {

double Radians(double degrees) { return degrees * std::numbers::pi / 180; }

// A builder's refusal is the script's error 5, saying why.
template <class Build>
void Add(SimUlmora& host, const std::string& name, const std::string& type, Build build) {
  SurfaceGrid grid;
  try {
    grid = build();
  } catch (const std::invalid_argument& e) {
    Raise(err::kInvalidCall, "Surface " + name + ": " + e.what());
  }
  host.AddSurface(name, grid, type);
}

}  // namespace

void AddPlane(SimUlmora& host, const std::string& name, const PlaneShape& s,
              const std::string& type) {
  Add(host, name, type,
      [&] { return PlaneGrid(s.origin, s.lat_edge, s.lon_edge, s.nlats, s.nlons); });
}

void AddCylinder(SimUlmora& host, const std::string& name, const CylinderShape& s,
                 const std::string& type) {
  const Cylinder c{.origin = s.origin,
                   .axis = s.axis,
                   .reference = s.reference,
                   .radius = s.radius,
                   .start_angle = Radians(s.start),
                   .angle = Radians(s.angle),
                   .length = s.length,
                   .nlats = s.nlats,
                   .nlons = s.nlons};
  Add(host, name, type, [&] { return CylinderGrid(c); });
}

void AddSphere(SimUlmora& host, const std::string& name, const SphereShape& s,
               const std::string& type) {
  const Sphere sphere{.centre = s.centre,
                      .axis = s.axis,
                      .reference = s.reference,
                      .radius = s.radius,
                      .lat_from = Radians(s.lat_from),
                      .lat_to = Radians(s.lat_to),
                      .lon_from = Radians(s.lon_from),
                      .lon_to = Radians(s.lon_to),
                      .nlats = s.nlats,
                      .nlons = s.nlons};
  Add(host, name, type, [&] { return SphereGrid(sphere); });
}

void AddGrid(SimUlmora& host, const std::string& name, int nlats, int nlons,
             std::span<const double> points, const std::string& type) {
  Add(host, name, type, [&] { return GridThroughPoints(nlats, nlons, points); });
}

}  // namespace qorvel::hosts
