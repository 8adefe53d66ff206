#ifndef HOSTS_SURFACE_SHAPES_H_
#define HOSTS_SURFACE_SHAPES_H_

#include <span>
#include <string>

#include "hosts/sim_ulmora.h"
#include "hosts/surface_geometry.h"

namespace qorvel::hosts {

// The shapes a script adds to the simulated Ulmora, with the defaults every script face gives a
// field the script leaves out. Angles are in degrees, as a script writes them.
inline constexpr const char* kDefaultSurfaceType = "Kalvane";

struct PlaneShape {
  Vec3 origin;
  Vec3 lat_edge{1, 0, 0};
  Vec3 lon_edge{0, 1, 0};
  int nlats = 2, nlons = 2;
};

struct CylinderShape {
  Vec3 origin;
  Vec3 axis{0, 0, 1};
  Vec3 reference{1, 0, 0};
  double radius = 1;
  double start = 0, angle = 360;
  double length = 1;
  int nlats = 9, nlons = 2;
};

struct SphereShape {
  Vec3 centre;
  Vec3 axis{0, 0, 1};
  Vec3 reference{1, 0, 0};
  double radius = 1;
  double lat_from = -45, lat_to = 45;
  double lon_from = 0, lon_to = 90;
  int nlats = 5, nlons = 5;
};

// Each adds the surface `name` of `type` to the host's model. A shape the builders refuse is
// error 5, "Surface <name>: " and why.
void AddPlane(SimUlmora& host, const std::string& name, const PlaneShape& shape,
              const std::string& type);
void AddCylinder(SimUlmora& host, const std::string& name, const CylinderShape& shape,
                 const std::string& type);
void AddSphere(SimUlmora& host, const std::string& name, const SphereShape& shape,
               const std::string& type);
// Through `points`, 3 * nlats * nlons numbers in the host's layout (first subscript fastest).
void AddGrid(SimUlmora& host, const std::string& name, int nlats, int nlons,
             std::span<const double> points, const std::string& type);

}  // namespace qorvel::hosts

#endif  // HOSTS_SURFACE_SHAPES_H_
