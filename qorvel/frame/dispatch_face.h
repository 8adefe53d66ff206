#ifndef QORVEL_FRAME_DISPATCH_FACE_H_
#define QORVEL_FRAME_DISPATCH_FACE_H_

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "qorvel/frame/control_shell.h"
#include "qorvel/frame/type_library.h"
#include "qorvel/platform/dispatch.h"

namespace qorvel {

// An instance of a published class, reachable by member name (without regard to case) or by
// DISPID, and sited as a control in a container. Arguments arrive in the caller's order; each
// is converted to its parameter's type (13 when it can't be). An omitted optional argument,
// left off the end or passed as Empty, takes its default, 0 when it has none. By-reference
// arguments that point at the caller's variables get the final values after the call, omitted
// ones included. Unknown members raise 438, a wrong number of arguments 450.
class ClassObject : public Dispatch, public ControlShell {
 public:
  // The converted arguments of one call, in declaration order; a handler changes by-reference
  // ones in place.
  using Args = std::vector<Variant>;
  using Handler = std::function<Variant(Args&)>;

  explicit ClassObject(std::string_view class_name);
  ~ClassObject() override;

  Variant Invoke(std::string_view member, CallKind kind, std::span<Variant> args) override;
  Variant InvokeId(int32_t dispid, CallKind kind, std::span<Variant> args);
  MemberShape Shape(std::string_view member) const override;

  const ClassInfo& class_info() const { return *class_; }
  const InterfaceInfo& interface_info() const { return *interface_; }
  // Whether a row of the default interface has code bound to it.
  bool IsBound(const MemberInfo& member) const { return handlers_.contains(&member); }

 protected:
  // Binds a row of the default interface to the code that runs it; a row that isn't in the
  // table is a fault of the binding and raises 5 naming it.
  void Bind(std::string_view name, MemberKind kind, Handler handler);

  // The session members that the host controls share, bound alike on each.
  template <class Control>
  void BindSession(Control& c) {
    using K = MemberKind;
    Bind("Connect", K::kMethod, [&c](Args& a) { return Done([&] { c.Connect(a[0].ToLong()); }); });
    Bind("Execute", K::kMethod, [&c](Args& a) { return Done([&] { c.Execute(a[0].ToText()); }); });
    Bind("ExecuteEx", K::kMethod, [&c](Args& a) { return Variant(c.ExecuteEx(a[0].ToText())); });
    Bind("Disconnect", K::kMethod, [&c](Args&) { return Done([&] { c.Disconnect(); }); });
    Bind("version", K::kGet, [&c](Args&) { return Variant(c.version()); });
    Bind("Connected", K::kGet, [&c](Args&) { return Variant(c.Connected()); });
    Bind("Busy", K::kGet, [&c](Args&) { return Variant(c.Busy()); });
    Bind("WindowState", K::kGet, [&c](Args&) { return Variant(c.WindowState()); });
    Bind("WindowState", K::kPut,
         [&c](Args& a) { return Done([&] { c.SetWindowState(a[0].ToLong()); }); });
    Bind("Visible", K::kGet, [&c](Args&) { return Variant(c.Visible()); });
    Bind("Visible", K::kPut, [&c](Args& a) { return Done([&] { c.SetVisible(a[0].ToBool()); }); });
  }
  // Runs a member without a result.
  template <class Body>
  static Variant Done(Body&& body) {
    body();
    return Variant();
  }

 private:
  const MemberInfo* Find(int32_t dispid, CallKind kind) const;
  Args Prepare(const MemberInfo& member, std::span<Variant> args) const;

  const ClassInfo* class_;
  const InterfaceInfo* interface_;
  std::map<const MemberInfo*, Handler> handlers_;
};

// Creates a published class by its programmatic name ("QorvelOLE.Zebrin", any case), found
// through the registry as a client's runtime finds it: the ProgID's CLSID, that class's
// InprocServer32 entry, then the library's class factory. Raises 429 when the name or its class
// isn't registered, or the class isn't built yet. A control comes sited in the run-time
// container: Initialize and Resize have run, and Terminate runs when the last reference goes.
AutomationObject CreateObject(std::string_view prog_id);

// Makes a built class creatable: `make` gives a new instance, sited in its container (see
// Container::Site). FactoryOf gives an empty function for a class not built.
void RegisterClassFactory(const std::string& class_name, std::function<AutomationObject()> make);
std::function<AutomationObject()> FactoryOf(const std::string& class_name);

}  // namespace qorvel

#endif  // QORVEL_FRAME_DISPATCH_FACE_H_
