#ifndef HOSTS_SIM_SURFACES_H_
#define HOSTS_SIM_SURFACES_H_

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "hosts/surface_geometry.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

namespace qorvel::hosts {

// The 17 arrays of a surface in the order the data calls carry them: the points, then for U
// before, U after, T before and T after in turn the direction vectors, magnitudes, direction
// flags and magnitude flags. Lateral by Longitudinal (by coordinate), all from 1.
inline constexpr int kSurfaceArrays = 17;
using SurfaceArrays = std::array<SafeArray, kSurfaceArrays>;

// Statuses the data calls give back beside 0, as the host's own reasons for not doing them.
inline constexpr int32_t kNoSuchSurface = 1;
inline constexpr int32_t kArraysDontFit = 2;  // a write whose arrays disagree with its counts

// The surfaces of the simulated modelling host's model: named (any case) grids of points and
// tangents that are real geometry, read and written whole by the data calls and asked for the
// nearest points. Not thread-safe on its own: the host's lock guards it.
class SimSurfaces {
 public:
  // Adds a surface, or replaces the one of its name. The grid is checked (std::invalid_argument).
  void Add(const std::string& name, const std::string& type, const SurfaceGrid& grid);
  // Removes it; false for a name the model doesn't hold.
  bool Remove(const std::string& name);
  void Clear();
  std::vector<std::string> names() const;

  // "EXISTS", "TYPE", "NLATS" or "NLONS" of the surface `name`, as Evaluate answers them;
  // nullopt for another property. A surface the model doesn't hold exists as false and has
  // nothing else (kCommandRejected).
  std::optional<Variant> Property(const std::string& name, const std::string& upper_property) const;

  // The arrays of a surface as they stand (copies share storage), with its counts; false for
  // a name the model doesn't hold.
  bool Read(const std::string& name, SurfaceArrays& arrays, int16_t& nlats, int16_t& nlons);
  // Takes new arrays for a surface: kNoSuchSurface, kArraysDontFit when an array's type, shape
  // or numbers don't agree with the counts (the surface then stays as it was), else 0.
  int32_t Write(const std::string& name, int16_t nlats, int16_t nlons, const SurfaceArrays& arrays);
  // The nearest point on the surface of each point (x, y, z after one another).
  void Nearest(const std::string& name, std::span<const double> points, int32_t count,
               std::span<double> nearest);
  // A view of the surface's arrays for drawing, valid until the surface next changes.
  GridView View(const std::string& name);

 private:
  struct Surface {
    std::string name;
    std::string type;
    int16_t nlats = 0, nlons = 0;
    SurfaceArrays arrays;
    LazySurfaceIndex index;
  };
  Surface* Find(const std::string& name) const;
  Surface& Named(const std::string& name) const;  // kCommandRejected for a name it doesn't hold

  std::map<std::string, std::unique_ptr<Surface>> surfaces_;  // upper-cased name
};

// The arrays of a grid in the data calls' order, as the host keeps them.
SurfaceArrays ArraysOf(const SurfaceGrid& grid);
// A view of arrays of that order; std::invalid_argument unless they are Double where the
// geometry reads them.
GridView ViewOf(const SurfaceArrays& arrays, int16_t nlats, int16_t nlons);

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_SURFACES_H_
