#include "hosts/surface_geometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <numbers>
#include <queue>
#include <stdexcept>
#include <string>

namespace qorvel::hosts {

double Dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec3 Cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double Norm(Vec3 a) { return std::hypot(a.x, a.y, a.z); }

namespace {

[[noreturn]] void Refuse(const std::string& why) { throw std::invalid_argument(why); }

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.10g", v);
  return text;
}

std::string At(int lat, int lon) {
  return "(" + std::to_string(lat) + ", " + std::to_string(lon) + ")";
}

bool InRange(double v) { return std::isfinite(v) && std::abs(v) <= kMaxCoordinate; }
bool InRange(Vec3 v) { return InRange(v.x) && InRange(v.y) && InRange(v.z); }

Vec3 Unit(Vec3 v) {
  const double n = Norm(v);
  return n > 0 ? (1 / n) * v : Vec3{};
}

// ---- Checks

void CheckCounts(const char* what, int nlats, int nlons) {
  for (int n : {nlats, nlons}) {
    if (n < 1 || n > kMaxGridCount) {
      Refuse(std::string(what) + ": NLats and NLons must be 1 to " + std::to_string(kMaxGridCount) +
             ", got " + std::to_string(nlats) + " by " + std::to_string(nlons));
    }
  }
}

void CheckSize(const char* what, std::span<const double> array, size_t expected) {
  if (array.size() != expected) {
    Refuse(std::string("surface grid: ") + what + " holds " + std::to_string(array.size()) +
           " numbers where " + std::to_string(expected) + " are expected");
  }
}

struct NamedGroup {
  const char* name;
  const TangentView* view;
};

std::array<NamedGroup, 4> Groups(const GridView& g) {
  return {{{"U before", &g.u_before},
           {"U after", &g.u_after},
           {"T before", &g.t_before},
           {"T after", &g.t_after}}};
}

// Counts and sizes only: what reading any position needs.
void CheckShape(const GridView& g) {
  CheckCounts("surface grid", g.nlats, g.nlons);
  CheckSize("the point array", g.points, 3 * g.size());
  for (const NamedGroup& group : Groups(g)) {
    CheckSize((std::string(group.name) + " vector").c_str(), group.view->vector, 3 * g.size());
    CheckSize((std::string(group.name) + " magnitude").c_str(), group.view->magnitude, g.size());
  }
}

void RequireFinite(const char* what, std::initializer_list<double> values) {
  for (double v : values) {
    if (!InRange(v)) {
      Refuse(std::string(what) + ": " + Number(v) + " is not a finite number of at most 1e100");
    }
  }
}
void RequireFinite(const char* what, Vec3 v) { RequireFinite(what, {v.x, v.y, v.z}); }

void RequireBuildable(const char* what, int nlats, int nlons) {
  CheckCounts(what, nlats, nlons);
  if (int64_t{nlats} * nlons > kMaxBuiltPositions) {
    Refuse(std::string(what) + ": " + std::to_string(nlats) + " by " + std::to_string(nlons) +
           " positions exceed the " + std::to_string(kMaxBuiltPositions) + " a grid may hold");
  }
}

// Neighbouring positions must be told apart in the coordinates' precision.
void RequireSpacing(const char* what, const char* span, double length, int count, double scale) {
  if (count < 2) return;
  const double spacing = length / (count - 1);
  if (!(spacing > 1e-100 && spacing > 1e-12 * scale)) {
    Refuse(std::string(what) + ": the " + span + " is too small for " + std::to_string(count) +
           " positions");
  }
}

// ---- Patches as Bezier nets

// The slope at position i of n (0-based) along a row of values: half the difference of the
// neighbours inside, the one difference at an edge.
template <class At>
Vec3 Slope(int i, int n, At at) {
  if (n == 1) return {};
  if (i == 0) return at(1) - at(0);
  if (i == n - 1) return at(i) - at(i - 1);
  return 0.5 * (at(i + 1) - at(i - 1));
}

// The U derivative of a position (1-based): what the patches on either side use, averaged.
Vec3 UDerivative(const GridView& g, int lat, int lon) {
  if (lat == 1) return g.Derivative(g.u_after, lat, lon);
  if (lat == g.nlats) return g.Derivative(g.u_before, lat, lon);
  return 0.5 * (g.Derivative(g.u_before, lat, lon) + g.Derivative(g.u_after, lat, lon));
}
Vec3 TDerivative(const GridView& g, int lat, int lon) {
  if (lon == 1) return g.Derivative(g.t_after, lat, lon);
  if (lon == g.nlons) return g.Derivative(g.t_before, lat, lon);
  return 0.5 * (g.Derivative(g.t_before, lat, lon) + g.Derivative(g.t_after, lat, lon));
}

// The twist at a position (see the header): a patch-local choice would differ between the
// patches sharing a corner and break the smoothness across their edges.
Vec3 Twist(const GridView& g, int lat, int lon) {
  if (g.nlats == 1 || g.nlons == 1) return {};
  const Vec3 along_t = Slope(lon - 1, g.nlons, [&](int i) { return UDerivative(g, lat, i + 1); });
  const Vec3 along_u = Slope(lat - 1, g.nlats, [&](int i) { return TDerivative(g, i + 1, lon); });
  return 0.5 * (along_t + along_u);
}

// Control points b[i][j] of a patch, i along U, j along T. The net's hull holds the patch,
// which is what the index bounds.
struct Net {
  Vec3 b[4][4];
};

// Patch (lat, lon), 0-based, from its Hermite data, with the positions' twists when they are at
// hand. A direction with one position has no second row: the patch is flat in it.
Net PatchNet(const GridView& g, int lat, int lon, const Vec3* twists = nullptr) {
  const int lat0 = lat + 1, lon0 = lon + 1;
  const int lat1 = g.nlats > 1 ? lat0 + 1 : lat0, lon1 = g.nlons > 1 ? lon0 + 1 : lon0;
  const bool u = g.nlats > 1, t = g.nlons > 1;
  auto d = [&](const TangentView& group, bool used, int la, int lo) {
    return used ? (1.0 / 3) * g.Derivative(group, la, lo) : Vec3{};
  };
  auto w = [&](int la, int lo) {
    return (1.0 / 9) * (twists ? twists[g.Index(la, lo)] : Twist(g, la, lo));
  };
  Net n;
  auto& b = n.b;
  b[0][0] = g.Point(lat0, lon0);
  b[3][0] = g.Point(lat1, lon0);
  b[0][3] = g.Point(lat0, lon1);
  b[3][3] = g.Point(lat1, lon1);
  b[1][0] = b[0][0] + d(g.u_after, u, lat0, lon0);
  b[2][0] = b[3][0] - d(g.u_before, u, lat1, lon0);
  b[1][3] = b[0][3] + d(g.u_after, u, lat0, lon1);
  b[2][3] = b[3][3] - d(g.u_before, u, lat1, lon1);
  b[0][1] = b[0][0] + d(g.t_after, t, lat0, lon0);
  b[0][2] = b[0][3] - d(g.t_before, t, lat0, lon1);
  b[3][1] = b[3][0] + d(g.t_after, t, lat1, lon0);
  b[3][2] = b[3][3] - d(g.t_before, t, lat1, lon1);
  b[1][1] = b[1][0] + b[0][1] - b[0][0] + w(lat0, lon0);
  b[2][1] = b[2][0] + b[3][1] - b[3][0] - w(lat1, lon0);
  b[1][2] = b[1][3] + b[0][2] - b[0][3] - w(lat0, lon1);
  b[2][2] = b[2][3] + b[3][2] - b[3][3] + w(lat1, lon1);
  return n;
}

struct Basis {
  double v[4], d[4], dd[4];
};

Basis Bernstein(double s) {
  const double r = 1 - s;
  return {{r * r * r, 3 * s * r * r, 3 * s * s * r, s * s * s},
          {-3 * r * r, 3 * r * (r - 2 * s), 3 * s * (2 * r - s), 3 * s * s},
          {6 * r, 6 * (s - 2 * r), 6 * (r - 2 * s), 6 * s}};
}

Vec3 Position(const Net& n, double u, double t) {
  const Basis bu = Bernstein(u), bt = Bernstein(t);
  Vec3 s;
  for (int i = 0; i < 4; ++i) {
    Vec3 row;
    for (int j = 0; j < 4; ++j) row = row + bt.v[j] * n.b[i][j];
    s = s + bu.v[i] * row;
  }
  return s;
}

// A point of a patch with its first and second derivatives.
struct Jet {
  Vec3 s, su, st, suu, sut, stt;
};

Jet Differentiate(const Net& n, double u, double t) {
  const Basis bu = Bernstein(u), bt = Bernstein(t);
  Jet p;
  for (int i = 0; i < 4; ++i) {
    Vec3 r, rt, rtt;
    for (int j = 0; j < 4; ++j) {
      r = r + bt.v[j] * n.b[i][j];
      rt = rt + bt.d[j] * n.b[i][j];
      rtt = rtt + bt.dd[j] * n.b[i][j];
    }
    p.s = p.s + bu.v[i] * r;
    p.su = p.su + bu.d[i] * r;
    p.suu = p.suu + bu.dd[i] * r;
    p.st = p.st + bu.v[i] * rt;
    p.sut = p.sut + bu.d[i] * rt;
    p.stt = p.stt + bu.v[i] * rtt;
  }
  return p;
}

// ---- Nearest point on one patch

struct Candidate {
  double u = 0, t = 0, f = std::numeric_limits<double>::infinity();  // f: squared distance
};

// Step (du, dt) solving [a b; b c] d = -g; false when the matrix isn't positive definite.
bool SolveStep(double a, double b, double c, double gu, double gt, double& du, double& dt) {
  const double det = a * c - b * b;
  if (!(a > 0 && c > 0 && det > 0)) return false;
  du = (-gu * c + gt * b) / det;
  dt = (-gt * a + gu * b) / det;
  return std::isfinite(du) && std::isfinite(dt);
}

// The step from c: Newton where the squared distance is convex, damped Gauss-Newton, which
// still descends, where it isn't (far from the surface, near a degenerate edge). A variable at a
// bound whose gradient points out of the square is held there, so a minimum on an edge is a
// one-dimensional Newton and one at a corner stops. False when nothing moves.
bool Step(const Jet& p, Vec3 q, const Candidate& c, bool u_free, bool t_free, double& du,
          double& dt) {
  const Vec3 r = p.s - q;
  double gu = Dot(r, p.su), gt = Dot(r, p.st);
  const bool fu = u_free && !((c.u <= 0 && gu > 0) || (c.u >= 1 && gu < 0));
  const bool ft = t_free && !((c.t <= 0 && gt > 0) || (c.t >= 1 && gt < 0));
  if (!fu) gu = 0;
  if (!ft) gt = 0;
  // A held variable's row is the identity with no gradient: it doesn't move.
  const double juu = Dot(p.su, p.su), jtt = Dot(p.st, p.st), jut = Dot(p.su, p.st);
  const double a = fu ? juu + Dot(r, p.suu) : 1, c2 = ft ? jtt + Dot(r, p.stt) : 1;
  const double b = fu && ft ? jut + Dot(r, p.sut) : 0;
  du = dt = 0;
  if (SolveStep(a, b, c2, gu, gt, du, dt) && du * gu + dt * gt < 0) return true;
  const double damp = 1e-12 * (juu + jtt) + 1e-300;
  du = dt = 0;
  SolveStep(fu ? juu + damp : 1, fu && ft ? jut : 0, ft ? jtt + damp : 1, gu, gt, du, dt);
  return du != 0 || dt != 0;
}

// Newton's method on the squared distance from c, kept to the patch's square; every step is
// halved until it lowers the distance.
Candidate Descend(const Net& n, Vec3 q, Candidate c, bool u_free, bool t_free) {
  Jet p = Differentiate(n, c.u, c.t);
  c.f = Dot(p.s - q, p.s - q);
  double du, dt;
  for (int iter = 0; iter < 40 && c.f > 0 && Step(p, q, c, u_free, t_free, du, dt); ++iter) {
    // Near the minimum the distance is flat to rounding while the parameters still move: the
    // full Newton step goes on there as long as it loses no more than rounding. A tiny step
    // that rounding refuses means we have arrived.
    const double size = std::max(std::abs(du), std::abs(dt));
    const double noise = 1e-14 * Norm(p.s - q) * (Norm(p.s - q) + Norm(p.s) + Norm(q));
    Candidate next = c;
    Jet at_next;
    bool taken = false;
    for (double step = 1; step * size > 1e-15 && !taken; step /= 2) {
      next.u = std::clamp(c.u + step * du, 0.0, 1.0);
      next.t = std::clamp(c.t + step * dt, 0.0, 1.0);
      at_next = Differentiate(n, next.u, next.t);
      next.f = Dot(at_next.s - q, at_next.s - q);
      taken = next.f < c.f || (step == 1 && next.f <= c.f + noise);
      if (size < 1e-10) break;
    }
    if (!taken) break;
    c = next;
    p = at_next;
    // Newton converges quadratically: after a step this small the next would be lost in
    // rounding.
    if (size < 1e-10) break;
  }
  return c;
}

// The nearest point of a gently bent net: Newton from the best of a 5 x 5 sample, and from a
// second local minimum of the sample when there is one, since a bent patch can hold two basins.
Candidate NearestOnNet(const Net& n, Vec3 q, bool u_free, bool t_free) {
  constexpr int kSamples = 5;
  const int nu = u_free ? kSamples : 1, nt = t_free ? kSamples : 1;
  double f[kSamples][kSamples];
  Vec3 rows[kSamples][4];  // per t sample, the net's rows summed along T
  for (int k = 0; k < nt; ++k) {
    const Basis bt = Bernstein(double(k) / (kSamples - 1));
    for (int i = 0; i < 4; ++i) {
      rows[k][i] = {};
      for (int j = 0; j < 4; ++j) rows[k][i] = rows[k][i] + bt.v[j] * n.b[i][j];
    }
  }
  for (int m = 0; m < nu; ++m) {
    const Basis bu = Bernstein(double(m) / (kSamples - 1));
    for (int k = 0; k < nt; ++k) {
      Vec3 s;
      for (int i = 0; i < 4; ++i) s = s + bu.v[i] * rows[k][i];
      f[m][k] = Dot(s - q, s - q);
    }
  }
  Candidate starts[2];
  for (int m = 0; m < nu; ++m) {
    for (int k = 0; k < nt; ++k) {
      bool local = true;
      for (int dm = -1; dm <= 1; ++dm) {
        for (int dk = -1; dk <= 1; ++dk) {
          const int m2 = m + dm, k2 = k + dk;
          if (m2 >= 0 && m2 < nu && k2 >= 0 && k2 < nt && f[m2][k2] < f[m][k]) local = false;
        }
      }
      const Candidate c{double(m) / (kSamples - 1), double(k) / (kSamples - 1), f[m][k]};
      if (!local) continue;
      if (c.f < starts[0].f) {
        starts[1] = starts[0];
        starts[0] = c;
      } else if (c.f < starts[1].f) {
        starts[1] = c;
      }
    }
  }
  Candidate best = Descend(n, q, starts[0], u_free, t_free);
  if (std::isfinite(starts[1].f)) {
    const Candidate other = Descend(n, q, starts[1], u_free, t_free);
    if (other.f < best.f) best = other;
  }
  return best;
}

void Grow(Vec3& lo, Vec3& hi, Vec3 p) {
  lo = {std::min(lo.x, p.x), std::min(lo.y, p.y), std::min(lo.z, p.z)};
  hi = {std::max(hi.x, p.x), std::max(hi.y, p.y), std::max(hi.z, p.z)};
}

constexpr double kInf = std::numeric_limits<double>::infinity();

// Squared distance from q to the box round the net: the patch lies in its net's hull, so no
// point of it is nearer.
double LowerBound(Vec3 lo, Vec3 hi, Vec3 q) {
  auto gap = [](double v, double a, double b) { return v < a ? a - v : v > b ? v - b : 0; };
  const double dx = gap(q.x, lo.x, hi.x), dy = gap(q.y, lo.y, hi.y), dz = gap(q.z, lo.z, hi.z);
  return dx * dx + dy * dy + dz * dz;
}

void NetBounds(const Net& n, Vec3& lo, Vec3& hi) {
  for (const auto& row : n.b) {
    for (const Vec3& b : row) Grow(lo, hi, b);
  }
}

double LowerBound(const Net& n, Vec3 q) {
  Vec3 lo{kInf, kInf, kInf}, hi{-kInf, -kInf, -kInf};
  NetBounds(n, lo, hi);
  return LowerBound(lo, hi, q);
}

// Whether the net keeps within a quarter of its corners' spread from the bilinear patch through
// them: then its distance has one basin, or two at most, for the sample to find.
bool Gentle(const Net& n) {
  const auto& b = n.b;
  double spread = 0, bend = 0;
  for (auto [p, q] :
       {std::pair{b[0][0], b[3][0]}, {b[0][3], b[3][3]}, {b[0][0], b[0][3]}, {b[3][0], b[3][3]}}) {
    spread = std::max(spread, Norm(q - p));
  }
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      const double u = i / 3.0, t = j / 3.0;
      const Vec3 flat =
          (1 - u) * ((1 - t) * b[0][0] + t * b[0][3]) + u * ((1 - t) * b[3][0] + t * b[3][3]);
      bend = std::max(bend, Norm(b[i][j] - flat));
    }
  }
  return bend <= 0.25 * spread;
}

