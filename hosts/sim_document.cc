#include "hosts/sim_document.h"

#include <cstdint>
#include <vector>

#include "qorvel/platform/error.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/text.h"

namespace qorvel::hosts {
namespace {

constexpr uint16_t kTextRef = 0x4008, kIntegerRef = 0x4002, kBoolRef = 0x400B;
constexpr uint16_t kVariantRef = 0x400C, kLongRef = 0x4003, kInteger = 0x0002;
constexpr uint16_t kDoubles = 0x2005, kFlags = 0x200B;

// The 24 arguments of both data calls: the name, 1, NLats, 1, NLons, the world flag, the 17
// arrays in VARIANTs by reference, the status.
std::vector<uint16_t> DataCallTypes() {
  std::vector<uint16_t> types = {kTextRef, kInteger, kIntegerRef, kInteger, kIntegerRef, kBoolRef};
  for (int i = 0; i < kSurfaceArrays; ++i) types.push_back(kVariantRef);
  types.push_back(kLongRef);
  return types;
}

std::string Hex(uint16_t vt) {
  static const char digits[] = "0123456789ABCDEF";
  std::string text = "0x";
  for (int shift = 12; shift >= 0; shift -= 4) text += digits[(vt >> shift) & 0xF];
  return text;
}

void CheckTypes(const char* member, std::span<Variant> args, const std::vector<uint16_t>& types) {
  if (args.size() != types.size()) Raise(err::kWrongArgs);
  for (size_t i = 0; i < types.size(); ++i) {
    if (args[i].vt() != types[i]) {
      Raise(err::kTypeMismatch, std::string(member) + ": argument " + std::to_string(i + 1) +
                                    " is " + Hex(args[i].vt()) + ", not " + Hex(types[i]));
    }
  }
}

// What the VARIANT of array argument `i` holds must be of its array's type.
void CheckArrayTypes(const char* member, std::span<Variant> args, size_t first,
                     const std::vector<uint16_t>& held) {
  for (size_t i = 0; i < held.size(); ++i) {
    const uint16_t vt = args[first + i].Deref().vt();
    if (vt != held[i]) {
      Raise(err::kTypeMismatch, std::string(member) + ": argument " +
                                    std::to_string(first + i + 1) + " holds " + Hex(vt) + ", not " +
                                    Hex(held[i]));
    }
  }
}

std::vector<uint16_t> HeldByDataCalls() {
  std::vector<uint16_t> held = {kDoubles};
  for (int g = 0; g < 4; ++g) held.insert(held.end(), {kDoubles, kDoubles, kFlags, kFlags});
  return held;
}

constexpr size_t kFirstArray = 6;

}  // namespace

SimDocument::SimDocument(const std::shared_ptr<SimObject>& host, SimSurfaces& surfaces)
    : SimObject(kClass, host, "ActiveDocument"), surfaces_(surfaces) {}

const SimMembers& SimDocument::members() const {
  static const SimMembers members{
      {"GetSurfacePointData", MemberShape::kMethod, Handle<&SimDocument::GetSurfacePointData>},
      {"SetSurfacePointData", MemberShape::kMethod, Handle<&SimDocument::SetSurfacePointData>},
      {"getnearestpoint", MemberShape::kMethod, Handle<&SimDocument::GetNearestPoint>},
  };
  return members;
}

void SimDocument::FailDataCalls(int32_t status) {
  std::lock_guard lock(mu_);
  failing_status_ = status;
}

void SimDocument::set_echo_nearest(bool echo) {
  std::lock_guard lock(mu_);
  echo_nearest_ = echo;
}

void SimDocument::ScriptArgument(const std::string& member, int position, Variant value) {
  if (position < 1) Raise(err::kInvalidCall, "Argument positions count from 1");
  std::lock_guard lock(mu_);
  scripted_.push_back({UpperCase(member), size_t(position - 1), std::move(value)});
}

void SimDocument::ClearOwnFaults() {
  SimObject::ClearOwnFaults();
  failing_status_ = 0;
  echo_nearest_ = false;
  scripted_.clear();
}

void SimDocument::WriteScripted(const char* member, std::span<Variant> args) {
  for (const Scripted& s : scripted_) {
    if (s.member == member && s.index < args.size()) args[s.index].Assign(s.value);
  }
}

// The counts go back through their references whenever the surface is there; the arrays only
// when the status is 0. A surface's arrays are handed over as they are: copies share storage.
Variant SimDocument::GetSurfacePointData(std::span<Variant> args) {
  CheckTypes("GetSurfacePointData", args, DataCallTypes());
  CheckArrayTypes("GetSurfacePointData", args, kFirstArray, HeldByDataCalls());
  SurfaceArrays arrays;
  int16_t nlats = 0, nlons = 0;
  int32_t status = kNoSuchSurface;
  if (surfaces_.Read(args[0].ToText(), arrays, nlats, nlons)) {
    args[2].Assign(nlats);
    args[4].Assign(nlons);
    status = failing_status_;
  }
  if (status == 0) {
    for (int i = 0; i < kSurfaceArrays; ++i) args[kFirstArray + i].Assign(Variant(arrays[i]));
  }
  args[23].Assign(status);
  WriteScripted("GETSURFACEPOINTDATA", args);
  return {};
}

Variant SimDocument::SetSurfacePointData(std::span<Variant> args) {
  CheckTypes("SetSurfacePointData", args, DataCallTypes());
  CheckArrayTypes("SetSurfacePointData", args, kFirstArray, HeldByDataCalls());
  int32_t status = failing_status_;
  if (status == 0) {
    SurfaceArrays arrays;
    for (int i = 0; i < kSurfaceArrays; ++i) arrays[i] = args[kFirstArray + i].ToArray();
    status = surfaces_.Write(args[0].ToText(), args[2].ToInteger(), args[4].ToInteger(), arrays);
  }
  args[23].Assign(status);
  WriteScripted("SETSURFACEPOINTDATA", args);
  return {};
}

// getnearestpoint(name, count, points, answer): the answer enters as a copy of the points and
// leaves with the nearest point of each, in the same places.
Variant SimDocument::GetNearestPoint(std::span<Variant> args) {
  CheckTypes("getnearestpoint", args, {kTextRef, kLongRef, kVariantRef, kVariantRef});
  CheckArrayTypes("getnearestpoint", args, 2, {kDoubles, kDoubles});
  const int32_t count = args[1].ToLong();
  const SafeArray points = args[2].ToArray();
  SafeArray answer = args[3].ToArray();
  if (count < 0 || points.dims() != 1 || answer.dims() != 1 || points.size() < 3 * int64_t{count} ||
      answer.size() < 3 * int64_t{count}) {
    Raise(err::kInvalidCall,
          "getnearestpoint: " + std::to_string(count) + " points don't fit the arrays given");
  }
  if (!echo_nearest_) {
    surfaces_.Nearest(args[0].ToText(), points.Doubles(), count, answer.MutableDoubles());
    args[3].Assign(Variant(std::move(answer)));
  }
  WriteScripted("GETNEARESTPOINT", args);
  return {};
}

}  // namespace qorvel::hosts
