#ifndef QORVEL_PLATFORM_SAFE_ARRAY_H_
#define QORVEL_PLATFORM_SAFE_ARRAY_H_

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

#include "qorvel/platform/variant.h"

namespace qorvel {

// One dimension: its lower bound and element count (upper bound = lower + count - 1). A count
// below 0, or one that puts an element past the largest Long, is error 9.
struct Bound {
  int32_t lower = 1;
  int32_t count = 0;
  bool operator==(const Bound&) const = default;
};

// An automation array that carries its own bounds: any number of dimensions, lower bounds of the
// creator's choice, the first subscript fastest in memory. Copies share storage until one side
// writes. Element types: Double, VariantBool, text, Long, Integer and Variant.
// A copy is a plain array: it is neither fixed nor locked, whatever the original was; a move
// keeps both states. A shape whose storage can't be had (more than 2 GiB of elements, or memory
// the allocator refuses) is error 7, and so is any allocation that fails inside a member.
class SafeArray {
 public:
  SafeArray();  // no dimensions, no data (an unallocated dynamic array)
  SafeArray(VarType element, std::vector<Bound> bounds);
  static SafeArray Fixed(VarType element, std::vector<Bound> bounds);  // refuses a resize
  SafeArray(const SafeArray& other);
  SafeArray(SafeArray&& other) noexcept;
  SafeArray& operator=(const SafeArray& other);
  SafeArray& operator=(SafeArray&& other) noexcept;
  ~SafeArray();

  VarType element_type() const;
  int32_t dims() const;
  int32_t LBound(int32_t dim = 1) const;  // error 9 for a dimension that isn't there
  int32_t UBound(int32_t dim = 1) const;  // and 6 for an empty one that ends below a Long
  int64_t size() const;                   // elements in all
  std::vector<Bound> bounds() const;

  // Element access by subscripts, one per dimension in declaration order; error 9 when a
  // subscript is outside its bounds or their number is wrong.
  Variant Get(std::span<const int32_t> subscripts) const;
  void Put(std::span<const int32_t> subscripts, const Variant& value);  // converts to the type
  Variant Get(std::initializer_list<int32_t> subscripts) const {
    return Get(std::span<const int32_t>(subscripts.begin(), subscripts.size()));
  }
  void Put(std::initializer_list<int32_t> subscripts, const Variant& value) {
    Put(std::span<const int32_t>(subscripts.begin(), subscripts.size()), value);
  }
  // An element by its position in memory order (first subscript fastest), for converting whole
  // arrays of any shape; error 9 outside 0 .. size() - 1.
  Variant GetFlat(int64_t offset) const;
  void PutFlat(int64_t offset, const Variant& value);
  // Typed fast paths for one-dimensional Double arrays; error 13 on another element type.
  double GetDouble(int32_t subscript) const;
  void PutDouble(int32_t subscript, double value);
  // All the elements of an array of Double in memory order, first subscript fastest, for work
  // on whole arrays (a surface, a list of points); 13 on another element type. The writable
  // form gives the array storage of its own first.
  std::span<const double> Doubles() const;
  std::span<double> MutableDoubles();

  // Resize: without preserve the contents are reset; with preserve only the last dimension may
  // change its count (error 9 otherwise) and the kept elements stay. Error 10 on a fixed or
  // locked array.
  void Redim(std::vector<Bound> bounds, bool preserve);
  void Lock();
  void Unlock();
  bool fixed() const;
  bool locked() const;

  // A copy with every element converted to `element` (6 or 13 when one doesn't convert).
  SafeArray ConvertedTo(VarType element) const;
  // Takes the contents of `source`, converted to this array's element type; what a write through
  // a by-reference array does. A fixed or locked array takes only a source of its own bounds
  // (error 10 otherwise) and stays fixed or locked.
  void AssignFrom(const SafeArray& source);

 private:
  struct Storage;
  const Storage& storage() const;
  int64_t Offset(std::span<const int32_t> subscripts) const;
  void Unshare();
  void PutAt(int64_t offset, const Variant& value);
  template <class T>
  void Store(int64_t offset, T value);

  std::shared_ptr<Storage> data_;  // null for an unallocated array of Variant
  bool fixed_ = false;
  int32_t locks_ = 0;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_SAFE_ARRAY_H_
