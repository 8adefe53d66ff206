// SafeArray shapes, bounds, resizes and copies, driven by the input: a first array of one to
// four dimensions, then a run of operations on it and on up to three copies. Bounds reach the
// extremes of 32 bits and counts run huge.
// Properties: only the runtime's array errors come out (5, 6, 7, 9, 10, 13; 94 when a Null is
// stored or converted); every array reports the bounds it was made with; a Put through one array
// changes no other, copies included; a resize that keeps the contents keeps the first element.
#include <fuzzer/FuzzedDataProvider.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "fuzz/property.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

namespace qorvel {
namespace {

using fuzz::Expect;

constexpr std::initializer_list<int32_t> kArrayErrors = {5, 6, 7, 9, 10, 13};
constexpr std::initializer_list<int32_t> kArrayErrorsAndNull = {5, 6, 7, 9, 10, 13, 94};

// Under AddressSanitizer an allocation that fails is a crash, not bad_alloc, so arrays the
// library would rightly allocate are kept to what the fuzzing machine can hold.
constexpr int64_t kMostElements = 1 << 18;

constexpr VarType kElements[] = {VarType::kVariant, VarType::kDouble, VarType::kBool,
                                 VarType::kInteger, VarType::kLong,   VarType::kText,
                                 VarType::kEmpty,   VarType::kObject};

int32_t PickInt(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange(0, 7)) {
    case 0:
      return in.ConsumeIntegralInRange<int32_t>(-4, 12);
    case 1:
      return INT32_MIN;
    case 2:
      return INT32_MAX;
    case 3:
      return INT32_MAX - in.ConsumeIntegralInRange<int32_t>(0, 8);
    case 4:
      return INT32_MIN + in.ConsumeIntegralInRange<int32_t>(0, 8);
    case 5:
      return int32_t{1} << in.ConsumeIntegralInRange(16, 30);
    case 6:
      return -in.ConsumeIntegralInRange<int32_t>(0, 8);
    default:
      return in.ConsumeIntegral<int32_t>();
  }
}

std::vector<Bound> PickBounds(FuzzedDataProvider& in) {
  std::vector<Bound> bounds(in.ConsumeIntegralInRange(1, 4));
  for (Bound& b : bounds) {
    b.lower = PickInt(in);
    b.count = in.ConsumeBool() ? in.ConsumeIntegralInRange<int32_t>(0, 5) : PickInt(in);
  }
  return bounds;
}

// Whether the library may allocate these bounds within the harness's memory: bounds it must
// refuse are always tried.
bool Affordable(const std::vector<Bound>& bounds) {
  int64_t total = 1;
  for (const Bound& b : bounds) {
    if (b.count < 0 || int64_t{b.lower} + b.count - 1 > INT32_MAX) return true;
  }
  for (const Bound& b : bounds) {
    if (b.count == 0) return true;
    total *= b.count;
    if (total > INT32_MAX) return true;
  }
  return total <= kMostElements;
}

Variant PickValue(FuzzedDataProvider& in, const std::vector<SafeArray>& arrays) {
  switch (in.ConsumeIntegralInRange(0, 8)) {
    case 0:
      return Variant();
    case 1:
      return Variant::Null();
    case 2:
      return Variant(in.ConsumeIntegral<int16_t>());
    case 3:
      return Variant(in.ConsumeIntegral<int32_t>());
    case 4: {
      const uint64_t bits = in.ConsumeIntegral<uint64_t>();
      double d;
      std::memcpy(&d, &bits, sizeof d);
      return Variant(d);
    }
    case 5:
      return Variant(MakeVariantBool(in.ConsumeIntegral<int16_t>()));
    case 6:
      return Variant(in.ConsumeRandomLengthString(24));
    case 7:
      return Variant(arrays[in.ConsumeIntegralInRange<size_t>(0, arrays.size() - 1)]);
    default:
      return Variant(in.ConsumeIntegralInRange<int32_t>(-3, 3));
  }
}

std::vector<int32_t> PickSubscripts(FuzzedDataProvider& in, const SafeArray& array) {
  const std::vector<Bound> bounds = array.bounds();
  const size_t n = in.ConsumeIntegralInRange(0, 7) == 0 ? in.ConsumeIntegralInRange<size_t>(0, 5)
                                                        : bounds.size();
  std::vector<int32_t> subscripts(n);
  for (size_t d = 0; d < n; ++d) {
    if (d < bounds.size() && bounds[d].count > 0 && in.ConsumeBool()) {
      const int32_t index = in.ConsumeIntegralInRange<int32_t>(0, bounds[d].count - 1);
      subscripts[d] = static_cast<int32_t>(int64_t{bounds[d].lower} + index);
    } else {
      subscripts[d] = PickInt(in);
    }
  }
  return subscripts;
}

// Two elements are alike: the same type and the same value (arrays by their bounds).
bool Alike(const Variant& a, const Variant& b) {
  if (a.vt() != b.vt()) return false;
  if (a.is_array()) return a.ToArray().bounds() == b.ToArray().bounds();
  switch (a.type()) {
    case VarType::kInteger:
    case VarType::kLong:
    case VarType::kBool:
      return a.ToLong() == b.ToLong();
    case VarType::kDouble: {
      const double x = a.ToDouble(), y = b.ToDouble();
      return std::memcmp(&x, &y, sizeof x) == 0;
    }
    case VarType::kText:
      return a.ToText() == b.ToText();
    default:
      return true;
  }
}

// What an element read gives: the value, or that it raised.
struct Reading {
  bool ok = false;
  Variant value;
};
Reading Read(const SafeArray& array, const std::vector<int32_t>& subscripts) {
  Reading r;
  r.ok = fuzz::RunAllowing(kArrayErrors, [&] { r.value = array.Get(subscripts); });
  return r;
}
bool Alike(const Reading& a, const Reading& b) {
  return a.ok == b.ok && (!a.ok || Alike(a.value, b.value));
}

// The bounds the array reports through every reader agree with each other and with `asked`.
void ExpectShape(const SafeArray& array, const std::vector<Bound>* asked) {
  const std::vector<Bound> bounds = array.bounds();
  if (asked) Expect(bounds == *asked, "an array keeps the bounds it was made with");
  Expect(array.dims() == static_cast<int32_t>(bounds.size()), "dims counts the bounds");
  bool empty = bounds.empty();
  for (size_t d = 0; d < bounds.size(); ++d) {
    const int32_t dim = static_cast<int32_t>(d + 1);
    Expect(array.LBound(dim) == bounds[d].lower, "LBound is the lower bound asked for");
    // An empty dimension at the lowest bound ends below anything a Long holds: 6, as the
    // runtime's overflow.
    const int64_t upper = int64_t{bounds[d].lower} + bounds[d].count - 1;
    if (upper < INT32_MIN) {
      Expect(ErrorOf([&] { array.UBound(dim); }) == err::kOverflow, "UBound below a Long is 6");
    } else {
      Expect(int64_t{array.UBound(dim)} == upper,
             "UBound is the lower bound plus the count less one");
    }
    empty = empty || bounds[d].count == 0;
  }
  if (empty) {
    Expect(array.size() == 0, "an array with an empty dimension has no elements");
  } else {
    int64_t total = 1;
    for (const Bound& b : bounds) total *= b.count;  // within 32 bits, or it wasn't made
    Expect(array.size() == total, "size is the product of the counts");
  }
}

}  // namespace
}  // namespace qorvel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qorvel;
  using fuzz::RunAllowing;
  FuzzedDataProvider in(data, size);

  std::vector<SafeArray> arrays;
  arrays.reserve(4);
  {
    const VarType element = in.PickValueInArray(kElements);
    const bool fixed = in.ConsumeBool();
    std::vector<Bound> bounds = PickBounds(in);
    if (!Affordable(bounds)) return 0;
    RunAllowing(kArrayErrors, [&] {
      arrays.push_back(fixed ? SafeArray::Fixed(element, bounds) : SafeArray(element, bounds));
      ExpectShape(arrays.back(), &bounds);
      Expect(arrays.back().fixed() == fixed, "Fixed makes a fixed array");
    });
  }
  if (arrays.empty()) return 0;

  for (int steps = 0; steps < 64 && in.remaining_bytes() > 0; ++steps) {
    SafeArray& array = arrays[in.ConsumeIntegralInRange<size_t>(0, arrays.size() - 1)];
    switch (in.ConsumeIntegralInRange(0, 9)) {
      case 0: {  // a Put changes the one array it goes through
        const std::vector<int32_t> subscripts = PickSubscripts(in, array);
        const Variant value = PickValue(in, arrays);
        std::vector<Reading> others;
        for (const SafeArray& other : arrays) others.push_back(Read(other, subscripts));
        const bool put =
            RunAllowing(value.type() == VarType::kNull ? kArrayErrorsAndNull : kArrayErrors,
                        [&] { array.Put(subscripts, value); });
        for (size_t i = 0; i < arrays.size(); ++i) {
          if (&arrays[i] == &array && put) continue;
          Expect(Alike(Read(arrays[i], subscripts), others[i]),
                 "a Put leaves every other array, and a refused one its own, as it was");
        }
        break;
      }
      case 1:
        Read(array, PickSubscripts(in, array));
        break;
      case 2: {
        const bool preserve = in.ConsumeBool();
        std::vector<Bound> bounds = array.bounds();
        if (bounds.empty() || in.ConsumeBool()) {
          bounds = PickBounds(in);
        } else {
          bounds.back().count =
              in.ConsumeBool() ? in.ConsumeIntegralInRange<int32_t>(0, 5) : PickInt(in);
        }
        if (!Affordable(bounds)) break;
        std::vector<int32_t> origin;
        for (const Bound& b : array.bounds()) origin.push_back(b.lower);
        const Reading before = Read(array, origin);
        const SafeArray shape_before = array;
        const bool locked = array.fixed() || array.locked();
        if (RunAllowing(kArrayErrors, [&] { array.Redim(bounds, preserve); })) {
          Expect(!locked, "a fixed or locked array refuses a resize");
          ExpectShape(array, &bounds);
          bool kept = preserve && before.ok;
          for (const Bound& b : bounds) kept = kept && b.count > 0;
          if (kept) {
            Expect(Alike(Read(array, origin), before), "a preserving resize keeps its elements");
          }
        } else {
          Expect(array.bounds() == shape_before.bounds(), "a refused resize keeps the bounds");
        }
        break;
      }
      case 3:
        array.Lock();
        break;
      case 4:
        RunAllowing(kArrayErrors, [&] { array.Unlock(); });
        break;
      case 5: {  // a copy is a plain array of the same shape
        SafeArray copy = array;
        Expect(!copy.fixed() && !copy.locked(), "a copy is neither fixed nor locked");
        ExpectShape(copy, nullptr);
        Expect(copy.bounds() == array.bounds(), "a copy has its original's bounds");
        if (arrays.size() < 4) {
          arrays.push_back(std::move(copy));
        } else {
          arrays[in.ConsumeIntegralInRange<size_t>(0, arrays.size() - 1)] = copy;
        }
        break;
      }
      case 6: {
        const SafeArray& source = arrays[in.ConsumeIntegralInRange<size_t>(0, arrays.size() - 1)];
        const std::vector<Bound> old = array.bounds();
        const bool locked = array.fixed() || array.locked();
        const std::vector<Bound> taken = source.bounds();
        if (RunAllowing(kArrayErrorsAndNull, [&] { array.AssignFrom(source); })) {
          Expect(array.bounds() == taken, "an assigned array takes its source's bounds");
          Expect(!locked || taken == old, "a fixed or locked array takes only its own bounds");
        } else {
          Expect(array.bounds() == old, "a refused assignment keeps the bounds");
        }
        break;
      }
      case 7: {
        const VarType element = in.PickValueInArray(kElements);
        RunAllowing(kArrayErrorsAndNull, [&] {
          SafeArray converted = array.ConvertedTo(element);
          Expect(converted.bounds() == array.bounds(), "a conversion keeps the bounds");
          if (arrays.size() < 4) arrays.push_back(std::move(converted));
        });
        break;
      }
      case 8: {
        const int32_t dim = in.ConsumeIntegralInRange(-1, 5);
        const bool there = dim >= 1 && dim <= array.dims();
        Expect(RunAllowing(kArrayErrors, [&] { array.LBound(dim); }) == there,
               "LBound raises 9 exactly for a dimension that isn't there");
        const bool below_long =
            there && int64_t{array.LBound(dim)} + array.bounds()[dim - 1].count - 1 < INT32_MIN;
        Expect(RunAllowing(kArrayErrors, [&] { array.UBound(dim); }) == (there && !below_long),
               "UBound raises 9 exactly for a dimension that isn't there, 6 below a Long");
        ExpectShape(array, nullptr);
        break;
      }
      default: {
        const int32_t subscript = PickInt(in);
        double value = 0;
        RunAllowing(kArrayErrors, [&] { value = array.GetDouble(subscript); });
        RunAllowing(kArrayErrors, [&] { array.PutDouble(subscript, value + 1); });
        break;
      }
    }
  }
  return 0;
}
