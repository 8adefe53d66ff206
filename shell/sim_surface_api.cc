// The simulated Ulmora's surfaces as scripts set them up, fault them and look at them: planes,
// cylinders, sphere patches and grids given point by point; the model closed and opened; the
// data calls failed; the nearest points, and a picture of a surface with points and their feet.
#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "hosts/surface_picture.h"
#include "hosts/surface_shapes.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/file_bytes.h"
#include "shell/sim_api.h"

namespace qvsh {
namespace {

using qorvel::hosts::SimUlmora;
using qorvel::hosts::Vec3;

// A point as a list of three numbers, at `index`.
Vec3 PointAt(lua_State* L, int arg, int index, const std::string& what) {
  if (lua_type(L, index) != LUA_TTABLE || lua_rawlen(L, index) != 3) {
    throw ArgError(arg, what + ": a list of three numbers expected");
  }
  double c[3];
  for (int i = 0; i < 3; ++i) {
    lua_rawgeti(L, index, i + 1);
    if (!lua_isnumber(L, -1)) throw ArgError(arg, what + ": a list of three numbers expected");
    c[i] = lua_tonumber(L, -1);
    lua_pop(L, 1);
  }
  return {c[0], c[1], c[2]};
}

// The fields of a shape's table at `arg`.
class Fields {
 public:
  Fields(lua_State* L, int arg) : L_(L), arg_(arg) { ArgTable(L, arg); }

  Vec3 Point(const char* name, Vec3 fallback = {}) {
    return Read(
        name, [&] { return PointAt(L_, arg_, -1, name); }, fallback);
  }
  double Number(const char* name, double fallback) {
    return Read(
        name,
        [&] {
          if (!lua_isnumber(L_, -1))
            throw ArgError(arg_, std::string(name) + ": a number expected");
          return double(lua_tonumber(L_, -1));
        },
        fallback);
  }
  int Count(const char* name, int fallback) {
    const double n = Number(name, fallback);
    if (!(n >= 1 && n <= qorvel::hosts::kMaxGridCount) || n != std::floor(n)) {
      throw ArgError(arg_, std::string(name) + ": a whole number from 1 to 32767 expected");
    }
    return int(n);
  }
  std::string Text(const char* name, const std::string& fallback) {
    return Read(
        name,
        [&] {
          if (lua_type(L_, -1) != LUA_TSTRING)
            throw ArgError(arg_, std::string(name) + ": text expected");
          return StringAt(L_, -1);
        },
        fallback);
  }

 private:
  template <class Reader, class T>
  T Read(const char* name, Reader read, T fallback) {
    lua_pushstring(L_, name);
    lua_rawget(L_, arg_);  // raw: a table's own __index mustn't raise through this frame
    T value = lua_isnil(L_, -1) ? fallback : read();
    lua_pop(L_, 1);
    return value;
  }

