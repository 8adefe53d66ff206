#include "qorvel/platform/safe_array.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {
namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

class SafeArrayTest : public testing::Test {
 protected:
  void SetUp() override { SetDecimalSymbol(env_.env().registry(), "."); }
  ScopedEnv env_;
};

// A 2 x 3 array of Long holding 10 * i + j at (i, j).
SafeArray Grid() {
  SafeArray grid(VarType::kLong, {{1, 2}, {1, 3}});
  for (int32_t i = 1; i <= 2; ++i) {
    for (int32_t j = 1; j <= 3; ++j) grid.Put({i, j}, 10 * i + j);
  }
  return grid;
}

// The elements of a two-dimensional array in memory order: the first subscript fastest.
std::string Values(const SafeArray& a) {
  std::string text;
  for (int32_t j = a.LBound(2); j <= a.UBound(2); ++j) {
    for (int32_t i = a.LBound(1); i <= a.UBound(1); ++i) text += a.Get({i, j}).ToText() + " ";
  }
  return text;
}

// Every shape goes through creation, Redim and copies alike; a refused one leaves the array
// that was to take it as it was. An empty dimension at the lowest lower bound ends below what
// a Long holds, and UBound says 6. `corner` is a subscript list at the extremes of a Long.
TEST_F(SafeArrayTest, ShapesAtTheEdgesOfLongsAndOfMemory) {
  struct Case {
    std::vector<Bound> bounds;
    int32_t error;
    int64_t size;
    std::vector<int64_t> upper;
    std::vector<int32_t> corner;
    bool corner_inside;
  };
  const int64_t kBelow = int64_t{kMin} - 1;
  const Case cases[] = {
      {{}, 0, 0, {}, {}, false},
      {{{1, 3}}, 0, 3, {3}, {kMax}, false},
      {{{-2, 4}}, 0, 4, {1}, {kMin}, false},
      {{{1, 0}}, 0, 0, {0}, {1}, false},
      {{{5, 2}, {-1, 2}, {1, 4}}, 0, 16, {6, 0, 4}, {6, kMin, 4}, false},
      {{{kMax, 1}}, 0, 1, {kMax}, {kMax}, true},
      {{{kMin, 1}}, 0, 1, {kMin}, {kMin}, true},
      {{{kMin, 2}, {kMax - 1, 2}}, 0, 4, {kMin + 1, kMax}, {kMin, kMax}, true},
      {{{kMin, 0}}, 0, 0, {kBelow}, {kMin}, false},
      // clang-format off
      {{{1, kMax}, {1, kMax}, {1, kMax}, {kMin, 0}}, 0, 0, {kMax, kMax, kMax, kBelow},
       {kMax - 1, kMax - 1, kMax - 1, kMin}, false},
      // clang-format on
      {{{0, 0}, {kMin, kMax}, {0, kMax}}, 0, 0, {-1, -2, kMax - 1}, {0, kMin, 0}, false},
      {{{kMax, 2}}, err::kSubscript, 0, {}, {}, false},
      {{{1, -1}}, err::kSubscript, 0, {}, {}, false},
      {{{1, 70000}, {1, 70000}}, err::kOutOfMemory, 0, {}, {}, false},
      {{{1, kMax}, {1, kMax}, {1, kMax}, {1, 2}}, err::kOutOfMemory, 0, {}, {}, false},
      // 2 GiB of Longs, 4 GiB of Doubles: more than one array may take, refused before any
      // allocation, so the outcome is the same under a sanitizer's allocator, which may abort.
      {{{1, 1 << 29}}, err::kOutOfMemory, 0, {}, {}, false},
  };
  for (size_t i = 0; i < std::size(cases); ++i) {
    const Case& c = cases[i];
    SCOPED_TRACE(i);
    SafeArray redimmed = Grid();
    EXPECT_EQ(ErrorOf([&] { SafeArray(VarType::kDouble, c.bounds); }), c.error);
    EXPECT_EQ(ErrorOf([&] { redimmed.Redim(c.bounds, false); }), c.error);
    if (c.error != 0) {
      EXPECT_EQ(Values(redimmed), "11 21 12 22 13 23 ");
      continue;
    }
    SafeArray original(VarType::kDouble, c.bounds);
    for (const SafeArray& a : {original, original.ConvertedTo(VarType::kVariant), redimmed}) {
      EXPECT_EQ(a.size(), c.size);
      ASSERT_EQ(a.bounds(), c.bounds);
      for (int32_t d = 1; d <= a.dims(); ++d) {
        int64_t upper = kBelow;  // what UBound leaves when it overflows
        EXPECT_EQ(ErrorOf([&] { upper = a.UBound(d); }),
                  c.upper[d - 1] < kMin ? err::kOverflow : 0);
        EXPECT_EQ(upper, c.upper[d - 1]);
        EXPECT_EQ(a.LBound(d), c.bounds[d - 1].lower);
      }
      EXPECT_EQ(ErrorOf([&] { a.UBound(a.dims() + 1); }), err::kSubscript);
    }
    SafeArray copy = original;
    const int32_t expected = c.corner_inside ? 0 : err::kSubscript;
    EXPECT_EQ(ErrorOf([&] { copy.Put(c.corner, 2.5); }), expected);
    EXPECT_EQ(ErrorOf([&] { copy.Get(c.corner); }), expected);
    if (c.corner_inside) {
      EXPECT_EQ(copy.Get(c.corner).ToDouble(), 2.5);
      EXPECT_EQ(original.Get(c.corner).ToDouble(), 0);
    }
  }
  EXPECT_EQ(ErrorOf([] { SafeArray(VarType::kObject, {{1, 1}}); }), err::kInvalidCall);
  SafeArray grid = Grid();
  EXPECT_EQ(ErrorOf([&] { grid.Redim({{1, 2}, {1, 1 << 30}}, true); }), err::kOutOfMemory);
  EXPECT_EQ(Values(grid), "11 21 12 22 13 23 ");
}