// Halves of a cubic's control points at its middle (de Casteljau).
void Halve(const Vec3 p[4], Vec3 left[4], Vec3 right[4]) {
  const Vec3 p01 = 0.5 * (p[0] + p[1]), p12 = 0.5 * (p[1] + p[2]), p23 = 0.5 * (p[2] + p[3]);
  const Vec3 a = 0.5 * (p01 + p12), b = 0.5 * (p12 + p23), mid = 0.5 * (a + b);
  left[0] = p[0], left[1] = p01, left[2] = a, left[3] = mid;
  right[0] = mid, right[1] = b, right[2] = p23, right[3] = p[3];
}

// The four quarters of a net: part[i][j] covers u in [i/2, (i+1)/2], t in [j/2, (j+1)/2].
void Quarter(const Net& n, Net part[2][2]) {
  Net half[2];
  for (int j = 0; j < 4; ++j) {
    Vec3 column[4] = {n.b[0][j], n.b[1][j], n.b[2][j], n.b[3][j]}, lo[4], hi[4];
    Halve(column, lo, hi);
    for (int i = 0; i < 4; ++i) half[0].b[i][j] = lo[i], half[1].b[i][j] = hi[i];
  }
  for (int h = 0; h < 2; ++h) {
    for (int i = 0; i < 4; ++i) {
      Vec3 lo[4], hi[4];
      Halve(half[h].b[i], lo, hi);
      for (int j = 0; j < 4; ++j) part[h][0].b[i][j] = lo[j], part[h][1].b[i][j] = hi[j];
    }
  }
}

