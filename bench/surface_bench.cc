// The surface controls on large data, each beside the least work that moves the same bytes.
// A 1000 x 1000 surface, 168 MB in its 17 arrays, read whole and sent back whole through the
// dispatch face, against memcpy of those arrays once each way; and the memory a read takes
// beyond the host's own copy. A million points projected by a host that leaves the answer as it
// came, so that only the control's part is timed, against memcpy of the input coordinates.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/surface/ulmora_nearest_points_face.h"
#include "qorvel/surface/ulmora_surface_info_face.h"

namespace {

using namespace qorvel;

constexpr int kGrid = 1000;
constexpr int32_t kPoints = 1000000;
constexpr double kMB = 1e6;

hosts::SurfaceGrid BigPlane() {
  return hosts::PlaneGrid({0, 0, 0}, {100, 0, 0}, {0, 100, 0}, kGrid, kGrid);
}

// The byte sizes of the 17 arrays a surface of the grid's size takes, in the data calls' order.
std::vector<size_t> ArrayBytes() {
  const size_t n = size_t(kGrid) * kGrid;
  std::vector<size_t> bytes = {3 * n * sizeof(double)};
  for (int g = 0; g < 4; ++g) {
    bytes.insert(bytes.end(), {3 * n * sizeof(double), n * sizeof(double), n * 2, n * 2});
  }
  return bytes;
}

// 17 blocks of those sizes from malloc, untouched.
std::vector<char*> Blocks() {
  std::vector<char*> blocks;
  for (size_t b : ArrayBytes()) blocks.push_back(static_cast<char*>(std::malloc(b)));
  return blocks;
}

void Free(std::vector<char*>& blocks) {
  for (char* b : blocks) std::free(b);
  blocks.clear();
}

void Copy(const std::vector<char*>& from, const std::vector<char*>& to) {
  const std::vector<size_t> bytes = ArrayBytes();
  for (size_t i = 0; i < bytes.size(); ++i) std::memcpy(to[i], from[i], bytes[i]);
  benchmark::ClobberMemory();
}

void SetSurfaceBytes(benchmark::State& state, int iterations_per_pass = 1) {
  size_t total = 0;
  for (size_t b : ArrayBytes()) total += b;
  state.SetBytesProcessed(int64_t(total) * iterations_per_pass * state.iterations());
}

// The baseline: the host's arrays copied into the client's and back, both allocated and
// touched beforehand.
void BM_SurfaceMemcpyWarm(benchmark::State& state) {
  std::vector<char*> host = Blocks(), client = Blocks();
  const std::vector<size_t> bytes = ArrayBytes();
  for (size_t i = 0; i < bytes.size(); ++i) {
    std::memset(host[i], 1, bytes[i]);
    std::memset(client[i], 0, bytes[i]);
  }
  for (auto _ : state) {
    Copy(host, client);
    Copy(client, host);
  }
  SetSurfaceBytes(state, 2);
  Free(host);
  Free(client);
}
BENCHMARK(BM_SurfaceMemcpyWarm)->Unit(benchmark::kMillisecond);

// The same into blocks fresh from malloc each way, freed after: each copy pays for the pages
// it touches first.
void BM_SurfaceMemcpyFresh(benchmark::State& state) {
  std::vector<char*> host = Blocks();
  const std::vector<size_t> bytes = ArrayBytes();
  for (size_t i = 0; i < bytes.size(); ++i) std::memset(host[i], 1, bytes[i]);
  for (auto _ : state) {
    std::vector<char*> client = Blocks(), back = Blocks();
    Copy(host, client);
    Copy(client, back);
    Free(client);
    Free(back);
  }
  SetSurfaceBytes(state, 2);
  Free(host);
}
BENCHMARK(BM_SurfaceMemcpyFresh)->Unit(benchmark::kMillisecond);

// A simulated Ulmora holding the big surface, and a surface control bound to it.
struct SurfaceSession {
  SurfaceSession() {
    host->AddSurface("Big", BigPlane());
    Call(info, "Reset");
  }
  void Get() {
    std::string name = "Big";
    std::vector<Variant> args{Variant::Ref(name)};
    if (CallMember(info, "GetSurface", args).ToBool() == VariantBool::kFalse) std::abort();
  }
  void Update() {
    if (Call(info, "UpdateSurface").ToBool() == VariantBool::kFalse) std::abort();
  }

