#include "qorvel/platform/safe_array.h"

#include <gtest/gtest.h>

#include <vector>

#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {
namespace {

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

TEST_F(SafeArrayTest, BoundsAreTheCreatorsChoice) {
  struct Case {
    std::vector<Bound> bounds;
    std::vector<int32_t> lower, upper;
    int64_t size;
  };
  const Case cases[] = {
      {{{1, 3}}, {1}, {3}, 3},
      {{{0, 5}}, {0}, {4}, 5},
      {{{-2, 4}}, {-2}, {1}, 4},
      {{{1, 0}}, {1}, {0}, 0},
      {{{1, 2}, {0, 3}}, {1, 0}, {2, 2}, 6},
      {{{5, 2}, {-1, 2}, {1, 4}}, {5, -1, 1}, {6, 0, 4}, 16},
  };
  for (const Case& c : cases) {
    SafeArray a(VarType::kDouble, c.bounds);
    ASSERT_EQ(a.dims(), int32_t(c.bounds.size()));
    EXPECT_EQ(a.size(), c.size);
    EXPECT_EQ(a.bounds(), c.bounds);
    for (int32_t d = 1; d <= a.dims(); ++d) {
      EXPECT_EQ(a.LBound(d), c.lower[d - 1]);
      EXPECT_EQ(a.UBound(d), c.upper[d - 1]);
    }
    EXPECT_EQ(ErrorOf([&] { a.LBound(0); }), err::kSubscript);
    EXPECT_EQ(ErrorOf([&] { a.UBound(a.dims() + 1); }), err::kSubscript);
  }
}

TEST_F(SafeArrayTest, AnUnallocatedArrayHasNoBounds) {
  SafeArray a;
  EXPECT_EQ(a.dims(), 0);
  EXPECT_EQ(a.size(), 0);
  EXPECT_EQ(a.element_type(), VarType::kVariant);
  EXPECT_EQ(ErrorOf([&] { a.LBound(); }), err::kSubscript);
  EXPECT_EQ(ErrorOf([&] { a.Get({1}); }), err::kSubscript);
  a.Redim({{1, 2}}, true);
  EXPECT_EQ(a.UBound(), 2);
}

TEST_F(SafeArrayTest, SubscriptsOutsideTheBoundsAreErrorNine) {
  SafeArray a(VarType::kDouble, {{0, 3}, {-1, 2}});
  const std::vector<std::vector<int32_t>> bad = {
      {-1, -1}, {3, -1}, {0, -2}, {0, 1}, {0}, {0, 0, 0}, {}, {2147483647, 0},
  };
  for (const auto& subscripts : bad) {
    EXPECT_EQ(ErrorOf([&] { a.Get(subscripts); }), err::kSubscript) << subscripts.size();
    EXPECT_EQ(ErrorOf([&] { a.Put(subscripts, 1.0); }), err::kSubscript);
  }
  EXPECT_EQ(a.Get({2, 0}).ToDouble(), 0.0);
}

TEST_F(SafeArrayTest, BadBoundsAreRefused) {
  EXPECT_EQ(ErrorOf([] { SafeArray(VarType::kDouble, {{1, -1}}); }), err::kSubscript);
  EXPECT_EQ(ErrorOf([] { SafeArray(VarType::kDouble, {{2147483647, 2}}); }), err::kSubscript);
  EXPECT_EQ(ErrorOf([] { SafeArray(VarType::kDouble, {{1, 70000}, {1, 70000}}); }), 7);
  EXPECT_EQ(ErrorOf([] { SafeArray(VarType::kObject, {{1, 1}}); }), err::kInvalidCall);
  SafeArray a(VarType::kDouble, {{1, 2}});
  EXPECT_EQ(ErrorOf([&] { a.Redim({{1, -5}}, false); }), err::kSubscript);
  EXPECT_EQ(a.UBound(), 2);
}

TEST_F(SafeArrayTest, ElementsAreStoredInTheArraysType) {
  struct Case {
    VarType element;
    Variant put;
    uint16_t vt;
    std::string text;
  };
  const Case cases[] = {
      {VarType::kDouble, Variant("2.5"), 0x0005, "2.5"},
      {VarType::kLong, Variant(2.5), 0x0003, "2"},
      {VarType::kInteger, Variant("3.5"), 0x0002, "4"},
      {VarType::kBool, Variant(2), 0x000B, "True"},
      {VarType::kText, Variant(int16_t{12}), 0x0008, "12"},
      {VarType::kVariant, Variant(int16_t{12}), 0x0002, "12"},
  };
  for (const Case& c : cases) {
    SafeArray a(c.element, {{1, 2}});
    a.Put({2}, c.put);
    EXPECT_EQ(a.Get({2}).vt(), c.vt) << int(c.element);
    EXPECT_EQ(a.Get({2}).ToText(), c.text) << int(c.element);
  }
  // New elements start as the type's zero.
  EXPECT_EQ(SafeArray(VarType::kDouble, {{1, 1}}).Get({1}).ToDouble(), 0);
  EXPECT_EQ(SafeArray(VarType::kBool, {{1, 1}}).Get({1}).ToBool(), VariantBool::kFalse);
  EXPECT_TRUE(SafeArray(VarType::kVariant, {{1, 1}}).Get({1}).is_empty());
  EXPECT_EQ(SafeArray(VarType::kText, {{1, 1}}).Get({1}).ToText(), "");
}

TEST_F(SafeArrayTest, BoolElementsKeepTheirRawValue) {
  SafeArray a(VarType::kBool, {{1, 1}});
  a.Put({1}, MakeVariantBool(3));
  EXPECT_EQ(RawBool(a.Get({1}).ToBool()), 3);
}

TEST_F(SafeArrayTest, APutThatDoesNotConvertLeavesTheElement) {
  SafeArray a(VarType::kInteger, {{1, 1}});
  a.Put({1}, 5);
  EXPECT_EQ(ErrorOf([&] { a.Put({1}, 40000); }), err::kOverflow);
  EXPECT_EQ(ErrorOf([&] { a.Put({1}, "x"); }), err::kTypeMismatch);
  EXPECT_EQ(a.Get({1}).ToInteger(), 5);
}

TEST_F(SafeArrayTest, VariantElementsTakeValuesNotReferences) {
  double d = 1;
  SafeArray a(VarType::kVariant, {{1, 1}});
  a.Put({1}, Variant::Ref(d));
  d = 2;
  EXPECT_FALSE(a.Get({1}).is_ref());
  EXPECT_EQ(a.Get({1}).ToDouble(), 1);
}

TEST_F(SafeArrayTest, TheFirstSubscriptRunsFastestSoPreserveCanGrowTheLastDimension) {
  SafeArray grid = Grid();
  grid.Redim({{1, 2}, {1, 4}}, true);
  for (int32_t i = 1; i <= 2; ++i) {
    for (int32_t j = 1; j <= 3; ++j) EXPECT_EQ(grid.Get({i, j}).ToLong(), 10 * i + j);
    EXPECT_EQ(grid.Get({i, 4}).ToLong(), 0);
  }
  grid.Redim({{1, 2}, {1, 2}}, true);
  EXPECT_EQ(grid.Get({2, 2}).ToLong(), 22);
  EXPECT_EQ(grid.Get({1, 2}).ToLong(), 12);
  EXPECT_EQ(ErrorOf([&] { grid.Get({1, 3}); }), err::kSubscript);
}

TEST_F(SafeArrayTest, PreserveRefusesAnyOtherChange) {
  const std::vector<std::vector<Bound>> refused = {
      {{1, 3}, {1, 3}},  // first dimension's count
      {{0, 2}, {1, 3}},  // first dimension's lower bound
      {{1, 2}, {0, 3}},  // last dimension's lower bound
      {{1, 6}},          // number of dimensions
      {},
  };
  for (const auto& bounds : refused) {
    SafeArray grid = Grid();
    EXPECT_EQ(ErrorOf([&] { grid.Redim(bounds, true); }), err::kSubscript) << bounds.size();
    EXPECT_EQ(grid.Get({2, 3}).ToLong(), 23);
  }
}

TEST_F(SafeArrayTest, RedimWithoutPreserveStartsOver) {
  SafeArray grid = Grid();
  grid.Redim({{0, 4}}, false);
  EXPECT_EQ(grid.dims(), 1);
  EXPECT_EQ(grid.element_type(), VarType::kLong);
  EXPECT_EQ(grid.Get({3}).ToLong(), 0);
  grid.Redim({}, false);
  EXPECT_EQ(grid.dims(), 0);
}

TEST_F(SafeArrayTest, FixedAndLockedArraysRefuseAResizeButTakeWrites) {
  SafeArray fixed = SafeArray::Fixed(VarType::kDouble, {{1, 3}});
  EXPECT_TRUE(fixed.fixed());
  EXPECT_EQ(ErrorOf([&] { fixed.Redim({{1, 4}}, false); }), err::kArrayLocked);
  EXPECT_EQ(ErrorOf([&] { fixed.Redim({{1, 4}}, true); }), err::kArrayLocked);
  fixed.PutDouble(3, 1.5);
  EXPECT_EQ(fixed.GetDouble(3), 1.5);
  EXPECT_EQ(fixed.UBound(), 3);

  SafeArray locked(VarType::kDouble, {{1, 3}});
  locked.Lock();
  locked.Lock();
  locked.Unlock();
  EXPECT_TRUE(locked.locked());
  EXPECT_EQ(ErrorOf([&] { locked.Redim({{1, 4}}, true); }), err::kArrayLocked);
  locked.PutDouble(1, 2.0);
  locked.Unlock();
  EXPECT_FALSE(locked.locked());
  locked.Redim({{1, 4}}, true);
  EXPECT_EQ(locked.GetDouble(1), 2.0);
  EXPECT_EQ(ErrorOf([&] { locked.Unlock(); }), err::kInvalidCall);
}

TEST_F(SafeArrayTest, CopiesShareStorageUntilOneSideWrites) {
  SafeArray a = Grid();
  SafeArray b = a;
  b.Put({1, 1}, 99);
  EXPECT_EQ(a.Get({1, 1}).ToLong(), 11);
  a.Put({2, 2}, 77);
  EXPECT_EQ(b.Get({2, 2}).ToLong(), 22);

  SafeArray c = a;
  c.Redim({{1, 2}, {1, 5}}, true);
  EXPECT_EQ(a.UBound(2), 3);
  SafeArray d = a;
  d.Redim({{1, 1}}, false);
  EXPECT_EQ(a.Get({2, 3}).ToLong(), 23);
  EXPECT_EQ(c.Get({2, 3}).ToLong(), 23);
}

TEST_F(SafeArrayTest, ACopyIsNeitherFixedNorLockedButAMoveKeepsBoth) {
  SafeArray fixed = SafeArray::Fixed(VarType::kDouble, {{1, 2}});
  fixed.Lock();
  SafeArray copy = fixed;
  EXPECT_FALSE(copy.fixed());
  EXPECT_FALSE(copy.locked());
  copy.Redim({{1, 3}}, true);
  SafeArray moved = std::move(fixed);
  EXPECT_TRUE(moved.fixed());
  EXPECT_TRUE(moved.locked());
  SafeArray from_variant = Variant(moved).ToArray();
  EXPECT_FALSE(from_variant.fixed());
}

TEST_F(SafeArrayTest, DoubleFastPathsWantOneDimensionOfDoubles) {
  SafeArray doubles(VarType::kDouble, {{0, 2}});
  doubles.PutDouble(0, 1.25);
  EXPECT_EQ(doubles.Get({0}).ToDouble(), 1.25);
  EXPECT_EQ(ErrorOf([&] { doubles.GetDouble(2); }), err::kSubscript);
  EXPECT_EQ(ErrorOf([&] { doubles.PutDouble(-1, 0); }), err::kSubscript);
  SafeArray longs(VarType::kLong, {{0, 2}});
  EXPECT_EQ(ErrorOf([&] { longs.GetDouble(0); }), err::kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { longs.PutDouble(0, 1); }), err::kTypeMismatch);
  SafeArray grid(VarType::kDouble, {{1, 2}, {1, 2}});
  EXPECT_EQ(ErrorOf([&] { grid.GetDouble(1); }), err::kSubscript);
}