// A patch's nearest point, into best when nearer. A net that bends too far for the sample to
// find every basin (a fold, a loop, tangents far longer than the cell) is quartered, nearest
// quarter first, as deep as kDepth, and a quarter no nearer by its bound than best is skipped.
void SearchPatch(const Net& n, Vec3 q, bool u_free, bool t_free, double u0, double t0, double width,
                 int depth, Candidate& best) {
  constexpr int kDepth = 4;
  if (depth == kDepth || Gentle(n)) {
    const Candidate c = NearestOnNet(n, q, u_free, t_free);
    if (c.f < best.f) best = {u0 + width * c.u, t0 + width * c.t, c.f};
    return;
  }
  Net part[2][2];
  Quarter(n, part);
  std::pair<double, int> order[4];
  int count = 0;
  for (int i = 0; i < (u_free ? 2 : 1); ++i) {
    for (int j = 0; j < (t_free ? 2 : 1); ++j)
      order[count++] = {LowerBound(part[i][j], q), 2 * i + j};
  }
  for (int k = 1; k < count; ++k) {
    for (int m = k; m > 0 && order[m] < order[m - 1]; --m) std::swap(order[m], order[m - 1]);
  }
  for (int k = 0; k < count && order[k].first < best.f; ++k) {
    const int i = order[k].second / 2, j = order[k].second % 2;
    SearchPatch(part[i][j], q, u_free, t_free, u0 + i * width / 2, t0 + j * width / 2, width / 2,
                depth + 1, best);
  }
}

