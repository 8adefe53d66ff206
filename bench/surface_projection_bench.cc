// Nearest points on a wavy surface, z = sin x cos y over the same extent at 8 to 128 positions
// a side: the time per point should stay flat as the patches multiply, since the index leads a
// query to the few patches near it. And the index build for a 1000 x 1000 grid, which the host
// pays after every write.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "hosts/surface_geometry.h"

namespace {

using namespace qorvel::hosts;

constexpr double kExtent = 12.0;  // about two waves each way

SurfaceGrid Wavy(int n) {
  std::vector<double> points(3 * size_t(n) * n);
  const size_t nn = size_t(n) * n;
  for (int lon = 0; lon < n; ++lon) {
    for (int lat = 0; lat < n; ++lat) {
      const double x = kExtent * lat / (n - 1), y = kExtent * lon / (n - 1);
      const size_t i = lat + size_t(n) * lon;
      points[i] = x;
      points[i + nn] = y;
      points[i + 2 * nn] = std::sin(x) * std::cos(y);
    }
  }
  return GridThroughPoints(n, n, points);
}

// Points within 0.02 of the wave, all over it: nearer than a quarter of the finest grid's
// spacing, so that every grid sees them as near.
std::vector<Vec3> Queries() {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> along(0, kExtent), off(-0.02, 0.02);
  std::vector<Vec3> out(4096);
  for (Vec3& q : out) {
    const double x = along(random), y = along(random);
    q = {x, y, std::sin(x) * std::cos(y) + off(random)};
  }
  return out;
}

void BM_NearestPoint(benchmark::State& state) {
  const SurfaceGrid grid = Wavy(int(state.range(0)));
  const SurfaceIndex index(grid.view());
  const std::vector<Vec3> queries = Queries();
  size_t next = 0;
  int64_t patches = 0;
  for (auto _ : state) {
    const Projection p = index.Nearest(queries[next]);
    benchmark::DoNotOptimize(p);
    patches += p.patches_searched;
    next = (next + 1) % queries.size();
  }
  state.counters["patches_per_point"] =
      benchmark::Counter(double(patches) / double(state.iterations()));
}
BENCHMARK(BM_NearestPoint)
    ->Arg(8)
    ->Arg(16)
    ->Arg(32)
    ->Arg(64)
    ->Arg(128)
    ->Unit(benchmark::kMicrosecond);

void BM_BuildIndex(benchmark::State& state) {
  const SurfaceGrid grid = Wavy(int(state.range(0)));
  for (auto _ : state) {
    SurfaceIndex index(grid.view());
    benchmark::DoNotOptimize(index);
  }
}
BENCHMARK(BM_BuildIndex)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
