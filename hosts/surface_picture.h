#ifndef HOSTS_SURFACE_PICTURE_H_
#define HOSTS_SURFACE_PICTURE_H_

#include <optional>
#include <string>
#include <vector>

#include "hosts/surface_geometry.h"

namespace qorvel::hosts {

// A picture of a surface as the host holds it, for a person to look at an edit rather than
// read it: the grid's laterals and longitudinals over lightly shaded patches, points with the
// segments to their feet on the surface, and chosen grid positions with their tangents.
struct SurfacePicture {
  struct Mark {
    Vec3 point{};
    std::optional<Vec3> foot{};  // drawn as a segment from the point, the foot marked apart
  };
  struct Position {
    int lat = 1, lon = 1;  // 1-based, as the client gives them
  };

  std::string title{};  // any text; escaped, and bytes that aren't UTF-8 shown as U+FFFD
  std::vector<Mark> marks{};
  // Drawn larger, each with its tangents as arrows to the Bezier handles they make
  // (point + after / 3, point - before / 3): the length shows the magnitude as the patch
  // feels it.
  std::vector<Position> highlights{};
  // Orthographic view from this direction, z up: azimuth counter-clockwise from +x about z,
  // elevation above the xy plane.
  double azimuth_degrees = 35;
  double elevation_degrees = 30;
  int width = 800, height = 600;  // pixels, 200 to 10000
};

// An SVG document of the picture, everything fitted to the canvas. Throws
// std::invalid_argument, saying what, for a bad grid (CheckGrid), a point or foot that isn't
// finite or exceeds kMaxCoordinate, a highlight outside the grid, or a bad view or size.
//
// Patches are shaded, and whatever lies behind the surface is drawn faded beneath the shading.
// Large grids keep the document bounded and readable: past 201 positions a side only every so
// many lines are drawn (the edges always), past 129 with fewer than 8 samples per patch edge;
// past 4096 patches no shading, past 4096 positions no position dots.
std::string SurfaceSvg(const GridView& grid, const SurfacePicture& what);

}  // namespace qorvel::hosts

#endif  // HOSTS_SURFACE_PICTURE_H_