  ScopedEnv env;
  std::shared_ptr<hosts::SimUlmora> host = hosts::RunUlmora();
  AutomationObject info = NewControl<UlmoraSurfaceInfo>();
};

void BM_GetAndUpdateSurface(benchmark::State& state) {
  SurfaceSession session;
  for (auto _ : state) {
    session.Get();
    session.Update();
    session.host->ClearLog();  // the log holds the arguments of every call
  }
  SetSurfaceBytes(state, 2);
}
BENCHMARK(BM_GetAndUpdateSurface)->Unit(benchmark::kMillisecond);

// The host's own work in that round trip: the check of every number it takes on a write.
void BM_HostChecksAWrite(benchmark::State& state) {
  const hosts::SurfaceGrid grid = BigPlane();
  for (auto _ : state) hosts::CheckGrid(grid.view());
}
BENCHMARK(BM_HostChecksAWrite)->Unit(benchmark::kMillisecond);

SafeArray Coordinates(double offset) {
  SafeArray a(VarType::kDouble, {{0, kPoints}});
  const std::span<double> values = a.MutableDoubles();
  for (int32_t i = 0; i < kPoints; ++i) values[size_t(i)] = offset + i * 1e-4;
  return a;
}

// The baseline: the input coordinates copied once, into a buffer touched beforehand.
void BM_PointsMemcpy(benchmark::State& state) {
  const SafeArray x = Coordinates(0), y = Coordinates(1), z = Coordinates(2);
  std::vector<double> to(3 * size_t(kPoints), 1.0);
  for (auto _ : state) {
    double* out = to.data();
    for (const SafeArray* in : {&x, &y, &z}) {
      std::memcpy(out, in->Doubles().data(), kPoints * sizeof(double));
      out += kPoints;
    }
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * 3 * kPoints * sizeof(double));
}
BENCHMARK(BM_PointsMemcpy)->Unit(benchmark::kMillisecond);

void BM_GetNearestPoints1M(benchmark::State& state) {
  ScopedEnv env;
  auto host = hosts::RunUlmora();
  host->AddSurface("Floor", hosts::PlaneGrid({0, 0, 0}, {100, 0, 0}, {0, 100, 0}, 3, 3));
  host->document()->set_echo_nearest(true);
  AutomationObject control = NewControl<UlmoraNearestPoints>();
  std::string name = "Floor";
  SafeArray x = Coordinates(0), y = Coordinates(1), z = Coordinates(2);
  // Arrays of Double, as a client declares them; their old contents go at the resize.
  SafeArray out[3] = {SafeArray(VarType::kDouble, {{0, 1}}), SafeArray(VarType::kDouble, {{0, 1}}),
                      SafeArray(VarType::kDouble, {{0, 1}})};
  for (auto _ : state) {
    std::vector<Variant> args{Variant::Ref(name),  Variant::Ref(x),      Variant::Ref(y),
                              Variant::Ref(z),     Variant::Ref(out[0]), Variant::Ref(out[1]),
                              Variant::Ref(out[2])};
    CallMember(control, "GetNearestPoints", args);
    host->ClearLog();
  }
  if (out[2].GetDouble(kPoints - 1) != z.GetDouble(kPoints - 1)) std::abort();
  state.SetBytesProcessed(int64_t(state.iterations()) * 3 * kPoints * sizeof(double));
}
BENCHMARK(BM_GetNearestPoints1M)->Unit(benchmark::kMillisecond);

// A field of /proc/self/status, in bytes.
double StatusBytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.starts_with(field + ":")) return std::stod(line.substr(field.size() + 1)) * 1024;
  }
  return 0;
}

// The most memory a read holds at once beyond what was resident before it, which includes the
// host's own copy of the surface: the peak is reset to the current size just before the read.
// Blocks of a megabyte and more come straight from the system and go back to it when freed, as
// a process's first large blocks do; glibc would otherwise raise that threshold to the largest
// block freed so far and serve the arrays from heap memory freed earlier, already resident and
// cleared by calloc, so the figure would depend on what ran before. This holds for the rest of
// the program, so it runs last.
void BM_GetSurfacePeakMemory(benchmark::State& state) {
  mallopt(M_MMAP_THRESHOLD, 1 << 20);
  SurfaceSession session;
  double most = 0;
  for (auto _ : state) {
    session.host->ClearLog();
    const double before = StatusBytes("VmRSS");
    std::ofstream("/proc/self/clear_refs") << "5";
    session.Get();
    most = std::max(most, StatusBytes("VmHWM") - before);
  }
  size_t total = 0;
  for (size_t b : ArrayBytes()) total += b;
  state.counters["peak_MB"] = most / kMB;
  state.counters["surface_MB"] = double(total) / kMB;
  state.counters["peak_per_surface"] = most / double(total);
}
BENCHMARK(BM_GetSurfacePeakMemory)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
