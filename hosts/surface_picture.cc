#include "hosts/surface_picture.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <string_view>

namespace qorvel::hosts {
namespace {

constexpr int kSamplesPerEdge = 8;
// A line drawn denser than the canvas's pixels, or lines closer than a few pixels, only cost.
constexpr int kMaxSamplesPerLine = 1024;
constexpr int kMaxLinesPerSide = 201;
constexpr size_t kMaxDots = 4096;  // past this they'd bury the lines anyway
constexpr size_t kMaxShadedPatches = 4096;
constexpr double kMargin = 30, kTop = 50, kLegendWidth = 170;
constexpr double kInf = std::numeric_limits<double>::infinity();

struct Colours {
  static constexpr const char* kLine = "#4c6d93";
  static constexpr const char* kEdge = "#1b2f47";
  static constexpr const char* kPoint = "#e8590c";
  static constexpr const char* kFoot = "#2b8a3e";
  static constexpr const char* kSegment = "#343a40";
  static constexpr const char* kMoved = "#862e9c";
  static constexpr const char* kU = "#d6336c";
  static constexpr const char* kT = "#1098ad";
};

struct P2 {
  double x = 0, y = 0;
};

[[noreturn]] void Refuse(const std::string& what) {
  throw std::invalid_argument("surface picture: " + what);
}

void CheckPoint(Vec3 p, const char* what, size_t i) {
  for (double c : {p.x, p.y, p.z}) {
    if (!(std::abs(c) <= kMaxCoordinate))
      Refuse(std::string(what) + " " + std::to_string(i + 1) + " is not finite or too large");
  }
}

void CheckInput(const GridView& grid, const SurfacePicture& what) {
  CheckGrid(grid);
  for (size_t i = 0; i < what.marks.size(); ++i) {
    CheckPoint(what.marks[i].point, "point", i);
    if (what.marks[i].foot) CheckPoint(*what.marks[i].foot, "foot", i);
  }
  for (const SurfacePicture::Position& h : what.highlights) {
    if (h.lat < 1 || h.lat > grid.nlats || h.lon < 1 || h.lon > grid.nlons) {
      Refuse("highlighted position (" + std::to_string(h.lat) + ", " + std::to_string(h.lon) +
             ") is outside the grid");
    }
  }
  if (!(std::abs(what.azimuth_degrees) <= 3600 && std::abs(what.elevation_degrees) <= 90))
    Refuse("the view needs a finite azimuth and an elevation within +-90 degrees");
  if (what.width < 200 || what.width > 10000 || what.height < 200 || what.height > 10000)
    Refuse("width and height must be 200 to 10000 pixels");
}

// Orthographic, z up on screen; `toward` points at the viewer, so larger depth is nearer.
struct Camera {
  Vec3 right, up, toward;

  Camera(double azimuth_degrees, double elevation_degrees) {
    const double a = azimuth_degrees * std::numbers::pi / 180;
    const double e = elevation_degrees * std::numbers::pi / 180;
    toward = {std::cos(e) * std::cos(a), std::cos(e) * std::sin(a), std::sin(e)};
    right = {-std::sin(a), std::cos(a), 0};
    up = Cross(toward, right);
  }
  P2 operator()(Vec3 p) const { return {Dot(p, right), Dot(p, up)}; }
};

// From view units to pixels, y flipped, the bounds centred in the drawing area.
struct Fit {
  double lo_x = kInf, hi_x = -kInf, lo_y = kInf, hi_y = -kInf;
  double scale = 1, cx = 0, cy = 0, px = 0, py = 0;