// ---- Builders

SurfaceGrid Allocate(int nlats, int nlons) {
  SurfaceGrid g;
  g.nlats = nlats;
  g.nlons = nlons;
  const size_t n = size_t(nlats) * size_t(nlons);
  g.points.resize(3 * n);
  for (SurfaceGrid::Group* group : {&g.u_before, &g.u_after, &g.t_before, &g.t_after}) {
    group->vector.resize(3 * n);
    group->magnitude.resize(n);
    group->dir_free.resize(n);
    group->mag_free.resize(n);
  }
  return g;
}

void Put(std::vector<double>& array, size_t index, size_t n, Vec3 v) {
  array[index] = v.x;
  array[index + n] = v.y;
  array[index + 2 * n] = v.z;
}

void PutTangent(SurfaceGrid::Group& g, size_t index, size_t n, Vec3 direction, double magnitude) {
  Put(g.vector, index, n, direction);
  g.magnitude[index] = magnitude;
}

// What a smooth surface gives at one position: before and after agree.
struct Sample {
  Vec3 point, u_dir, t_dir;
  double u_mag = 0, t_mag = 0;
};

SurfaceGrid Fill(int nlats, int nlons, const std::function<Sample(int, int)>& at) {
  SurfaceGrid g = Allocate(nlats, nlons);
  const size_t n = size_t(nlats) * size_t(nlons);
  for (int lon = 0; lon < nlons; ++lon) {
    for (int lat = 0; lat < nlats; ++lat) {
      const size_t index = size_t(lat) + size_t(nlats) * lon;
      const Sample s = at(lat, lon);
      Put(g.points, index, n, s.point);
      PutTangent(g.u_before, index, n, s.u_dir, s.u_mag);
      PutTangent(g.u_after, index, n, s.u_dir, s.u_mag);
      PutTangent(g.t_before, index, n, s.t_dir, s.t_mag);
      PutTangent(g.t_after, index, n, s.t_dir, s.t_mag);
    }
  }
  return g;
}

