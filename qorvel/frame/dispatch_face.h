#ifndef QORVEL_FRAME_DISPATCH_FACE_H_
#define QORVEL_FRAME_DISPATCH_FACE_H_

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "qorvel/frame/binding.h"
#include "qorvel/frame/type_library.h"
#include "qorvel/platform/dispatch.h"

namespace qorvel {

// An instance of a published class on the dispatch face, reachable by member name (without
// regard to case) or by DISPID. Arguments arrive in the caller's order; each is converted once
// to its parameter's type (13 when it can't be). An omitted optional argument, left off the end
// or passed as Empty, takes its default, 0 when it has none. By-reference arguments that point
// at the caller's variables get the final values after the call, omitted ones included.
// Unknown members raise 438, a wrong number of arguments 450.
class ClassObject : public Dispatch {
 public:
  ~ClassObject() override;
  ClassObject(const ClassObject&) = delete;
  ClassObject& operator=(const ClassObject&) = delete;

  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) override;
  Variant InvokeById(int32_t dispid, CallKind kind, std::span<Variant> args) override;
  MemberShape Shape(std::string_view member) const override;

  const ClassInfo& class_info() const { return bound_.class_info(); }
  const InterfaceInfo& interface_info() const { return bound_.interface_info(); }
  bool IsBound(const MemberInfo& member) const;

  // The class's outgoing interface, nullptr for a class without one.
  const InterfaceInfo* event_interface() const { return events_; }
  // Connects a client's sink: an automation object that hears each event as a method call by
  // the event's DISPID. Returns the cookie that disconnects it. 438 for a class without an
  // outgoing interface, 91 for an empty sink.
  int32_t Advise(AutomationObject sink);
  // 5 for a cookie that connects nothing.
  void Unadvise(int32_t cookie);
  // Raises an event of the outgoing interface by its DISPID, to every sink in the order they
  // connected. A sink that fails is the client's affair and doesn't stop the others or the
  // control.
  void RaiseEvent(int32_t dispid, std::span<Variant> args);

 protected:
  explicit ClassObject(const BoundInterface& bound);

 private:
  // Runs the bound row in `slot` on prepared arguments.
  virtual Variant Run(size_t slot, std::span<Variant> args) = 0;

  const MemberInfo* Find(int32_t dispid, CallKind kind) const;
  std::vector<Variant> Prepare(const MemberInfo& member, std::span<Variant> args) const;
  static void WriteBack(const MemberInfo& member, std::span<Variant> args,
                        std::span<const Variant> prepared);

  const BoundInterface& bound_;
  const InterfaceInfo* events_;
  std::mutex sinks_mu_;
  std::vector<std::pair<int32_t, AutomationObject>> sinks_;
  int32_t next_cookie_ = 1;
};

// A published class that is no control (PointClass): the object and its face, nothing more.
template <class C>
class Instance final : public ClassObject {
 public:
  Instance() : ClassObject(BindingsOf<C>()) {}
  C& object() { return object_; }

 private:
  Variant Run(size_t slot, std::span<Variant> args) override {
    return BindingsOf<C>().Run(slot, object_, args);
  }
  C object_;
};

// A new instance of a plain class: no container, no shell, no events.
template <class C>
AutomationObject NewInstance() {
  return std::make_shared<Instance<C>>();
}

// The library's live objects, for DllCanUnloadNow.
int LiveObjects();

}  // namespace qorvel

#endif  // QORVEL_FRAME_DISPATCH_FACE_H_