  void Add(P2 p) {
    lo_x = std::min(lo_x, p.x), hi_x = std::max(hi_x, p.x);
    lo_y = std::min(lo_y, p.y), hi_y = std::max(hi_y, p.y);
  }
  void Into(double left, double top, double w, double h) {
    const double sw = hi_x - lo_x, sh = hi_y - lo_y;
    scale = std::min(sw > 0 ? w / sw : kInf, sh > 0 ? h / sh : kInf);
    if (!std::isfinite(scale)) scale = 1;  // a single point: any scale centres it
    cx = lo_x + sw / 2, cy = lo_y + sh / 2;
    px = left + w / 2, py = top + h / 2;
  }
  P2 operator()(P2 v) const { return {px + scale * (v.x - cx), py - scale * (v.y - cy)}; }
};

// Locale-free, and clamped so a pathological fit can't overflow the buffer.
std::string Num(double v) {
  char buf[32];
  const auto r =
      std::to_chars(buf, buf + sizeof buf, std::clamp(v, -1e7, 1e7), std::chars_format::fixed, 1);
  return std::string(buf, r.ptr);
}

std::string Xy(P2 p) { return Num(p.x) + "," + Num(p.y); }

// XML text from arbitrary bytes: markup escaped; bytes that aren't UTF-8 and characters XML
// forbids become U+FFFD, so a stray byte in a title can't make the whole document unreadable.
std::string Escape(std::string_view s) {
  std::string out;
  for (size_t i = 0; i < s.size();) {
    const unsigned char c = s[i];
    const size_t len = c < 0x80         ? 1
                       : (c >> 5) == 6  ? 2
                       : (c >> 4) == 14 ? 3
                       : (c >> 3) == 30 ? 4
                                        : 0;
    bool ok = len > 0 && i + len <= s.size();
    char32_t cp = len == 1 ? c : c & (0x7F >> len);
    for (size_t k = 1; ok && k < len; ++k) {
      ok = (s[i + k] & 0xC0) == 0x80;
      cp = cp << 6 | (s[i + k] & 0x3F);
    }
    static constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    ok = ok && cp >= kLeast[len] && cp <= 0x10FFFF && (cp < 0xD800 || cp > 0xDFFF) &&
         cp != 0xFFFE && cp != 0xFFFF && (cp >= 0x20 || cp == '\t' || cp == '\n' || cp == '\r');
    if (!ok) {
      out += "\xEF\xBF\xBD";
      ++i;
      continue;
    }
    const char* entity = c == '&'   ? "&amp;"
                         : c == '<' ? "&lt;"
                         : c == '>' ? "&gt;"
                         : c == '"' ? "&quot;"
                                    : nullptr;
    if (entity) {
      out += entity;
    } else {
      out.append(s.substr(i, len));
    }
    i += len;
  }
  return out;
}

struct GridLine {
  bool edge;  // of the grid's boundary
  std::vector<Vec3> samples;
};

// Every lateral and longitudinal at kSamplesPerEdge per patch edge, or, for a grid too large
// to show that way, every so many of them at fewer samples.
std::vector<GridLine> GridLines(const GridView& g) {
  std::vector<GridLine> lines;
  for (bool lateral : {true, false}) {
    const int count = lateral ? g.nlats : g.nlons, along = lateral ? g.nlons : g.nlats;
    const int stride = std::max(1, (count - 1 + kMaxLinesPerSide - 2) / (kMaxLinesPerSide - 1));
    const int steps = std::min((along - 1) * kSamplesPerEdge, kMaxSamplesPerLine);
    std::vector<int> drawn;
    for (int i = 1; i < count; i += stride) drawn.push_back(i);
    drawn.push_back(count);
    for (int i : drawn) {
      GridLine& line = lines.emplace_back(GridLine{i == 1 || i == count, {}});
      for (int k = 0; k <= steps; ++k) {
        const double a = steps == 0 ? 1 : k == steps ? along : 1 + double(along - 1) * k / steps;
        line.samples.push_back(lateral ? Evaluate(g, i, a) : Evaluate(g, a, i));
      }
    }
  }
  return lines;
}

// A patch sampled kMesh + 1 times a side, for its shading and for what it hides: its outline
// alone would miss where it bulges past its edges, as a sphere does at its rim.
constexpr int kMesh = 4;
struct PatchMesh {
  Vec3 at[kMesh + 1][kMesh + 1];  // [along U][along T]
};

std::vector<PatchMesh> Meshes(const GridView& g) {
  std::vector<PatchMesh> meshes;
  for (int lon = 1; lon < g.nlons; ++lon) {
    for (int lat = 1; lat < g.nlats; ++lat) {
      PatchMesh& m = meshes.emplace_back();
      for (int i = 0; i <= kMesh; ++i) {
        for (int j = 0; j <= kMesh; ++j)
          m.at[i][j] = Evaluate(g, lat + double(i) / kMesh, lon + double(j) / kMesh);
      }
    }
  }
  return meshes;
}

// Where the surface lies in depth across the picture: the patches' meshes as triangles,
// bucketed on a coarse screen grid. Whatever lies behind the surface goes beneath the shading,
// so a person sees which side of it a point is on.
class Occluder {
 public:
  Occluder(const std::vector<PatchMesh>& meshes, const Camera& cam, const Fit& fit)
      : cam_(cam), fit_(fit) {
    for (const PatchMesh& m : meshes) {
      for (int i = 0; i < kMesh; ++i) {
        for (int j = 0; j < kMesh; ++j) {
          Add(m.at[i][j], m.at[i + 1][j], m.at[i + 1][j + 1]);
          Add(m.at[i][j], m.at[i + 1][j + 1], m.at[i][j + 1]);
        }
      }
    }
  }