TEST_F(SafeArrayTest, AnUnallocatedArrayIsAnEmptyArrayOfVariants) {
  SafeArray a;
  EXPECT_EQ(a.element_type(), VarType::kVariant);
  EXPECT_EQ(ErrorOf([&] { a.LBound(); }), err::kSubscript);
  a.Redim({{1, 2}}, true);
  EXPECT_TRUE(a.Get({2}).is_empty());
}

TEST_F(SafeArrayTest, SubscriptsOutsideTheBoundsAreErrorNine) {
  SafeArray a(VarType::kDouble, {{0, 3}, {-1, 2}});
  const std::vector<std::vector<int32_t>> bad = {{-1, -1},  {3, -1}, {0, -2},   {0, 1},   {0},
                                                 {0, 0, 0}, {},      {kMax, 0}, {0, kMin}};
  for (const auto& subscripts : bad) {
    EXPECT_EQ(ErrorOf([&] { a.Get(subscripts); }), err::kSubscript) << subscripts.size();
    EXPECT_EQ(ErrorOf([&] { a.Put(subscripts, 1.0); }), err::kSubscript);
  }
  // The Double fast paths want one dimension of Doubles.
  SafeArray doubles(VarType::kDouble, {{0, 2}});
  EXPECT_EQ(ErrorOf([&] { doubles.GetDouble(2); }), err::kSubscript);
  EXPECT_EQ(ErrorOf([&] { doubles.PutDouble(-1, 0); }), err::kSubscript);
  EXPECT_EQ(ErrorOf([&] { a.GetDouble(1); }), err::kSubscript);
  SafeArray longs(VarType::kLong, {{0, 2}});
  EXPECT_EQ(ErrorOf([&] { longs.GetDouble(0); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { longs.PutDouble(0, 1); }), err::kTypeMismatch);
}

// A put converts to the array's type first; one that doesn't convert leaves the zero in place.
TEST_F(SafeArrayTest, ElementsAreStoredInTheArraysType) {
  double d = 1;
  struct Case {
    VarType element;
    Variant put;
    int32_t error;
    uint16_t vt;
    std::string text;
  };
  const Case cases[] = {
      {VarType::kDouble, Variant("2.5"), 0, 0x0005, "2.5"},
      {VarType::kLong, Variant(2.5), 0, 0x0003, "2"},
      {VarType::kInteger, Variant("3.5"), 0, 0x0002, "4"},
      {VarType::kInteger, Variant(40000), err::kOverflow, 0x0002, "0"},
      {VarType::kInteger, Variant("x"), err::kTypeMismatch, 0x0002, "0"},
      {VarType::kBool, Variant(2), 0, 0x000B, "True"},
      {VarType::kText, Variant(int16_t{12}), 0, 0x0008, "12"},
      {VarType::kVariant, Variant(int16_t{12}), 0, 0x0002, "12"},
      {VarType::kVariant, Variant::Ref(d), 0, 0x0005, "1"},  // the value
  };
  for (const Case& c : cases) {
    SafeArray a(c.element, {{1, 2}});
    EXPECT_EQ(ErrorOf([&] { a.Put({2}, c.put); }), c.error) << int(c.element);
    EXPECT_EQ(a.Get({2}).vt(), c.vt) << int(c.element);
    EXPECT_EQ(a.Get({2}).ToText(), c.text) << int(c.element);
  }
  SafeArray bools(VarType::kBool, {{1, 1}});
  bools.Put({1}, MakeVariantBool(3));
  EXPECT_EQ(RawBool(bools.Get({1}).ToBool()), 3);
}

// Only the last dimension is slowest in memory, so only its count can change in place.
TEST_F(SafeArrayTest, PreserveKeepsElementsAndChangesOnlyTheLastCount) {
  SafeArray grid = Grid();
  grid.Redim({{1, 2}, {1, 4}}, true);
  EXPECT_EQ(Values(grid), "11 21 12 22 13 23 0 0 ");
  grid.Redim({{1, 2}, {1, 2}}, true);
  EXPECT_EQ(Values(grid), "11 21 12 22 ");
  grid.Redim({{1, 2}, {1, 4}}, true);  // grown again in the memory it had: zeros, not 13 23
  EXPECT_EQ(Values(grid), "11 21 12 22 0 0 0 0 ");
  const std::vector<std::vector<Bound>> refused = {
      {{1, 3}, {1, 3}}, {{0, 2}, {1, 3}}, {{1, 2}, {0, 3}}, {{1, 6}}, {},
  };
  for (const auto& bounds : refused) {
    SafeArray g = Grid();
    EXPECT_EQ(ErrorOf([&] { g.Redim(bounds, true); }), err::kSubscript) << bounds.size();
    EXPECT_EQ(Values(g), "11 21 12 22 13 23 ");
  }
  grid.Redim({{0, 1}, {0, 2}}, false);  // without preserve: the type stays, the contents go
  EXPECT_EQ(grid.element_type(), VarType::kLong);
  EXPECT_EQ(Values(grid), "0 0 ");
}

TEST_F(SafeArrayTest, FixedAndLockedArraysRefuseAResizeButTakeWrites) {
  SafeArray fixed = SafeArray::Fixed(VarType::kDouble, {{1, 3}});
  SafeArray locked(VarType::kDouble, {{1, 3}});
  locked.Lock();
  locked.Lock();
  locked.Unlock();
  for (SafeArray* a : {&fixed, &locked}) {
    EXPECT_EQ(ErrorOf([&] { a->Redim({{1, 4}}, false); }), err::kArrayLocked);
    EXPECT_EQ(ErrorOf([&] { a->Redim({{1, 4}}, true); }), err::kArrayLocked);
    a->PutDouble(3, 1.5);
    EXPECT_EQ(a->GetDouble(3), 1.5);
  }
  locked.Unlock();
  locked.Redim({{1, 4}}, true);
  EXPECT_EQ(locked.GetDouble(3), 1.5);
  EXPECT_EQ(ErrorOf([&] { locked.Unlock(); }), err::kInvalidCall);
}

TEST_F(SafeArrayTest, CopiesShareStorageUntilOneSideWritesAndAreNeitherFixedNorLocked) {
  SafeArray a = Grid();
  SafeArray b = a;
  SafeArray c = a;
  b.Put({1, 1}, 99);
  a.Put({2, 2}, 77);
  c.Redim({{1, 2}, {1, 4}}, true);
  EXPECT_EQ(Values(a), "11 21 12 77 13 23 ");
  EXPECT_EQ(Values(b), "99 21 12 22 13 23 ");
  EXPECT_EQ(Values(c), "11 21 12 22 13 23 0 0 ");

  SafeArray fixed = SafeArray::Fixed(VarType::kDouble, {{1, 2}});
  fixed.Lock();
  SafeArray copy = fixed;
  EXPECT_FALSE(copy.fixed() || copy.locked());
  SafeArray moved = std::move(fixed);
  EXPECT_TRUE(moved.fixed() && moved.locked());
  EXPECT_FALSE(Variant(moved).ToArray().fixed());
}

// A host reply nested far deeper than any stack could recurse is freed all the same, and an
// inner array still held elsewhere survives its nest.
TEST_F(SafeArrayTest, ADeepNestOfArraysIsFreedWithoutRecursion) {
  SafeArray inner(VarType::kDouble, {{1, 1}});
  inner.Put({1}, 2.5);
  SafeArray nest(VarType::kVariant, {{0, 1}});
  nest.Put({0}, inner);
  for (int depth = 0; depth < 300000; ++depth) {
    SafeArray outer(VarType::kVariant, {{0, 1}});
    outer.Put({0}, nest);
    nest = std::move(outer);
  }
  nest = SafeArray();
  EXPECT_EQ(inner.Get({1}).ToDouble(), 2.5);
}

// What a write through a by-reference array does: the source converted to the target's type,
// all or nothing; a fixed or locked target takes only a source of its own bounds.
TEST_F(SafeArrayTest, AssignFromConvertsAndAFixedOrLockedTargetKeepsItsBounds) {
  SafeArray source(VarType::kVariant, {{0, 2}});
  source.Put({0}, "1.5");
  source.Put({1}, int16_t{2});
  SafeArray fixed = SafeArray::Fixed(VarType::kDouble, {{0, 2}});
  SafeArray dynamic(VarType::kDouble, {});
  for (SafeArray* target : {&fixed, &dynamic}) {
    Variant::Ref(*target).Assign(source);
    EXPECT_EQ(target->element_type(), VarType::kDouble);
    EXPECT_EQ(target->GetDouble(0), 1.5);
    EXPECT_EQ(target->GetDouble(1), 2.0);
  }
  EXPECT_TRUE(fixed.fixed());
  source.Put({1}, "abc");
  EXPECT_EQ(ErrorOf([&] { dynamic.AssignFrom(source); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(dynamic).Assign(3.0); }), err::kTypeMismatch);
  EXPECT_EQ(dynamic.GetDouble(1), 2.0);

  SafeArray longer(VarType::kDouble, {{0, 3}});
  SafeArray locked(VarType::kDouble, {{0, 2}});
  locked.Lock();
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(fixed).Assign(longer); }), err::kArrayLocked);
  EXPECT_EQ(ErrorOf([&] { locked.AssignFrom(longer); }), err::kArrayLocked);
  EXPECT_EQ(fixed.UBound(), 1);
  EXPECT_EQ(locked.UBound(), 1);
  dynamic.AssignFrom(longer);
  EXPECT_EQ(dynamic.UBound(), 2);
}

}  // namespace
}  // namespace qorvel
