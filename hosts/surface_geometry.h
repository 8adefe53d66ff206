#ifndef HOSTS_SURFACE_GEOMETRY_H_
#define HOSTS_SURFACE_GEOMETRY_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qorvel::hosts {

// The geometry of a modelling host's surfaces, as a client sees them: a grid of NLats by NLons
// positions (Lateral 1..NLats, Longitudinal 1..NLons), each holding a point and four tangent
// records, "U before", "U after", "T before" and "T after", of a direction (i, j, k), a magnitude
// and two flags (direction free, magnitude free) that the geometry doesn't use.
//
// The host keeps each of these as a flat array with the first subscript fastest: a point or a
// direction array is indexed (lat-1) + NLats*(lon-1) + NLats*NLons*(c-1) for coordinate
// c = 1..3 (all x, then all y, then all z); a magnitude or flag array (lat-1) + NLats*(lon-1).
// The geometry reads those arrays in place through a GridView.
//
// The surface is a network of bicubic Hermite patches, one per grid cell (lat, lon) to
// (lat+1, lon+1), each with its own parameters (u, t) in [0, 1]. U runs along the Lateral
// subscript (from lat to lat+1), T along the Longitudinal one. The derivative leaving a position
// towards lat+1 is its "U after" direction times its magnitude; the derivative arriving at
// lat+1 is that position's "U before" direction times its magnitude; T likewise along lon.
// Derivatives are with respect to the patch's own parameter, and directions are used as given:
// they need not be unit vectors, the derivative is direction * magnitude, and a negative
// magnitude reverses it. Where "before" and "after" agree the surface is smooth across the cell
// boundary; where they don't, it has a crease.
//
// The data hold no twists (the mixed derivative at a corner), so each position's twist is
// estimated from its neighbours: the mean of how its U derivative changes along T and how its T
// derivative changes along U, by central differences (one-sided at the grid's edges), from the
// mean of "before" and "after" inside the grid and from the one a patch uses at an edge. The
// twist belongs to the position, so the patches meeting there agree on it and stay smooth
// across their edges. Zero twists (Ferguson patches) would flatten every corner: a sphere at
// eight patches a quarter turn strays three times as far from its radius with them, while
// planes and cylinders come out the same either way. Through the twists a patch also depends on
// the tangents around its corners: a tangent written changes the patches up to two cells away,
// a point only the four cells around it.
//
// A grid one position wide in a direction is flat in it: a 1 x N or N x 1 grid is a curve
// (its one row of patches has the other parameter fixed at 0) and a 1 x 1 grid is a point.

// Largest NLats or NLons: the host's subscripts are 16-bit.
inline constexpr int kMaxGridCount = 32767;
// Most positions a builder makes, about 700 MB of arrays; beyond it a builder refuses rather
// than exhaust memory.
inline constexpr int64_t kMaxBuiltPositions = int64_t{1} << 22;
// Largest coordinate, derivative component or query coordinate taken: squared distances of
// such numbers still fit in a double.
inline constexpr double kMaxCoordinate = 1e100;

struct Vec3 {
  double x = 0, y = 0, z = 0;

  friend Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
  friend Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
  friend Vec3 operator*(double s, Vec3 a) { return {s * a.x, s * a.y, s * a.z}; }
  friend bool operator==(Vec3 a, Vec3 b) = default;
};
double Dot(Vec3 a, Vec3 b);
Vec3 Cross(Vec3 a, Vec3 b);
double Norm(Vec3 a);

// One tangent group of the host's arrays: vector holds 3 * NLats * NLons numbers, magnitude
// NLats * NLons.
struct TangentView {
  std::span<const double> vector;
  std::span<const double> magnitude;
};

// The host's arrays, read in place: the view must not outlive them.
struct GridView {
  int nlats = 0, nlons = 0;
  std::span<const double> points;  // 3 * NLats * NLons
  TangentView u_before, u_after, t_before, t_after;

  size_t size() const { return size_t(nlats) * size_t(nlons); }
  // Subscripts are 1-based, as the client gives them, and must be in range.
  size_t Index(int lat, int lon) const { return size_t(lat - 1) + size_t(nlats) * (lon - 1); }
  Vec3 Point(int lat, int lon) const {
    const size_t i = Index(lat, lon), n = size();
    return {points[i], points[i + n], points[i + 2 * n]};
  }
  // direction * magnitude
  Vec3 Derivative(const TangentView& group, int lat, int lon) const {
    const size_t i = Index(lat, lon), n = size();
    const std::span<const double> v = group.vector;
    return group.magnitude[i] * Vec3{v[i], v[i + n], v[i + 2 * n]};
  }
};

// Throws std::invalid_argument, saying what and where, unless the counts are 1..kMaxGridCount,
// every array has the size they call for, and every number is finite, with points and
// derivatives within kMaxCoordinate.
void CheckGrid(const GridView& grid);

// A surface's arrays, owned, in the host's layout: the builders' output, for the host to copy
// or to hold and view.
struct SurfaceGrid {
  struct Group {
    std::vector<double> vector, magnitude;
    std::vector<int16_t> dir_free, mag_free;  // 16-bit truth values; the builders leave 0
  };
  int nlats = 0, nlons = 0;
  std::vector<double> points;
  Group u_before, u_after, t_before, t_after;