  bool Hidden(Vec3 p) const {
    const P2 q = cam_(p);
    const double depth = Dot(p, cam_.toward);
    for (uint32_t i :
         cells_[Cell(q.x, fit_.lo_x, fit_.hi_x) + kCells * Cell(q.y, fit_.lo_y, fit_.hi_y)]) {
      if (tris_[i].Covers(q, depth)) return true;
    }
    return false;
  }

 private:
  static constexpr int kCells = 48;
  struct Tri {
    P2 a, b, c;
    double da, db, dc, tolerance;

    // In front of the depth at q, by more than a curved surface strays from its triangles.
    bool Covers(P2 q, double depth) const {
      const double det = (b.y - c.y) * (a.x - c.x) + (c.x - b.x) * (a.y - c.y);
      if (det == 0) return false;  // edge-on
      const double l1 = ((b.y - c.y) * (q.x - c.x) + (c.x - b.x) * (q.y - c.y)) / det;
      const double l2 = ((c.y - a.y) * (q.x - c.x) + (a.x - c.x) * (q.y - c.y)) / det;
      const double l3 = 1 - l1 - l2;
      return l1 >= 0 && l2 >= 0 && l3 >= 0 && l1 * da + l2 * db + l3 * dc > depth + tolerance;
    }
  };

  static int Cell(double v, double lo, double hi) {
    return hi > lo ? std::clamp(int((v - lo) / (hi - lo) * kCells), 0, kCells - 1) : 0;
  }

  void Add(Vec3 a, Vec3 b, Vec3 c) {
    const double edge = std::max({Norm(b - a), Norm(c - b), Norm(a - c)});
    const Tri t{
        cam_(a), cam_(b), cam_(c), Dot(a, cam_.toward), Dot(b, cam_.toward), Dot(c, cam_.toward),
        edge / 4};
    const auto [x0, x1] = std::minmax({t.a.x, t.b.x, t.c.x});
    const auto [y0, y1] = std::minmax({t.a.y, t.b.y, t.c.y});
    for (int y = Cell(y0, fit_.lo_y, fit_.hi_y); y <= Cell(y1, fit_.lo_y, fit_.hi_y); ++y) {
      for (int x = Cell(x0, fit_.lo_x, fit_.hi_x); x <= Cell(x1, fit_.lo_x, fit_.hi_x); ++x)
        cells_[x + kCells * y].push_back(uint32_t(tris_.size()));
    }
    tris_.push_back(t);
  }

