#include "qorvel/platform/safe_array.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/error.h"

namespace qorvel {
namespace {

// Storage for numbers that comes zeroed from calloc, its new elements left as they came: a
// large array then costs no pass over its memory before its first use, and the system's fresh
// pages stay untouched until written. Memory the vector reuses within its capacity holds old
// values, so Resize zeroes what it adds there.
template <class T>
struct ZeroedAllocator {
  static_assert(std::is_arithmetic_v<T>, "all-zero bytes must be the value 0");
  using value_type = T;

  ZeroedAllocator() = default;
  template <class U>
  ZeroedAllocator(const ZeroedAllocator<U>&) {}

  T* allocate(size_t n) {
    void* p = std::calloc(n, sizeof(T));
    if (p == nullptr) throw std::bad_alloc();
    return static_cast<T*>(p);
  }
  void deallocate(T* p, size_t) noexcept { std::free(p); }
  template <class U>
  void construct(U*) noexcept {}  // value-initialised: calloc's zeros
  template <class U, class... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
  template <class U>
  bool operator==(const ZeroedAllocator<U>&) const {
    return true;
  }
};

template <class T>
using Items =
    std::conditional_t<std::is_arithmetic_v<T>, std::vector<T, ZeroedAllocator<T>>, std::vector<T>>;

}  // namespace

struct SafeArray::Storage {
  Storage() = default;
  Storage(VarType element, std::vector<Bound> bounds);
  Storage(const Storage&) = default;
  ~Storage();

  // Moves the storage of each array held by a Variant element, and held nowhere else, into
  // `pending`.
  void TakeNested(std::vector<std::shared_ptr<Storage>>& pending);