// Position i of n across a span from `from`: 0-based, and the span's start for a single one.
double Across(double from, double span, int i, int n) {
  return n > 1 ? from + span * i / (n - 1) : from;
}

// The derivative magnitude of a cubic arc of angle a on radius r: 4 r tan(a/4).
double ArcMagnitude(double r, double span, int n) {
  return n > 1 ? 4 * r * std::tan(span / (n - 1) / 4) : 0;
}

// Orthonormal axes from an axis and a reference direction.
struct Frame {
  Vec3 e1, e2, e3;
};

Frame MakeFrame(const char* what, Vec3 axis, Vec3 reference) {
  const Vec3 e3 = Unit(axis);
  if (Norm(axis) == 0) Refuse(std::string(what) + ": the axis has no length");
  const Vec3 across = reference - Dot(reference, e3) * e3;
  if (!(Norm(across) > 1e-9 * Norm(reference))) {
    Refuse(std::string(what) + ": the reference direction is zero or along the axis");
  }
  const Vec3 e1 = Unit(across);
  return {e1, Cross(e3, e1), e3};
}

void RequireAngle(const char* what, const char* name, double angle) {
  if (!(angle > 0 && angle <= 2 * std::numbers::pi)) {
    Refuse(std::string(what) + ": the " + name + " must be above 0 and at most 2 pi, got " +
           Number(angle));
  }
}

}  // namespace