  const Camera& cam_;
  const Fit& fit_;
  std::vector<Tri> tris_;
  std::vector<std::vector<uint32_t>> cells_ = std::vector<std::vector<uint32_t>>(kCells * kCells);
};

struct Shaded {
  double depth;
  double light;  // 0 edge-on to 1 facing the viewer
  std::string path;
};

// A patch as one path of its mesh's cells, each turned the same way round so that the
// nonzero rule fills their union, folds at a rim included, without seams between them.
Shaded ShadePatch(const PatchMesh& m, const Camera& cam, const Fit& fit) {
  Shaded p{0, 0.5, ""};
  for (int i = 0; i < kMesh; ++i) {
    for (int j = 0; j < kMesh; ++j) {
      P2 q[4] = {fit(cam(m.at[i][j])), fit(cam(m.at[i + 1][j])), fit(cam(m.at[i + 1][j + 1])),
                 fit(cam(m.at[i][j + 1]))};
      const double area =
          (q[2].x - q[0].x) * (q[3].y - q[1].y) - (q[3].x - q[1].x) * (q[2].y - q[0].y);
      if (area < 0) std::swap(q[1], q[3]);
      p.path += "M" + Xy(q[0]) + " L" + Xy(q[1]) + " " + Xy(q[2]) + " " + Xy(q[3]) + "Z";
    }
  }
  const Vec3 a = m.at[0][0], b = m.at[kMesh][0], c = m.at[0][kMesh], d = m.at[kMesh][kMesh];
  const Vec3 n = Cross(d - a, c - b);
  p.depth = Dot(0.25 * (a + b + c + d), cam.toward);
  if (Norm(n) > 0) p.light = std::abs(Dot(n, cam.toward)) / Norm(n);
  return p;
}

// Lighter the more a patch faces the viewer, so its curvature reads.
std::string PatchFill(double light) {
  const auto channel = [&](int lo, int hi) { return std::to_string(int(lo + light * (hi - lo))); };
  return "rgb(" + channel(150, 228) + "," + channel(174, 238) + "," + channel(204, 250) + ")";
}

std::string Patches(const std::vector<PatchMesh>& meshes, const Camera& cam, const Fit& fit) {
  std::vector<Shaded> shaded;
  for (const PatchMesh& m : meshes) shaded.push_back(ShadePatch(m, cam, fit));
  // Back to front, so the nearer patches veil what lies behind.
  std::stable_sort(shaded.begin(), shaded.end(),
                   [](const Shaded& a, const Shaded& b) { return a.depth < b.depth; });
  std::string out = "<g class=\"patches\" stroke=\"none\" fill-opacity=\"0.7\">\n";
  for (const Shaded& p : shaded)
    out += "<path fill=\"" + PatchFill(p.light) + "\" d=\"" + p.path + "\"/>\n";
  return out + "</g>\n";
}

std::string Circle(P2 c, double r, const char* cls, const char* fill, const char* stroke) {
  return "<circle class=\"" + std::string(cls) + "\" cx=\"" + Num(c.x) + "\" cy=\"" + Num(c.y) +
         "\" r=\"" + Num(r) + "\" fill=\"" + fill + "\" stroke=\"" + stroke + "\"/>\n";
}

std::string Line(P2 a, P2 b, const std::string& attrs) {
  return "<line x1=\"" + Num(a.x) + "\" y1=\"" + Num(a.y) + "\" x2=\"" + Num(b.x) + "\" y2=\"" +
         Num(b.y) + "\" " + attrs + "/>\n";
}

std::string Text(P2 at, const std::string& text, const std::string& attrs) {
  return "<text x=\"" + Num(at.x) + "\" y=\"" + Num(at.y) + "\" " + attrs + ">" + text +
         "</text>\n";
}

// A white halo keeps a label legible over lines, arrows and other labels.
std::string Label(const char* colour) {
  return "font-size=\"12\" fill=\"" + std::string(colour) +
         "\" stroke=\"white\" stroke-width=\"3\" paint-order=\"stroke\"";
}

std::string LineStyle(bool edge) {
  return std::string("fill=\"none\" stroke-linejoin=\"round\" stroke=\"") +
         (edge ? Colours::kEdge : Colours::kLine) + "\" stroke-width=\"" + (edge ? "2" : "1") +
         "\"";
}

std::string Legend(const SurfacePicture& what, const Camera& cam, double left, bool hiding) {
  std::vector<std::pair<std::string, std::string>> rows;  // swatch, label
  const auto dot = [](const char* c) { return Circle({0, 0}, 4.5, "key", c, "white"); };
  const auto bar = [](const char* c, const char* extra) {
    return Line({-8, 0}, {8, 0}, "stroke=\"" + std::string(c) + "\" stroke-width=\"2\" " + extra);
  };
  rows.push_back({bar(Colours::kEdge, ""), "grid edge"});
  rows.push_back({bar(Colours::kLine, ""), "grid lines"});
  if (!what.marks.empty()) rows.push_back({dot(Colours::kPoint), "point"});
  if (std::any_of(what.marks.begin(), what.marks.end(),
                  [](const SurfacePicture::Mark& m) { return m.foot.has_value(); })) {
    rows.push_back({dot(Colours::kFoot), "foot on the surface"});
    rows.push_back({bar(Colours::kSegment, "stroke-dasharray=\"4 3\""), "point to foot"});
  }
  if (!what.highlights.empty()) {
    rows.push_back({dot(Colours::kMoved), "position lat,lon"});
    rows.push_back({bar(Colours::kU, ""), "U tangent / 3"});
    rows.push_back({bar(Colours::kT, ""), "T tangent / 3"});
  }
  if (hiding) rows.push_back({"", "faded: behind the surface"});
  std::string out = "<g font-size=\"12\" fill=\"#212529\">\n";
  double y = kTop + 10;
  for (const auto& [swatch, label] : rows) {
    out += "<g transform=\"translate(" + Num(left + 12) + "," + Num(y) + ")\">\n" + swatch +
           Text({swatch.empty() ? -8.0 : 16.0, 4}, label, "") + "</g>\n";
    y += 20;
  }
  // Axes, so the view's direction reads at a glance.
  const P2 origin{left + 40, double(what.height) - 45};
  const char* names[] = {"x", "y", "z"};
  const Vec3 axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  for (int i = 0; i < 3; ++i) {
    const P2 v = cam(axes[i]);
    const P2 tip{origin.x + 28 * v.x, origin.y - 28 * v.y};
    out += Line(origin, tip, "stroke=\"#495057\" stroke-width=\"1.5\"");
    out += Text({origin.x + 38 * v.x - 3, origin.y - 38 * v.y + 4}, names[i], "");
  }
  return out + "</g>\n";
}

// The picture in two layers: what lies behind the surface, drawn beneath the shaded patches,
// and what lies in front, above them.
struct Layers {
  std::string behind, front;
  bool hid_any = false;  // besides the grid lines, which are drawn beneath anyway
  std::string& Of(bool hidden) {
    hid_any = hid_any || hidden;
    return hidden ? behind : front;
  }
};

// The segment in pieces, each on the side of the surface its middle is.
void DrawSegment(Vec3 from, Vec3 to, const Occluder* occluder, const Fit& fit, const Camera& cam,
                 Layers& layers) {
  constexpr int kPieces = 16;
  const std::string style = "stroke=\"" + std::string(Colours::kSegment) +
                            "\" stroke-width=\"1.5\" stroke-dasharray=\"4 3\" class=\"segment\"";
  const auto at = [&](int k) { return from + (double(k) / kPieces) * (to - from); };
  const auto hidden = [&](int k) {
    return occluder && occluder->Hidden(from + ((k + 0.5) / kPieces) * (to - from));
  };
  for (int k = 0; k < kPieces;) {
    const bool h = hidden(k);
    int end = k + 1;
    while (end < kPieces && hidden(end) == h) ++end;
    layers.Of(h) += Line(fit(cam(at(k))), fit(cam(at(end))), style);
    k = end;
  }
}

void DrawMarks(const SurfacePicture& what, const Occluder* occluder, const Fit& fit,
               const Camera& cam, Layers& layers) {
  const auto hidden = [&](Vec3 p) { return occluder && occluder->Hidden(p); };
  for (size_t i = 0; i < what.marks.size(); ++i) {
    const SurfacePicture::Mark& m = what.marks[i];
    if (m.foot) {
      DrawSegment(m.point, *m.foot, occluder, fit, cam, layers);
      layers.Of(hidden(*m.foot)) += Circle(fit(cam(*m.foot)), 4, "foot", Colours::kFoot, "white");
    }
    const P2 p = fit(cam(m.point));
    std::string& layer = layers.Of(hidden(m.point));
    layer += Circle(p, 4.5, "point", Colours::kPoint, "white");
    layer += Text({p.x + 7, p.y - 6}, std::to_string(i + 1), Label(Colours::kPoint));
  }
}

// The grid lines whole beneath the shading, and again above it where in front; the positions
// on the side of the surface they are seen from.
void DrawGrid(const GridView& grid, const std::vector<GridLine>& lines, const Occluder* hiding,
              const Fit& fit, const Camera& cam, Layers& layers) {
  for (const GridLine& line : lines) {
    const std::string style = LineStyle(line.edge);
    layers.behind += "<polyline " + style + " points=\"";
    for (const Vec3& p : line.samples) layers.behind += Xy(fit(cam(p))) + " ";
    layers.behind += "\"/>\n";
    if (!hiding) continue;
    std::string d;
    bool last = false;
    for (const Vec3& p : line.samples) {
      const bool shown = !hiding->Hidden(p);
      if (shown) d += (last ? " L" : " M") + Xy(fit(cam(p)));
      last = shown;
    }
    if (!d.empty()) layers.front += "<path " + style + " d=\"" + d + "\"/>\n";
  }
  if (grid.size() <= kMaxDots) {
    for (int lon = 1; lon <= grid.nlons; ++lon) {
      for (int lat = 1; lat <= grid.nlats; ++lat) {
        const Vec3 p = grid.Point(lat, lon);
        layers.Of(hiding && hiding->Hidden(p)) +=
            Circle(fit(cam(p)), 1.8, "position", Colours::kEdge, "none");
      }
    }
  }
}

struct Handle {
  Vec3 tip;
  const char* colour;
};

// A position's tangents as its patches use them, to the Bezier handles they make: none that
// would leave the grid, and none of length zero, which has no direction to draw.
std::vector<Handle> Handles(const GridView& g, SurfacePicture::Position h) {
  std::vector<Handle> out;
  const auto add = [&](bool used, const TangentView& t, double sign, const char* colour) {
    const Vec3 d = g.Derivative(t, h.lat, h.lon);
    if (used && Norm(d) > 0) out.push_back({g.Point(h.lat, h.lon) + (sign / 3) * d, colour});
  };
  add(h.lat < g.nlats, g.u_after, 1, Colours::kU);
  add(h.lat > 1, g.u_before, -1, Colours::kU);
  add(h.lon < g.nlons, g.t_after, 1, Colours::kT);
  add(h.lon > 1, g.t_before, -1, Colours::kT);
  return out;
}

void DrawHighlights(const GridView& grid, const SurfacePicture& what, const Fit& fit,
                    const Camera& cam, std::string& out) {
  for (const SurfacePicture::Position& h : what.highlights) {
    const P2 c = fit(cam(grid.Point(h.lat, h.lon)));
    for (const Handle& a : Handles(grid, h)) {
      out += Line(c, fit(cam(a.tip)),
                  "stroke=\"" + std::string(a.colour) +
                      "\" stroke-width=\"2\" marker-end=\"url(#head" + (a.colour + 1) + ")\"");
    }
    out += Circle(c, 6, "moved", Colours::kMoved, "white");
    out += Text({c.x + 9, c.y + 16}, std::to_string(h.lat) + "," + std::to_string(h.lon),
                Label(Colours::kMoved));
  }
}

std::string Header(const SurfacePicture& what) {
  const std::string w = std::to_string(what.width), h = std::to_string(what.height);
  std::string out = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + w + "\" height=\"" + h +
                    "\" viewBox=\"0 0 " + w + " " + h + "\" font-family=\"sans-serif\">\n<defs>\n";
  for (const char* c : {Colours::kU, Colours::kT}) {
    out += "<marker id=\"head" + std::string(c + 1) +
           "\" viewBox=\"0 0 10 10\" refX=\"9\" refY=\"5\" markerWidth=\"7\" markerHeight=\"7\" "
           "orient=\"auto\"><path d=\"M0,1 L10,5 L0,9 z\" fill=\"" +
           c + "\"/></marker>\n";
  }
  out += "</defs>\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  return out + Text({kMargin, 30}, Escape(what.title), "font-size=\"18\" fill=\"#212529\"");
}

}  // namespace

