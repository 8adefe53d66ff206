#include "hosts/sim_surfaces.h"

#include <stdexcept>

#include "hosts/sim_host.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {
namespace {

// The element type of array i in the data calls' order: flags are truth values.
VarType ElementOf(int i) { return i > 0 && (i - 1) % 4 >= 2 ? VarType::kBool : VarType::kDouble; }
// Whether array i is Lateral by Longitudinal by coordinate.
bool HasCoordinates(int i) { return i == 0 || (i - 1) % 4 == 0; }

std::vector<Bound> ShapeOf(int i, int16_t nlats, int16_t nlons) {
  std::vector<Bound> shape = {{1, nlats}, {1, nlons}};
  if (HasCoordinates(i)) shape.push_back({1, 3});
  return shape;
}

SafeArray DoubleArray(const std::vector<double>& values, std::vector<Bound> shape) {
  SafeArray array(VarType::kDouble, std::move(shape));
  std::copy(values.begin(), values.end(), array.MutableDoubles().begin());
  return array;
}

SafeArray FlagArray(const std::vector<int16_t>& values, std::vector<Bound> shape) {
  SafeArray array(VarType::kBool, shape);
  const int32_t nlats = shape[0].count;
  for (size_t k = 0; k < values.size(); ++k) {
    const int32_t lat = int32_t(k % size_t(nlats)) + 1, lon = int32_t(k / size_t(nlats)) + 1;
    if (values[k] != 0) array.Put({lat, lon}, MakeVariantBool(values[k]));
  }
  return array;
}

}  // namespace

SurfaceArrays ArraysOf(const SurfaceGrid& grid) {
  const auto lats = int16_t(grid.nlats), lons = int16_t(grid.nlons);
  SurfaceArrays arrays;
  arrays[0] = DoubleArray(grid.points, ShapeOf(0, lats, lons));
  int i = 1;
  for (const SurfaceGrid::Group* g :
       {&grid.u_before, &grid.u_after, &grid.t_before, &grid.t_after}) {
    arrays[i] = DoubleArray(g->vector, ShapeOf(i, lats, lons));
    arrays[i + 1] = DoubleArray(g->magnitude, ShapeOf(i + 1, lats, lons));
    arrays[i + 2] = FlagArray(g->dir_free, ShapeOf(i + 2, lats, lons));
    arrays[i + 3] = FlagArray(g->mag_free, ShapeOf(i + 3, lats, lons));
    i += 4;
  }
  return arrays;
}

GridView ViewOf(const SurfaceArrays& a, int16_t nlats, int16_t nlons) {
  for (int i = 0; i < kSurfaceArrays; ++i) {
    if (a[i].element_type() != ElementOf(i) || a[i].bounds() != ShapeOf(i, nlats, nlons)) {
      throw std::invalid_argument("array " + std::to_string(i + 1) +
                                  " is not of the surface's type and shape");
    }
  }
  auto group = [&a](int i) { return TangentView{a[i].Doubles(), a[i + 1].Doubles()}; };
  return {nlats, nlons, a[0].Doubles(), group(1), group(5), group(9), group(13)};
}

void SimSurfaces::Add(const std::string& name, const std::string& type, const SurfaceGrid& grid) {
  if (name.empty()) Raise(err::kInvalidCall, "A surface needs a name");
  auto surface = std::make_unique<Surface>();
  surface->name = name;
  surface->type = type;
  surface->nlats = int16_t(grid.nlats);
  surface->nlons = int16_t(grid.nlons);
  surface->arrays = ArraysOf(grid);
  surface->index.Reset(ViewOf(surface->arrays, surface->nlats, surface->nlons));
  surfaces_[UpperCase(name)] = std::move(surface);
}

bool SimSurfaces::Remove(const std::string& name) { return surfaces_.erase(UpperCase(name)) > 0; }

void SimSurfaces::Clear() { surfaces_.clear(); }

std::vector<std::string> SimSurfaces::names() const {
  std::vector<std::string> names;
  for (const auto& [key, surface] : surfaces_) names.push_back(surface->name);
  return names;
}

SimSurfaces::Surface* SimSurfaces::Find(const std::string& name) const {
  const auto it = surfaces_.find(UpperCase(name));
  return it == surfaces_.end() ? nullptr : it->second.get();
}

SimSurfaces::Surface& SimSurfaces::Named(const std::string& name) const {
  Surface* s = Find(name);
  if (s == nullptr) RejectCommand("Surface not found: " + name);
  return *s;
}

std::optional<Variant> SimSurfaces::Property(const std::string& name,
                                             const std::string& upper_property) const {
  if (upper_property == "EXISTS") return Variant(Find(name) != nullptr);
  if (upper_property == "TYPE") return Variant(Named(name).type);
  if (upper_property == "NLATS") return Variant(int32_t{Named(name).nlats});
  if (upper_property == "NLONS") return Variant(int32_t{Named(name).nlons});
  return std::nullopt;
}

bool SimSurfaces::Read(const std::string& name, SurfaceArrays& arrays, int16_t& nlats,
                       int16_t& nlons) {
  const Surface* s = Find(name);
  if (s == nullptr) return false;
  arrays = s->arrays;
  nlats = s->nlats;
  nlons = s->nlons;
  return true;
}

// The arrays are checked as the geometry will read them before any is taken.
int32_t SimSurfaces::Write(const std::string& name, int16_t nlats, int16_t nlons,
                           const SurfaceArrays& arrays) {
  Surface* s = Find(name);
  if (s == nullptr) return kNoSuchSurface;
  try {
    CheckGrid(ViewOf(arrays, nlats, nlons));
  } catch (const std::invalid_argument&) {
    return kArraysDontFit;
  }
  s->arrays = arrays;
  s->nlats = nlats;
  s->nlons = nlons;
  s->index.Reset(ViewOf(s->arrays, nlats, nlons));
  return 0;
}

void SimSurfaces::Nearest(const std::string& name, std::span<const double> points, int32_t count,
                          std::span<double> nearest) {
  Surface& s = Named(name);
  for (size_t k = 0; k < size_t(count); ++k) {
    const Vec3 q{points[3 * k], points[3 * k + 1], points[3 * k + 2]};
    Vec3 p;
    try {
      p = s.index.Nearest(q).point;
    } catch (const std::invalid_argument& e) {
      Raise(err::kInvalidCall, "Point " + std::to_string(k) + ": " + e.what());
    }
    nearest[3 * k] = p.x;
    nearest[3 * k + 1] = p.y;
    nearest[3 * k + 2] = p.z;
  }
}

GridView SimSurfaces::View(const std::string& name) {
  const Surface& s = Named(name);
  return ViewOf(s.arrays, s.nlats, s.nlons);
}

}  // namespace qorvel::hosts
