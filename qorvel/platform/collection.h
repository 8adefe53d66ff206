#ifndef QORVEL_PLATFORM_COLLECTION_H_
#define QORVEL_PLATFORM_COLLECTION_H_

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>

#include "qorvel/platform/dispatch.h"

namespace qorvel {

// The platform's Collection: an ordered list of values, numbered from 1, each with an optional
// text key that matches without regard to case. Late-bound members: Count, Item (also the
// default member ""), Add and Remove. An Empty argument stands for one left out.
class Collection : public Dispatch {
 public:
  int32_t Count() const;
  // By position (1 to Count, error 9 outside) or by key (error 5 for an unknown key).
  Variant Item(const Variant& index) const;
  // Adds a copy of `item` (references followed) at the end, or before or after the member that
  // `before` or `after` names; naming both is error 5. A key already in use is error 457.
  void Add(const Variant& item, const Variant& key = {}, const Variant& before = {},
           const Variant& after = {});
  void Remove(const Variant& index);

  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) override;
  MemberShape Shape(std::string_view member) const override;

 private:
  struct Member {
    Variant item;
    std::string key;  // folded to lower case; empty for none
  };

  size_t Position(const Variant& index) const;  // 0-based

  // A deque, so that a client draining the list from either end pays the same per removal.
  std::deque<Member> members_;
  std::unordered_set<std::string> keys_;
};

AutomationObject NewCollection();

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_COLLECTION_H_