std::string SurfaceSvg(const GridView& grid, const SurfacePicture& what) {
  CheckInput(grid, what);
  const Camera cam(what.azimuth_degrees, what.elevation_degrees);
  Fit fit;
  const std::vector<GridLine> lines = GridLines(grid);
  for (const GridLine& line : lines) {
    for (const Vec3& p : line.samples) fit.Add(cam(p));
  }
  for (const SurfacePicture::Position& h : what.highlights) {
    for (const Handle& a : Handles(grid, h)) fit.Add(cam(a.tip));
  }
  for (const SurfacePicture::Mark& m : what.marks) {
    fit.Add(cam(m.point));
    if (m.foot) fit.Add(cam(*m.foot));
  }
  const size_t patches = size_t(grid.nlats - 1) * (grid.nlons - 1);
  const std::vector<PatchMesh> meshes =
      patches <= kMaxShadedPatches ? Meshes(grid) : std::vector<PatchMesh>{};
  for (const PatchMesh& m : meshes) {
    for (const auto& row : m.at) {
      for (const Vec3& p : row) fit.Add(cam(p));
    }
  }
  const double legend_left = what.width - kLegendWidth;
  fit.Into(kMargin, kTop, legend_left - 2 * kMargin, what.height - kTop - kMargin);

  std::optional<Occluder> occluder;
  if (!meshes.empty()) occluder.emplace(meshes, cam, fit);
  const Occluder* hiding = occluder ? &*occluder : nullptr;

  Layers layers;
  DrawGrid(grid, lines, hiding, fit, cam, layers);
  // The positions being edited stand in front of everything but the marks, which are small.
  DrawHighlights(grid, what, fit, cam, layers.front);
  DrawMarks(what, hiding, fit, cam, layers);

  std::string out = Header(what) + "<g class=\"behind\">\n" + layers.behind + "</g>\n";
  if (!meshes.empty()) out += Patches(meshes, cam, fit);
  out += "<g class=\"front\">\n" + layers.front + "</g>\n";
  out += Legend(what, cam, legend_left, layers.hid_any);
  return out + "</svg>\n";
}

}  // namespace qorvel::hosts