// ---- GridView, SurfaceGrid

void CheckGrid(const GridView& g) {
  CheckShape(g);
  auto bad = [](const std::string& what, int lat, int lon, const char* why) {
    Refuse("surface grid: " + what + " at " + At(lat, lon) + " " + why);
  };
  for (int lon = 1; lon <= g.nlons; ++lon) {
    for (int lat = 1; lat <= g.nlats; ++lat) {
      const size_t i = g.Index(lat, lon), n = g.size();
      for (size_t c = 0; c < 3; ++c) {
        if (!InRange(g.points[i + c * n]))
          bad("the point", lat, lon, "is not finite or exceeds 1e100");
      }
      for (const NamedGroup& group : Groups(g)) {
        const TangentView& v = *group.view;
        const double m = v.magnitude[i];
        if (!std::isfinite(m))
          bad(std::string(group.name) + " magnitude", lat, lon, "is not finite");
        for (size_t c = 0; c < 3; ++c) {
          if (!std::isfinite(v.vector[i + c * n])) {
            bad(std::string(group.name) + " direction", lat, lon, "is not finite");
          }
          if (!InRange(m * v.vector[i + c * n])) {
            bad(std::string(group.name) + " derivative", lat, lon, "exceeds 1e100");
          }
        }
      }
    }
  }
}

GridView SurfaceGrid::view() const& {
  auto tangents = [](const Group& g) { return TangentView{g.vector, g.magnitude}; };
  return {nlats,
          nlons,
          points,
          tangents(u_before),
          tangents(u_after),
          tangents(t_before),
          tangents(t_after)};
}

// ---- Builders

SurfaceGrid PlaneGrid(Vec3 origin, Vec3 lat_edge, Vec3 lon_edge, int nlats, int nlons) {
  const char* what = "plane";
  RequireBuildable(what, nlats, nlons);
  RequireFinite(what, origin);
  RequireFinite(what, lat_edge);
  RequireFinite(what, lon_edge);
  const double scale = Norm(origin) + Norm(lat_edge) + Norm(lon_edge);
  RequireSpacing(what, "Lateral edge", Norm(lat_edge), nlats, scale);
  RequireSpacing(what, "Longitudinal edge", Norm(lon_edge), nlons, scale);
  if (nlats > 1 && nlons > 1 &&
      !(Norm(Cross(lat_edge, lon_edge)) > 1e-12 * Norm(lat_edge) * Norm(lon_edge))) {
    Refuse("plane: the two edges are parallel");
  }
  const double u_mag = nlats > 1 ? Norm(lat_edge) / (nlats - 1) : 0;
  const double t_mag = nlons > 1 ? Norm(lon_edge) / (nlons - 1) : 0;
  return Fill(nlats, nlons, [&](int lat, int lon) {
    const Vec3 p =
        origin + Across(0, 1, lat, nlats) * lat_edge + Across(0, 1, lon, nlons) * lon_edge;
    return Sample{p, Unit(lat_edge), Unit(lon_edge), u_mag, t_mag};
  });
}

SurfaceGrid CylinderGrid(const Cylinder& c) {
  const char* what = "cylinder";
  RequireBuildable(what, c.nlats, c.nlons);
  RequireFinite(what, c.origin);
  RequireFinite(what, c.axis);
  RequireFinite(what, c.reference);
  RequireFinite(what, {c.radius, c.start_angle, c.angle, c.length});
  const Frame f = MakeFrame(what, c.axis, c.reference);
  RequireAngle(what, "angle span", c.angle);
  const double scale = Norm(c.origin) + std::abs(c.radius) + std::abs(c.length);
  if (!(c.radius > 0)) Refuse("cylinder: the radius must be above 0");
  if (!(c.length > 0)) Refuse("cylinder: the length must be above 0");
  RequireSpacing(what, "angle span", c.radius * c.angle, c.nlats, scale);
  RequireSpacing(what, "length", c.length, c.nlons, scale);
  const double u_mag = ArcMagnitude(c.radius, c.angle, c.nlats);
  const double t_mag = c.nlons > 1 ? c.length / (c.nlons - 1) : 0;
  return Fill(c.nlats, c.nlons, [&](int lat, int lon) {
    const double a = Across(c.start_angle, c.angle, lat, c.nlats);
    const Vec3 radial = std::cos(a) * f.e1 + std::sin(a) * f.e2;
    const Vec3 p = c.origin + Across(0, c.length, lon, c.nlons) * f.e3 + c.radius * radial;
    return Sample{p, Cross(f.e3, radial), f.e3, u_mag, t_mag};
  });
}