  GridView view() const&;
  GridView view() const&& = delete;  // a view of a temporary would dangle
};

// The builders refuse bad input with std::invalid_argument: counts outside 1..kMaxGridCount or
// above kMaxBuiltPositions together, numbers that aren't finite, zero or parallel axes, spans
// outside their range or too small for the count (neighbouring positions must be apart by more
// than 1e-12 of the coordinates' size). They give tangents with unit directions, "before" equal
// to "after"; a direction with one position gets derivatives of magnitude 0.

// A parallelogram: position (lat, lon) at origin + (lat-1)/(NLats-1) lat_edge
// + (lon-1)/(NLons-1) lon_edge.
SurfaceGrid PlaneGrid(Vec3 origin, Vec3 lat_edge, Vec3 lon_edge, int nlats, int nlons);

// Angles are in radians, counter-clockwise about the axis. Arcs get derivatives of magnitude
// 4 r tan(a/4) for an arc of angle a on radius r: the cubic meets the circle at its ends and
// middle, and strays from it by 2.7e-4 r over a quarter turn, 1.1e-9 r over an eighth of that.
// A sphere's patches, curved both ways, stray by 1.6e-5 r at eight a quarter turn.
struct Cylinder {
  Vec3 origin;     // on the axis, where the surface starts
  Vec3 axis;       // direction of the axis, any length
  Vec3 reference;  // direction of angle 0, any length; its part along the axis is ignored
  double radius = 1;
  double start_angle = 0;
  double angle = 0;  // span, in (0, 2 pi]
  double length = 1;
  int nlats = 2;  // around the axis, from start_angle
  int nlons = 2;  // along the axis, from origin
};
SurfaceGrid CylinderGrid(const Cylinder& cylinder);

// Latitude is measured from the equator towards the axis (-pi/2 to pi/2), longitude from the
// reference direction, counter-clockwise about the axis.
struct Sphere {
  Vec3 centre;
  Vec3 axis;       // towards latitude pi/2
  Vec3 reference;  // longitude 0 on the equator
  double radius = 1;
  double lat_from = 0, lat_to = 0;  // lat_from < lat_to
  double lon_from = 0, lon_to = 0;  // lon_from < lon_to <= lon_from + 2 pi
  int nlats = 2;                    // along the latitudes, from lat_from
  int nlons = 2;                    // along the longitudes, from lon_from
};
SurfaceGrid SphereGrid(const Sphere& sphere);

// A grid through the points given, 3 * NLats * NLons numbers in the host's layout. Tangents
// by central differences inside (half the chord between the neighbours, Catmull-Rom style)
// and the one-sided chord at the edges.
SurfaceGrid GridThroughPoints(int nlats, int nlons, std::span<const double> points);

// The surface at grid-relative parameters: lat_param in [1, NLats], lon_param in [1, NLons];
// lat_param 2.25 is a quarter of the way from lateral 2 to lateral 3. Checks the arrays'
// sizes and the numbers it reads, not the whole grid.
Vec3 Evaluate(const GridView& grid, double lat_param, double lon_param);

// The nearest point of a surface to a query point: of all the patches that could hold a nearer
// point than the best so far, each searched by Newton's method from a sample of its points, and
// a strongly bent patch (a fold, a loop) quarter by quarter.
struct Projection {
  Vec3 point;
  double distance = 0;
  int lat = 1, lon = 1;      // the patch: its first corner, 1-based
  double u = 0, t = 0;       // on that patch, in [0, 1]
  int patches_searched = 0;  // how many patches the query looked into

  double lat_param() const { return lat + u; }  // for Evaluate
  double lon_param() const { return lon + t; }
};

// A spatial index of one surface, for nearest-point queries that look at a few patches
// however large the grid. Holds the view, not a copy: rebuild it when the data or its storage
// changes.
class SurfaceIndex {
 public:
  explicit SurfaceIndex(GridView grid);  // checks the grid (CheckGrid)

  // Throws std::invalid_argument for a query that isn't finite or exceeds kMaxCoordinate.
  Projection Nearest(Vec3 query) const;

  const GridView& grid() const { return grid_; }

 private:
  struct Box {
    Vec3 lo, hi;
  };
  // A node covers a block of patches; a leaf one of at most 2 x 2, searched patch by patch.
  // An inner node's first child follows it; `second` is the other's index.
  struct Node {
    Box box;
    uint32_t second = 0;  // 0 for a leaf
    int32_t lat = 0, lon = 0;
    uint8_t lats = 0, lons = 0;
  };

  uint32_t Build(int lat0, int lat1, int lon0, int lon1);

  GridView grid_;
  int patch_lats_, patch_lons_;
  std::vector<Vec3> twists_;  // by position, in the grid's order
  std::vector<Node> nodes_;
};

// The index of a surface whose data changes: built on the first query after a change.
class LazySurfaceIndex {
 public:
  void Reset(GridView grid);  // other data or storage
  void Invalidate();          // the same arrays, written
  Projection Nearest(Vec3 query);

 private:
  GridView grid_;
  std::optional<SurfaceIndex> index_;
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SURFACE_GEOMETRY_H_