  VarType element = VarType::kVariant;
  std::vector<Bound> bounds;
  // One typed vector, first subscript fastest; Integer and VariantBool elements share the
  // 16-bit form.
  std::variant<Items<Variant>, Items<double>, Items<int16_t>, Items<int32_t>, Items<std::string>>
      items;
};

namespace {

// The most storage one array may take: what a 32-bit process could ever give one block. A
// larger shape is refused with 7 before anything is allocated, so the refusal doesn't hang on
// the allocator (or on a sanitizer's, which may abort on a huge request instead of failing).
inline constexpr int64_t kMaxBytes = std::numeric_limits<int32_t>::max();

int64_t ElementBytes(const auto& items) {
  return std::visit([](const auto& v) { return int64_t{sizeof(v[0])}; }, items);
}

// The number of elements the bounds describe. A negative count, or an element no 32-bit
// subscript could reach, is 9; an empty dimension empties the array whatever the others hold;
// storage beyond kMaxBytes can't be had (7). Products stay below kMaxBytes, so none overflows.
int64_t ElementCount(const std::vector<Bound>& bounds, int64_t element_bytes) {
  for (const Bound& b : bounds) {
    if (b.count < 0 || int64_t{b.lower} + b.count - 1 > std::numeric_limits<int32_t>::max()) {
      Raise(err::kSubscript);
    }
  }
  if (bounds.empty() || std::ranges::any_of(bounds, [](const Bound& b) { return b.count == 0; })) {
    return 0;
  }
  const int64_t most = kMaxBytes / element_bytes;
  int64_t total = 1;
  for (const Bound& b : bounds) {
    if (b.count > most / total) Raise(err::kOutOfMemory);
    total *= b.count;
  }
  return total;
}

template <class Variants>
void Resize(Variants& items, int64_t count) {
  std::visit(
      [count](auto& v) {
        const size_t old = v.size(), wanted = static_cast<size_t>(count);
        const bool in_place = wanted <= v.capacity();
        v.resize(wanted);
        using T = typename std::decay_t<decltype(v)>::value_type;
        if constexpr (std::is_arithmetic_v<T>) {
          if (in_place && wanted > old) std::fill(v.begin() + old, v.end(), T{});
        }
      },
      items);
}

Variant ElementAt(const auto& storage, int64_t offset) {
  const auto& items = storage.items;
  switch (storage.element) {
    case VarType::kDouble:
      return std::get<Items<double>>(items)[offset];
    case VarType::kBool:
      return MakeVariantBool(std::get<Items<int16_t>>(items)[offset]);
    case VarType::kInteger:
      return std::get<Items<int16_t>>(items)[offset];
    case VarType::kLong:
      return std::get<Items<int32_t>>(items)[offset];
    case VarType::kText:
      return std::get<std::vector<std::string>>(items)[offset];
    default:
      return std::get<std::vector<Variant>>(items)[offset];
  }
}

}  // namespace

SafeArray::Storage::Storage(VarType element, std::vector<Bound> bounds) : element(element) {
  switch (element) {
    case VarType::kVariant:
      break;
    case VarType::kDouble:
      items = Items<double>();
      break;
    case VarType::kBool:
    case VarType::kInteger:
      items = Items<int16_t>();
      break;
    case VarType::kLong:
      items = Items<int32_t>();
      break;
    case VarType::kText:
      items = std::vector<std::string>();
      break;
    default:
      Raise(err::kInvalidCall);
  }
  Resize(items, ElementCount(bounds, ElementBytes(items)));
  this->bounds = std::move(bounds);
}

// Arrays nested in Variant elements are taken apart a level at a time, in a loop: a host's
// reply nested a million deep is freed without a recursion as deep as the nest.
SafeArray::Storage::~Storage() {
  std::vector<std::shared_ptr<Storage>> pending;
  TakeNested(pending);
  while (!pending.empty()) {
    std::shared_ptr<Storage> nested = std::move(pending.back());
    pending.pop_back();
    if (nested.use_count() == 1) nested->TakeNested(pending);
  }  // each goes here, holding no arrays of its own any more
}

void SafeArray::Storage::TakeNested(std::vector<std::shared_ptr<Storage>>& pending) {
  auto* variants = std::get_if<std::vector<Variant>>(&items);
  if (variants == nullptr) return;
  for (Variant& v : *variants) {
    auto* array = std::get_if<std::shared_ptr<SafeArray>>(&v.value_);
    if (array != nullptr && array->use_count() == 1 && (*array)->data_) {
      pending.push_back(std::move((*array)->data_));
    }
  }
}

SafeArray::SafeArray() = default;

SafeArray::SafeArray(VarType element, std::vector<Bound> bounds)
    : data_(OutOfMemoryAsError(
          [&] { return std::make_shared<Storage>(element, std::move(bounds)); })) {}

SafeArray SafeArray::Fixed(VarType element, std::vector<Bound> bounds) {
  SafeArray array(element, std::move(bounds));
  array.fixed_ = true;
  return array;
}

SafeArray::SafeArray(const SafeArray& other) : data_(other.data_) {}

SafeArray::SafeArray(SafeArray&& other) noexcept
    : data_(std::move(other.data_)), fixed_(other.fixed_), locks_(other.locks_) {
  other.fixed_ = false;
  other.locks_ = 0;
}

SafeArray& SafeArray::operator=(const SafeArray& other) {
  data_ = other.data_;
  fixed_ = false;
  locks_ = 0;
  return *this;
}

SafeArray& SafeArray::operator=(SafeArray&& other) noexcept {
  if (this != &other) {
    data_ = std::move(other.data_);
    fixed_ = std::exchange(other.fixed_, false);
    locks_ = std::exchange(other.locks_, 0);
  }
  return *this;
}

SafeArray::~SafeArray() = default;

const SafeArray::Storage& SafeArray::storage() const {
  static const Storage kUnallocated;
  return data_ ? *data_ : kUnallocated;
}

VarType SafeArray::element_type() const { return storage().element; }
int32_t SafeArray::dims() const { return static_cast<int32_t>(storage().bounds.size()); }
std::vector<Bound> SafeArray::bounds() const { return storage().bounds; }

int32_t SafeArray::LBound(int32_t dim) const {
  if (dim < 1 || dim > dims()) Raise(err::kSubscript);
  return storage().bounds[dim - 1].lower;
}

// An empty dimension at the lowest lower bound ends one below anything a Long holds.
int32_t SafeArray::UBound(int32_t dim) const {
  if (dim < 1 || dim > dims()) Raise(err::kSubscript);
  const Bound& b = storage().bounds[dim - 1];
  const int64_t upper = int64_t{b.lower} + b.count - 1;
  if (upper < std::numeric_limits<int32_t>::min()) Raise(err::kOverflow);
  return static_cast<int32_t>(upper);
}

int64_t SafeArray::size() const {
  return std::visit([](const auto& v) { return static_cast<int64_t>(v.size()); }, storage().items);
}

// Every subscript is checked before any arithmetic: once all are inside their bounds no
// dimension is empty, and the offset stays below size().
int64_t SafeArray::Offset(std::span<const int32_t> subscripts) const {
  const std::vector<Bound>& bounds = storage().bounds;
  if (subscripts.empty() || subscripts.size() != bounds.size()) Raise(err::kSubscript);
  for (size_t d = 0; d < bounds.size(); ++d) {
    const int64_t index = int64_t{subscripts[d]} - bounds[d].lower;
    if (index < 0 || index >= bounds[d].count) Raise(err::kSubscript);
  }
  int64_t offset = 0;
  for (size_t d = bounds.size(); d-- > 0;) {
    offset = offset * bounds[d].count + (int64_t{subscripts[d]} - bounds[d].lower);
  }
  return offset;
}

Variant SafeArray::Get(std::span<const int32_t> subscripts) const {
  return OutOfMemoryAsError([&] { return ElementAt(storage(), Offset(subscripts)); });
}

void SafeArray::Put(std::span<const int32_t> subscripts, const Variant& value) {
  OutOfMemoryAsError([&] { PutAt(Offset(subscripts), value); });
}

Variant SafeArray::GetFlat(int64_t offset) const {
  if (offset < 0 || offset >= size()) Raise(err::kSubscript);
  return OutOfMemoryAsError([&] { return ElementAt(storage(), offset); });
}

void SafeArray::PutFlat(int64_t offset, const Variant& value) {
  if (offset < 0 || offset >= size()) Raise(err::kSubscript);
  OutOfMemoryAsError([&] { PutAt(offset, value); });
}

// Converts first: a value that doesn't fit leaves the array (and its sharers) untouched.
void SafeArray::PutAt(int64_t offset, const Variant& value) {
  switch (element_type()) {
    case VarType::kDouble:
      return Store(offset, value.ToDouble());
    case VarType::kBool:
      return Store(offset, RawBool(value.ToBool()));
    case VarType::kInteger:
      return Store(offset, value.ToInteger());
    case VarType::kLong:
      return Store(offset, value.ToLong());
    case VarType::kText:
      return Store(offset, value.ToText());
    default:
      return Store(offset, value.Deref());
  }
}

template <class T>
void SafeArray::Store(int64_t offset, T value) {
  Unshare();
  std::get<Items<T>>(data_->items)[offset] = std::move(value);
}

double SafeArray::GetDouble(int32_t subscript) const {
  if (element_type() != VarType::kDouble) Raise(err::kTypeMismatch);
  return std::get<Items<double>>(storage().items)[Offset({&subscript, 1})];
}

void SafeArray::PutDouble(int32_t subscript, double value) {
  if (element_type() != VarType::kDouble) Raise(err::kTypeMismatch);
  Store(Offset({&subscript, 1}), value);
}

std::span<const double> SafeArray::Doubles() const {
  if (element_type() != VarType::kDouble) Raise(err::kTypeMismatch);
  return std::get<Items<double>>(storage().items);
}

std::span<double> SafeArray::MutableDoubles() {
  if (element_type() != VarType::kDouble) Raise(err::kTypeMismatch);
  Unshare();
  return std::get<Items<double>>(data_->items);
}

// Copy on write: the first write through a shared array gives it storage of its own.
void SafeArray::Unshare() {
  if (data_ && data_.use_count() == 1) return;
  data_ = OutOfMemoryAsError([&] { return std::make_shared<Storage>(storage()); });
}

void SafeArray::Redim(std::vector<Bound> bounds, bool preserve) {
  if (fixed_ || locks_ > 0) Raise(err::kArrayLocked);
  const int64_t count = ElementCount(bounds, ElementBytes(storage().items));
  const std::vector<Bound>& old = storage().bounds;
  if (!preserve || old.empty()) {
    SafeArray fresh(element_type(), std::move(bounds));
    data_ = std::move(fresh.data_);
    return;
  }
  // Only the last dimension is slowest in memory, so only its count can change with the
  // kept elements staying where they are.
  if (bounds.size() != old.size() || bounds.back().lower != old.back().lower) {
    Raise(err::kSubscript);
  }
  for (size_t d = 0; d + 1 < old.size(); ++d) {
    if (bounds[d] != old[d]) Raise(err::kSubscript);
  }
  Unshare();
  OutOfMemoryAsError([&] { Resize(data_->items, count); });
  data_->bounds = std::move(bounds);
}

void SafeArray::Lock() { ++locks_; }

void SafeArray::Unlock() {
  if (locks_ == 0) Raise(err::kInvalidCall);
  --locks_;
}

bool SafeArray::fixed() const { return fixed_; }
bool SafeArray::locked() const { return locks_ > 0; }

SafeArray SafeArray::ConvertedTo(VarType element) const {
  if (element == element_type()) return *this;
  const Storage& from = storage();
  SafeArray result(element, from.bounds);
  OutOfMemoryAsError([&] {
    for (int64_t i = 0; i < size(); ++i) result.PutAt(i, ElementAt(from, i));
  });
  return result;
}

void SafeArray::AssignFrom(const SafeArray& source) {
  SafeArray converted = source.ConvertedTo(element_type());
  if ((fixed_ || locks_ > 0) && converted.storage().bounds != storage().bounds) {
    Raise(err::kArrayLocked);
  }
  data_ = std::move(converted.data_);
}

}  // namespace qorvel
