#ifndef HOSTS_SIM_OBJECT_H_
#define HOSTS_SIM_OBJECT_H_

#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "qorvel/platform/dispatch.h"

namespace qorvel::hosts {

class SimObject;

// One call a simulated object received: the member name as sent, the kind, the arguments as
// they arrived (references followed), and which object got it: "" for the host itself, else the
// name the object goes by in its host's log.
struct Call {
  std::string member;
  CallKind kind;
  std::vector<Variant> args;
  std::string object;
};

// One member of a simulated object's class. `call` runs a method, or reads a property; `put`
// writes a property, and a member without one takes no put (438). Handlers run under the
// object's lock, once the log and the faults have let the call through.
struct SimMember {
  using Handler = Variant (*)(SimObject& object, std::span<Variant> args);
  std::string_view name;
  MemberShape shape;  // kMethod or kProperty
  Handler call;
  Handler put = nullptr;
};

// The members of one class, found by name in any case: the one list both the call and the
// member's shape come from.
class SimMembers {
 public:
  SimMembers(std::initializer_list<SimMember> own);
  // A class's own members on top of those of `base`; one of the same name replaces the base's.
  SimMembers(const SimMembers& base, std::initializer_list<SimMember> own);
  const SimMember* Find(std::string_view member) const;  // nullptr for none

 private:
  std::map<std::string, SimMember, std::less<>> by_name_;  // upper-cased
};

template <class Method>
struct HandlerOf;
template <class Object, class Result>
struct HandlerOf<Result (Object::*)(std::span<Variant>)> {
  using Class = Object;
};

// A handler from a member function of the object's class, `Variant F(std::span<Variant>)` or
// `void F(std::span<Variant>)`: {"Exit", MemberShape::kMethod, Handle<&SimHost::Exit>}.
template <auto method>
Variant Handle(SimObject& object, std::span<Variant> args) {
  auto& self = static_cast<typename HandlerOf<decltype(method)>::Class&>(object);
  if constexpr (std::is_void_v<decltype((self.*method)(args))>) {
    (self.*method)(args);
    return {};
  } else {
    return (self.*method)(args);
  }
}

// What every simulated automation object has: a class name, a log of every call it receives,
// members that can be made to fail, and going away, after which every call raises 462. Its
// members come from one table (members()).
//
// An object is a host (SimHost), or an object of a host such as a document. An object of a host
// shares the host's lock and log: its calls appear in the host's log in the order the host got
// them, named by the object, so a test reads one sequence whatever object each call went to.
// It goes away with its host: once the host has gone, or no longer exists, every call to the
// object raises 462 too. It can also go away alone (a document closed), leaving its host. A
// host's vanishing (VanishAt) counts the calls to its objects as well, so a host can vanish
// between two calls to its document. The host holds its objects; an object holds its host
// weakly, so neither keeps the other alive.
//
// A class of objects of a host derives from SimObject, passes its host (and the name the log
// gives it) to the constructor, and returns its table from members(). Its handlers run under
// its host's lock, and the setters tests call take `mu_`, which is that lock.
class SimObject : public Dispatch, public std::enable_shared_from_this<SimObject> {
 public:
  // The log comes first, so a test sees every call, also the ones a fault turns away.
  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) final;
  MemberShape Shape(std::string_view member) const final;

  // The automation class name, as tostring shows it.
  const std::string& class_name() const { return class_name_; }

  // The log its host keeps, oldest first: the host's own calls and those to its objects, which
  // name the object.
  std::vector<Call> log() const;
  void ClearLog();

  // Every later call of `member` to this object raises this error.
  void FailMember(const std::string& member, int32_t number, const std::string& description);
  // Drops the failing members, a vanishing still to come and the faults of the object's class.
  void ClearFaults();
  // The object goes away, with every object of it, and every later call raises 462.
  void GoAway();
  // The object goes away at the n-th call from now (n >= 1) to it or to any object of it:
  // calls 1 to n - 1 are answered, and call n, logged like every call, finds it gone, as do all
  // after it. A host that vanishes halfway through a member. ClearFaults cancels it.
  void VanishAt(int64_t n);
  bool gone() const;

 protected:
  // A host: its own lock and log.
  explicit SimObject(std::string class_name);
  // An object of `parent`, which shares its lock and log, and names its calls `log_name`.
  SimObject(std::string class_name, const std::shared_ptr<SimObject>& parent, std::string log_name);

  // The members of the object's class, one table for the class.
  virtual const SimMembers& members() const = 0;
  // Faults the class keeps beyond these, dropped by ClearFaults; an override calls its base's.
  // Runs under `mu_`.
  virtual void ClearOwnFaults() {}
  // The object has just gone away. Runs under `mu_`.
  virtual void OnGoAway() {}
  // Goes away now, as GoAway does; under `mu_`.
  void GoAwayNow();

 private:
  struct Failure {
    int32_t number;
    std::string description;
  };
  // The lock and the log, shared by a host and its objects; it lives as long as any of them.
  struct Family {
    std::recursive_mutex mu;
    std::vector<Call> log;
  };

  void CountCall();         // counts a call towards this object's and its parents' vanishing
  bool GoneLocked() const;  // gone itself, or its host has gone or no longer exists

  const std::string class_name_;
  const std::shared_ptr<Family> family_;
  const bool has_parent_;
  const std::weak_ptr<SimObject> parent_;
  const std::string log_name_;  // "" for a host

 protected:
  // The family's lock: an object's state and its host's are read and written under it.
  std::recursive_mutex& mu_;

 private:
  std::map<std::string, Failure> failing_members_;  // upper-cased member
  bool gone_ = false;
  int64_t calls_to_vanish_ = 0;  // counts down to the call the object vanishes at; 0 for none
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_OBJECT_H_
