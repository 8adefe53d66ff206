// The control's members for the simulated Ulmora's surfaces: planes, cylinders, sphere patches
// and grids given point by point; the model closed and opened; the data calls failed; the
// nearest points.
#include <string>
#include <vector>

#include "hosts/sim_control_args.h"
#include "hosts/sim_document.h"
#include "hosts/surface_shapes.h"

namespace qorvel::hosts {
namespace {

// AddPlane(host, name [, origin, lat_edge, lon_edge, nlats, nlons, type]): points as
// Array(x, y, z); what is left out takes the default.
Variant AddPlane(ControlArgs& a) {
  a.Takes(2, 8);
  const PlaneShape d;
  const PlaneShape shape{.origin = a.Point(2, d.origin),
                         .lat_edge = a.Point(3, d.lat_edge),
                         .lon_edge = a.Point(4, d.lon_edge),
                         .nlats = a.GridCount(5, d.nlats),
                         .nlons = a.GridCount(6, d.nlons)};
  hosts::AddPlane(*a.Ulmora(0), a.Text(1), shape, a.Text(7, kDefaultSurfaceType));
  return {};
}

// AddCylinder(host, name [, origin, axis, reference, radius, start, angle, length, nlats,
// nlons, type]), angles in degrees.
Variant AddCylinder(ControlArgs& a) {
  a.Takes(2, 12);
  const CylinderShape d;
  const CylinderShape shape{.origin = a.Point(2, d.origin),
                            .axis = a.Point(3, d.axis),
                            .reference = a.Point(4, d.reference),
                            .radius = a.Number(5, d.radius),
                            .start = a.Number(6, d.start),
                            .angle = a.Number(7, d.angle),
                            .length = a.Number(8, d.length),
                            .nlats = a.GridCount(9, d.nlats),
                            .nlons = a.GridCount(10, d.nlons)};
  hosts::AddCylinder(*a.Ulmora(0), a.Text(1), shape, a.Text(11, kDefaultSurfaceType));
  return {};
}

// AddSphere(host, name [, centre, axis, reference, radius, lat_from, lat_to, lon_from, lon_to,
// nlats, nlons, type]), angles in degrees.
Variant AddSphere(ControlArgs& a) {
  a.Takes(2, 13);
  const SphereShape d;
  const SphereShape shape{.centre = a.Point(2, d.centre),
                          .axis = a.Point(3, d.axis),
                          .reference = a.Point(4, d.reference),
                          .radius = a.Number(5, d.radius),
                          .lat_from = a.Number(6, d.lat_from),
                          .lat_to = a.Number(7, d.lat_to),
                          .lon_from = a.Number(8, d.lon_from),
                          .lon_to = a.Number(9, d.lon_to),
                          .nlats = a.GridCount(10, d.nlats),
                          .nlons = a.GridCount(11, d.nlons)};
  hosts::AddSphere(*a.Ulmora(0), a.Text(1), shape, a.Text(12, kDefaultSurfaceType));
  return {};
}

// AddGrid(host, name, points [, type]): points an array Lateral by Longitudinal by 3
// (Dim g(NLats - 1, NLons - 1, 2)); the tangents come from the neighbours.
Variant AddGrid(ControlArgs& a) {
  a.Takes(3, 4);
  const SafeArray points = a.Array(2);
  const std::vector<Bound> b = points.bounds();
  if (b.size() != 3 || b[2].count != 3) a.Bad(2, "an array Lateral by Longitudinal by 3 expected");
  const SafeArray doubles = points.ConvertedTo(VarType::kDouble);
  hosts::AddGrid(*a.Ulmora(0), a.Text(1), b[0].count, b[1].count, doubles.Doubles(),
                 a.Text(3, kDefaultSurfaceType));
  return {};
}

Variant DeleteSurface(ControlArgs& a) {
  a.Takes(2, 2);
  return a.Ulmora(0)->DeleteSurface(a.Text(1));
}

Variant Surfaces(ControlArgs& a) {
  a.Takes(1, 1);
  return TextList(a.Ulmora(0)->surface_names());
}

Variant CloseModel(ControlArgs& a) {
  a.Takes(1, 1);
  a.Ulmora(0)->CloseModel();
  return {};
}

Variant OpenModel(ControlArgs& a) {
  a.Takes(1, 1);
  a.Ulmora(0)->OpenModel();
  return {};
}

// Document(host): the open model's document, or Nothing.
Variant Document(ControlArgs& a) {
  a.Takes(1, 1);
  return Variant(AutomationObject(a.Ulmora(0)->document()));
}

std::shared_ptr<SimDocument> OpenDocument(const ControlArgs& a) {
  const auto document = a.Ulmora(0)->document();
  if (!document) a.Bad(0, "the simulated Ulmora has no model open");
  return document;
}

// FailDataCalls(host, status): the document's data calls answer that status.
Variant FailDataCalls(ControlArgs& a) {
  a.Takes(2, 2);
  OpenDocument(a)->FailDataCalls(a.Long(1));
  return {};
}

Variant EchoNearest(ControlArgs& a) {
  a.Takes(2, 2);
  OpenDocument(a)->set_echo_nearest(a.Flag(1));
  return {};
}

Variant PointList(Vec3 p) {
  const double c[] = {p.x, p.y, p.z};
  return NumberList(c);
}

// Nearest(host, name, point): the nearest point of the surface as Array(x, y, z), as
// getnearestpoint computes it; for an array of points, an array of them.
Variant Nearest(ControlArgs& a) {
  a.Takes(3, 3);
  const SafeArray given = a.Array(2);
  const bool one = given.dims() == 1 && given.size() == 3 && !given.GetFlat(0).is_array();
  std::vector<Vec3> points;
  if (one) {
    points.push_back(a.Point(2));
  } else {
    if (given.dims() != 1) a.Bad(2, "a point or an array of points expected");
    for (int64_t k = 0; k < given.size(); ++k) {
      points.push_back(a.PointIn(given.GetFlat(k), 2));
    }
  }
  const std::vector<Vec3> feet = a.Ulmora(0)->NearestPoints(a.Text(1), points);
  if (one) return PointList(feet.at(0));
  SafeArray list(VarType::kVariant, {Bound{0, int32_t(feet.size())}});
  for (size_t i = 0; i < feet.size(); ++i) list.Put({int32_t(i)}, PointList(feet[i]));
  return Variant(std::move(list));
}

constexpr ControlMember kSurfaceControls[] = {
    {"AddPlane", AddPlane},           {"AddCylinder", AddCylinder},
    {"AddSphere", AddSphere},         {"AddGrid", AddGrid},
    {"DeleteSurface", DeleteSurface}, {"Surfaces", Surfaces},
    {"CloseModel", CloseModel},       {"OpenModel", OpenModel},
    {"Document", Document},           {"FailDataCalls", FailDataCalls},
    {"EchoNearest", EchoNearest},     {"Nearest", Nearest},
};

}  // namespace

std::span<const ControlMember> SurfaceControls() { return kSurfaceControls; }

}  // namespace qorvel::hosts
