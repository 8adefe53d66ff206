#include "windows/tests/com_client_bench.h"

#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "hosts/sim_zebrin.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/dispatch_windows.h"
#include "qorvel/platform/safe_array.h"

using namespace qorvel;
using namespace qorvel::win;

namespace {

using Clock = std::chrono::steady_clock;

// Nanoseconds a call of `work`, the best of `rounds` rounds of `n`.
template <class Work>
double NanosPerCall(int n, Work&& work, int rounds = 5) {
  double best = 1e300;
  for (int round = 0; round < rounds; ++round) {
    const auto start = Clock::now();
    for (int i = 0; i < n; ++i) work();
    const std::chrono::duration<double, std::nano> spent = Clock::now() - start;
    best = std::min(best, spent.count() / n);
  }
  return best;
}

// A property read through IDispatch::Invoke, its DISPID asked for once as a client caches it.
double PropertyGet(IDispatch* object, const wchar_t* member) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(member)};
  DISPID id = 0;
  object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  DISPPARAMS none{};
  return NanosPerCall(200000, [&] {
    VARIANT result;
    VariantInit(&result);
    object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &result, nullptr,
                   nullptr);
    VariantClear(&result);
  });
}

ComPtr<IDispatch> Create(const wchar_t* prog_id) {
  CLSID clsid;
  ComPtr<IDispatch> object;
  CLSIDFromProgID(prog_id, &clsid);
  CoCreateInstance(clsid, nullptr, CLSCTX_ALL, IID_IDispatch, object.put_void());
  return object;
}

void LateBoundCall() {
  ComPtr<IDispatch> point = Create(L"QorvelOLE.PointClass");
  ComPtr<IDispatch> host =
      ComPtr<IDispatch>::Attach(ExposeObject(std::make_shared<hosts::SimZebrin>()));
  const double through_dll = PropertyGet(point.get(), L"X");
  const double on_host = PropertyGet(host.get(), L"version");
  std::printf(
      "late-bound property get: %.0f ns through the DLL (PointClass.X), %.0f ns on a "
      "simulated host in this process (Zebrin version): ratio %.2f\n",
      through_dll, on_host, through_dll / on_host);
}

// GetSurface then UpdateSurface of a 1000 by 1000 surface in the host program, against the
// surface's bytes copied once each way in this process.
void SurfaceRoundTrip(int side) {
  AutomationObject sim = WrapDispatch(Create(L"QorvelSim.Control").get());
  Call(sim, "Run", "Ulmora");
  Call(sim, "AddPlane", "Ulmora", "BIG", Variant(), Variant(), Variant(), side, side);
  AutomationObject info = WrapDispatch(Create(L"QorvelOLE.UlmoraSurfaceInfo").get());
  Call(info, "Reset");
  std::string surface = "BIG";
  double get_ns = 0;
  const double round_trip = NanosPerCall(
      1,
      [&] {
        std::vector<Variant> get{Variant::Ref(surface)};
        const auto start = Clock::now();
        CallMember(info, "GetSurface", get);
        get_ns = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
        CallMember(info, "UpdateSurface");
      },
      1);  // seconds a round under Wine: its process boundary passes ~70 MB/s
  // What the store holds: the points, four tangent vectors with magnitudes, eight flags.
  const size_t points = size_t(side) * side;
  const size_t bytes = points * (3 + 4 * 4) * sizeof(double) + points * 8 * sizeof(int16_t);
  std::vector<char> from(bytes, 1), to(bytes);
  const double copies = NanosPerCall(1, [&] {
    std::memcpy(to.data(), from.data(), bytes);
    std::memcpy(from.data(), to.data(), bytes);
  });
  std::printf(
      "GetSurface + UpdateSurface %d x %d across the process boundary: %.1f ms (the get "
      "%.1f ms); the same %.0f MB copied once each way: %.1f ms; ratio %.1f\n",
      side, side, round_trip / 1e6, get_ns / 1e6, bytes / 1e6, copies / 1e6, round_trip / copies);
  // What the process boundary alone costs: one array of Double of the surface's points handed
  // to the host program and kept there, through the same late-bound call.
  Call(sim, "Run", "Zebrin");
  SafeArray grid(VarType::kDouble, {{1, side}, {1, side}, {1, 3}});
  const double one_way = NanosPerCall(1, [&] { Call(sim, "SetVersion", "Zebrin", grid); });
  std::printf("  %.0f MB of points to the host program in one call: %.1f ms (%.0f MB/s)\n",
              grid.size() * 8 / 1e6, one_way / 1e6, grid.size() * 8 / (one_way / 1e3));
  Call(sim, "GoAway", "Zebrin");
  Call(sim, "GoAway", "Ulmora");
}

}  // namespace

void RunBenchmarks(int side) {
  LateBoundCall();
  SurfaceRoundTrip(side);
}