TEST_F(SafeArrayTest, AFixedOrLockedTargetTakesOnlyAnArrayOfItsOwnBounds) {
  SafeArray fixed = SafeArray::Fixed(VarType::kDouble, {{1, 2}});
  SafeArray same(VarType::kLong, {{1, 2}});
  same.Put({2}, 7);
  fixed.AssignFrom(same);
  EXPECT_TRUE(fixed.fixed());
  EXPECT_EQ(fixed.element_type(), VarType::kDouble);
  EXPECT_EQ(fixed.GetDouble(2), 7.0);

  SafeArray longer(VarType::kDouble, {{1, 3}});
  EXPECT_EQ(ErrorOf([&] { fixed.AssignFrom(longer); }), err::kArrayLocked);
  EXPECT_EQ(ErrorOf([&] { Variant::Ref(fixed).Assign(longer); }), err::kArrayLocked);
  EXPECT_EQ(fixed.UBound(), 2);

  SafeArray locked(VarType::kDouble, {{1, 2}});
  locked.Lock();
  EXPECT_EQ(ErrorOf([&] { locked.AssignFrom(longer); }), err::kArrayLocked);
  SafeArray dynamic(VarType::kDouble, {{1, 2}});
  dynamic.AssignFrom(longer);
  EXPECT_EQ(dynamic.UBound(), 3);
}

}  // namespace
}  // namespace qorvel