  lua_State* L_;
  int arg_;
};

int AddPlane(lua_State* L) {
  const std::shared_ptr<SimUlmora> host = ArgHost<SimUlmora>(L, 1);
  const std::string name = ArgString(L, 2);
  Fields f(L, 3);
  const qorvel::hosts::PlaneShape d;
  const qorvel::hosts::PlaneShape shape{.origin = f.Point("origin"),
                                        .lat_edge = f.Point("lat_edge", d.lat_edge),
                                        .lon_edge = f.Point("lon_edge", d.lon_edge),
                                        .nlats = f.Count("nlats", d.nlats),
                                        .nlons = f.Count("nlons", d.nlons)};
  qorvel::hosts::AddPlane(*host, name, shape, f.Text("type", qorvel::hosts::kDefaultSurfaceType));
  return 0;
}

int AddCylinder(lua_State* L) {
  const std::shared_ptr<SimUlmora> host = ArgHost<SimUlmora>(L, 1);
  const std::string name = ArgString(L, 2);
  Fields f(L, 3);
  const qorvel::hosts::CylinderShape d;
  const qorvel::hosts::CylinderShape shape{.origin = f.Point("origin"),
                                           .axis = f.Point("axis", d.axis),
                                           .reference = f.Point("reference", d.reference),
                                           .radius = f.Number("radius", d.radius),
                                           .start = f.Number("start", d.start),
                                           .angle = f.Number("angle", d.angle),
                                           .length = f.Number("length", d.length),
                                           .nlats = f.Count("nlats", d.nlats),
                                           .nlons = f.Count("nlons", d.nlons)};
  qorvel::hosts::AddCylinder(*host, name, shape,
                             f.Text("type", qorvel::hosts::kDefaultSurfaceType));
  return 0;
}

int AddSphere(lua_State* L) {
  const std::shared_ptr<SimUlmora> host = ArgHost<SimUlmora>(L, 1);
  const std::string name = ArgString(L, 2);
  Fields f(L, 3);
  const qorvel::hosts::SphereShape d;
  const qorvel::hosts::SphereShape shape{.centre = f.Point("centre"),
                                         .axis = f.Point("axis", d.axis),
                                         .reference = f.Point("reference", d.reference),
                                         .radius = f.Number("radius", d.radius),
                                         .lat_from = f.Number("lat_from", d.lat_from),
                                         .lat_to = f.Number("lat_to", d.lat_to),
                                         .lon_from = f.Number("lon_from", d.lon_from),
                                         .lon_to = f.Number("lon_to", d.lon_to),
                                         .nlats = f.Count("nlats", d.nlats),
                                         .nlons = f.Count("nlons", d.nlons)};
  qorvel::hosts::AddSphere(*host, name, shape, f.Text("type", qorvel::hosts::kDefaultSurfaceType));
  return 0;
}

// Sim.Ulmora.AddGrid(u, name, points [, type]): points Lateral by Longitudinal by 3, as
// ArrayOf("double", grid) makes them; the tangents come from the neighbours.
int AddGrid(lua_State* L) {
  const std::shared_ptr<SimUlmora> host = ArgHost<SimUlmora>(L, 1);
  const std::string name = ArgString(L, 2);
  const qorvel::SafeArray* points = TestArray(L, 3);
  if (points == nullptr) throw ArgError(3, "SafeArray of Lateral by Longitudinal by 3 expected");
  const std::vector<qorvel::Bound> b = points->bounds();
  if (b.size() != 3 || b[2].count != 3) {
    throw ArgError(3, "SafeArray of Lateral by Longitudinal by 3 expected");
  }
  const qorvel::SafeArray doubles = points->ConvertedTo(qorvel::VarType::kDouble);
  const std::string type =
      lua_isnoneornil(L, 4) ? qorvel::hosts::kDefaultSurfaceType : ArgString(L, 4);
  qorvel::hosts::AddGrid(*host, name, b[0].count, b[1].count, doubles.Doubles(), type);
  return 0;
}

int DeleteSurface(lua_State* L) {
  lua_pushboolean(L, ArgHost<SimUlmora>(L, 1)->DeleteSurface(ArgString(L, 2)));
  return 1;
}

int Surfaces(lua_State* L) {
  PushStrings(L, ArgHost<SimUlmora>(L, 1)->surface_names());
  return 1;
}

int CloseModel(lua_State* L) {
  ArgHost<SimUlmora>(L, 1)->CloseModel();
  return 0;
}

int OpenModel(lua_State* L) {
  ArgHost<SimUlmora>(L, 1)->OpenModel();
  return 0;
}

int Document(lua_State* L) {
  const auto document = ArgHost<SimUlmora>(L, 1)->document();
  if (!document) return 0;
  PushObject(L, document);
  return 1;
}

std::shared_ptr<qorvel::hosts::SimDocument> OpenDocument(lua_State* L) {
  const auto document = ArgHost<SimUlmora>(L, 1)->document();
  if (!document) throw ArgError(1, "the simulated Ulmora has no model open");
  return document;
}

int FailDataCalls(lua_State* L) {
  const lua_Integer status = ArgInteger(L, 2);
  if (status < INT32_MIN || status > INT32_MAX) throw ArgError(2, "a Long expected");
  OpenDocument(L)->FailDataCalls(int32_t(status));
  return 0;
}

int EchoNearest(lua_State* L) {
  OpenDocument(L)->set_echo_nearest(lua_toboolean(L, 2));
  return 0;
}

// Points as a list of {x, y, z}, at `index`, for argument `arg`.
std::vector<Vec3> PointsAt(lua_State* L, int arg, int index) {
  if (lua_type(L, index) != LUA_TTABLE) throw ArgError(arg, "a list of {x, y, z} expected");
  std::vector<Vec3> points;
  const lua_Integer n = lua_Integer(lua_rawlen(L, index));
  for (lua_Integer i = 1; i <= n; ++i) {
    lua_rawgeti(L, index, i);
    points.push_back(PointAt(L, arg, -1, "point " + std::to_string(i)));
    lua_pop(L, 1);
  }
  return points;
}

// Grid positions as a list of {lat, lon}, for the field at `index` of argument `arg`.
std::vector<qorvel::hosts::SurfacePicture::Position> PositionsAt(lua_State* L, int arg, int index) {
  const std::string expected = "highlights: a list of {lat, lon} expected";
  if (lua_type(L, index) != LUA_TTABLE) throw ArgError(arg, expected);
  std::vector<qorvel::hosts::SurfacePicture::Position> positions;
  const lua_Integer n = lua_Integer(lua_rawlen(L, index));
  for (lua_Integer i = 1; i <= n; ++i) {
    lua_rawgeti(L, index, i);
    if (lua_type(L, -1) != LUA_TTABLE || lua_rawlen(L, -1) != 2) throw ArgError(arg, expected);
    int at[2];
    for (int k = 0; k < 2; ++k) {
      lua_rawgeti(L, -1, k + 1);
      if (!lua_isinteger(L, -1)) throw ArgError(arg, expected);
      const lua_Integer v = lua_tointeger(L, -1);
      if (v < 1 || v > qorvel::hosts::kMaxGridCount) throw ArgError(arg, expected);
      at[k] = int(v);
      lua_pop(L, 1);
    }
    positions.push_back({at[0], at[1]});
    lua_pop(L, 1);
  }
  return positions;
}

void PushPoint(lua_State* L, Vec3 p) {
  lua_createtable(L, 3, 0);
  const double c[] = {p.x, p.y, p.z};
  for (int i = 0; i < 3; ++i) {
    lua_pushnumber(L, c[i]);
    lua_rawseti(L, -2, i + 1);
  }
}

// Sim.Ulmora.Nearest(u, name, {{x, y, z}, ...}): the nearest point of each, as getnearestpoint
// computes it.
int Nearest(lua_State* L) {
  const std::shared_ptr<SimUlmora> host = ArgHost<SimUlmora>(L, 1);
  const std::vector<Vec3> feet = host->NearestPoints(ArgString(L, 2), PointsAt(L, 3, 3));
  lua_createtable(L, int(feet.size()), 0);
  for (size_t i = 0; i < feet.size(); ++i) {
    PushPoint(L, feet[i]);
    lua_rawseti(L, -2, lua_Integer(i + 1));
  }
  return 1;
}

// Sim.Ulmora.Picture(u, name, path, {title=, points=, highlights=, azimuth=, elevation=}): an
// SVG of the surface as the host holds it, each point with its foot on the surface.
int Picture(lua_State* L) {
  const std::shared_ptr<SimUlmora> host = ArgHost<SimUlmora>(L, 1);
  const std::string name = ArgString(L, 2), path = ArgString(L, 3);
  qorvel::hosts::SurfacePicture what;
  what.title = name;
  std::vector<Vec3> points;
  if (!lua_isnoneornil(L, 4)) {
    Fields f(L, 4);
    what.title = f.Text("title", name);
    what.azimuth_degrees = f.Number("azimuth", what.azimuth_degrees);
    what.elevation_degrees = f.Number("elevation", what.elevation_degrees);
    lua_pushliteral(L, "points");
    if (lua_rawget(L, 4) != LUA_TNIL) points = PointsAt(L, 4, lua_gettop(L));
    lua_pop(L, 1);
    lua_pushliteral(L, "highlights");
    if (lua_rawget(L, 4) != LUA_TNIL) what.highlights = PositionsAt(L, 4, lua_gettop(L));
    lua_pop(L, 1);
  }
  const std::vector<Vec3> feet = host->NearestPoints(name, points);
  for (size_t i = 0; i < points.size(); ++i) what.marks.push_back({points[i], feet[i]});
  std::string svg;
  host->WithSurface(name, [&](const qorvel::hosts::GridView& grid) {
    try {
      svg = qorvel::hosts::SurfaceSvg(grid, what);
    } catch (const std::invalid_argument& e) {
      qorvel::Raise(qorvel::err::kInvalidCall, "Picture of " + name + ": " + e.what());
    }
  });
  qorvel::WriteFileBytes(path, svg);
  return 0;
}

}  // namespace

void AddSurfaceFunctions(lua_State* L) {
  const luaL_Reg functions[] = {{"AddPlane", Protected<AddPlane>},
                                {"AddCylinder", Protected<AddCylinder>},
                                {"AddSphere", Protected<AddSphere>},
                                {"AddGrid", Protected<AddGrid>},
                                {"DeleteSurface", Protected<DeleteSurface>},
                                {"Surfaces", Protected<Surfaces>},
                                {"CloseModel", Protected<CloseModel>},
                                {"OpenModel", Protected<OpenModel>},
                                {"Document", Protected<Document>},
                                {"FailDataCalls", Protected<FailDataCalls>},
                                {"EchoNearest", Protected<EchoNearest>},
                                {"Nearest", Protected<Nearest>},
                                {"Picture", Protected<Picture>},
                                {nullptr, nullptr}};
  luaL_setfuncs(L, functions, 0);
}

}  // namespace qvsh