SurfaceGrid SphereGrid(const Sphere& s) {
  const char* what = "sphere";
  constexpr double kPole = std::numbers::pi / 2;
  RequireBuildable(what, s.nlats, s.nlons);
  RequireFinite(what, s.centre);
  RequireFinite(what, s.axis);
  RequireFinite(what, s.reference);
  RequireFinite(what, {s.radius, s.lat_from, s.lat_to, s.lon_from, s.lon_to});
  const Frame f = MakeFrame(what, s.axis, s.reference);
  if (!(s.radius > 0)) Refuse("sphere: the radius must be above 0");
  if (!(s.lat_from >= -kPole && s.lat_to <= kPole && s.lat_from < s.lat_to)) {
    Refuse("sphere: the latitudes must rise from lat_from to lat_to within -pi/2 to pi/2");
  }
  RequireAngle(what, "longitude span", s.lon_to - s.lon_from);
  const double lat_span = s.lat_to - s.lat_from, lon_span = s.lon_to - s.lon_from;
  const double scale = Norm(s.centre) + s.radius;
  RequireSpacing(what, "latitude span", s.radius * lat_span, s.nlats, scale);
  RequireSpacing(what, "longitude span", s.radius * lon_span, s.nlons, scale);
  const double u_mag = ArcMagnitude(s.radius, lat_span, s.nlats);
  const double t_mag = ArcMagnitude(s.radius, lon_span, s.nlons);
  return Fill(s.nlats, s.nlons, [&](int lat, int lon) {
    const double phi = Across(s.lat_from, lat_span, lat, s.nlats);
    const double lambda = Across(s.lon_from, lon_span, lon, s.nlons);
    const Vec3 meridian = std::cos(lambda) * f.e1 + std::sin(lambda) * f.e2;
    const Vec3 radial = std::cos(phi) * meridian + std::sin(phi) * f.e3;
    const Vec3 north = std::cos(phi) * f.e3 - std::sin(phi) * meridian;
    const Vec3 east = Cross(f.e3, meridian);
    // A parallel's radius is r cos(phi); at a pole the T derivative vanishes.
    return Sample{s.centre + s.radius * radial, north, east, u_mag,
                  std::max(0.0, std::cos(phi)) * t_mag};
  });
}

SurfaceGrid GridThroughPoints(int nlats, int nlons, std::span<const double> points) {
  const char* what = "grid through points";
  RequireBuildable(what, nlats, nlons);
  const size_t n = size_t(nlats) * size_t(nlons);
  if (points.size() != 3 * n) {
    Refuse(std::string(what) + ": " + std::to_string(points.size()) + " numbers given where " +
           std::to_string(3 * n) + " are expected");
  }
  for (double v : points) RequireFinite(what, {v});
  auto p = [&](int lat, int lon) {
    const size_t i = size_t(lat) + size_t(nlats) * lon;
    return Vec3{points[i], points[i + n], points[i + 2 * n]};
  };
  return Fill(nlats, nlons, [&](int lat, int lon) {
    const Vec3 du = Slope(lat, nlats, [&](int i) { return p(i, lon); });
    const Vec3 dt = Slope(lon, nlons, [&](int i) { return p(lat, i); });
    return Sample{p(lat, lon), Unit(du), Unit(dt), Norm(du), Norm(dt)};
  });
}

// ---- Evaluation

Vec3 Evaluate(const GridView& g, double lat_param, double lon_param) {
  CheckShape(g);
  if (!(lat_param >= 1 && lat_param <= g.nlats && lon_param >= 1 && lon_param <= g.nlons)) {
    Refuse("surface grid: parameters (" + Number(lat_param) + ", " + Number(lon_param) +
           ") are outside 1 to " + std::to_string(g.nlats) + " and 1 to " +
           std::to_string(g.nlons));
  }
  const int lat = std::min(int(lat_param), std::max(g.nlats - 1, 1));
  const int lon = std::min(int(lon_param), std::max(g.nlons - 1, 1));
  const Net net = PatchNet(g, lat - 1, lon - 1);
  for (const auto& row : net.b) {
    for (const Vec3& b : row) {
      if (!InRange(b)) Refuse("surface grid: the patch at " + At(lat, lon) + " is not finite");
    }
  }
  return Position(net, lat_param - lat, lon_param - lon);
}

// ---- Index

SurfaceIndex::SurfaceIndex(GridView grid)
    : grid_(grid),
      patch_lats_(std::max(grid.nlats - 1, 1)),
      patch_lons_(std::max(grid.nlons - 1, 1)) {
  CheckGrid(grid_);
  twists_.resize(grid_.size());
  for (int lon = 1; lon <= grid_.nlons; ++lon) {
    for (int lat = 1; lat <= grid_.nlats; ++lat)
      twists_[grid_.Index(lat, lon)] = Twist(grid_, lat, lon);
  }
  nodes_.reserve(size_t(patch_lats_) * patch_lons_ / 2 + 1);
  Build(0, patch_lats_, 0, patch_lons_);
}

// The patches [lat0, lat1) x [lon0, lon1), halved along their longer side: the halves of a
// connected piece of surface stay compact however the surface folds.
uint32_t SurfaceIndex::Build(int lat0, int lat1, int lon0, int lon1) {
  const uint32_t me = uint32_t(nodes_.size());
  nodes_.emplace_back();
  Vec3 lo{kInf, kInf, kInf}, hi{-kInf, -kInf, -kInf};
  if (lat1 - lat0 <= 2 && lon1 - lon0 <= 2) {
    for (int lat = lat0; lat < lat1; ++lat) {
      for (int lon = lon0; lon < lon1; ++lon)
        NetBounds(PatchNet(grid_, lat, lon, twists_.data()), lo, hi);
    }
    nodes_[me].lat = lat0;
    nodes_[me].lon = lon0;
    nodes_[me].lats = uint8_t(lat1 - lat0);
    nodes_[me].lons = uint8_t(lon1 - lon0);
  } else {
    uint32_t second;
    if (lat1 - lat0 >= lon1 - lon0) {
      const int mid = (lat0 + lat1) / 2;
      Build(lat0, mid, lon0, lon1);
      second = Build(mid, lat1, lon0, lon1);
    } else {
      const int mid = (lon0 + lon1) / 2;
      Build(lat0, lat1, lon0, mid);
      second = Build(lat0, lat1, mid, lon1);
    }
    nodes_[me].second = second;
    for (uint32_t child : {me + 1, second}) {
      Grow(lo, hi, nodes_[child].box.lo);
      Grow(lo, hi, nodes_[child].box.hi);
    }
  }
  nodes_[me].box = {lo, hi};
  return me;
}

// Best-first: the node or patch nearest by its bound comes next, and the search ends when no
// bound left is below the best distance found.
Projection SurfaceIndex::Nearest(Vec3 q) const {
  if (!InRange(q)) Refuse("nearest point: the query point is not finite or exceeds 1e100");
  using Entry = std::pair<double, uint32_t>;  // lower bound, node
  std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue;
  queue.push({LowerBound(nodes_[0].box.lo, nodes_[0].box.hi, q), 0});
  Candidate best;
  int best_lat = 0, best_lon = 0, searched = 0;
  const bool u_free = grid_.nlats > 1, t_free = grid_.nlons > 1;
  while (!queue.empty() && queue.top().first < best.f) {
    const uint32_t index = queue.top().second;
    const Node& node = nodes_[index];
    queue.pop();
    if (node.second != 0) {
      for (uint32_t child : {index + 1, node.second}) {
        const double bound = LowerBound(nodes_[child].box.lo, nodes_[child].box.hi, q);
        if (bound < best.f) queue.push({bound, child});
      }
      continue;
    }
    for (int lat = node.lat; lat < node.lat + node.lats; ++lat) {
      for (int lon = node.lon; lon < node.lon + node.lons; ++lon) {
        const Net net = PatchNet(grid_, lat, lon, twists_.data());
        if (!(LowerBound(net, q) < best.f)) continue;
        ++searched;
        const double before = best.f;
        SearchPatch(net, q, u_free, t_free, 0, 0, 1, 0, best);
        if (best.f < before) {
          best_lat = lat;
          best_lon = lon;
        }
      }
    }
  }
  Projection p;
  const Net net = PatchNet(grid_, best_lat, best_lon, twists_.data());
  p.point = Position(net, best.u, best.t);
  p.distance = Norm(p.point - q);
  p.lat = best_lat + 1;
  p.lon = best_lon + 1;
  p.u = best.u;
  p.t = best.t;
  p.patches_searched = searched;
  return p;
}

void LazySurfaceIndex::Reset(GridView grid) {
  grid_ = grid;
  index_.reset();
}

void LazySurfaceIndex::Invalidate() { index_.reset(); }

Projection LazySurfaceIndex::Nearest(Vec3 query) {
  if (!index_) index_.emplace(grid_);
  return index_->Nearest(query);
}

}  // namespace qorvel::hosts
