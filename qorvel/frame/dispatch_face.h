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
// DISPID. Arguments arrive in the caller's order; each is converted to its parameter's type, an
// omitted optional one takes its default (0 when it has none), and by-reference ones are
// written back to the caller's variables after the call.
class ClassObject : public Dispatch {
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
  // The control's shell, sited in its container; a plain class has one it doesn't use.
  ControlShell& shell() { return shell_; }

 protected:
  // A control's creation as the container does it: Initialize (the caller's), then an extent
  // and its Resize.
  void Site() { shell_.SetExtent(2400, 2400); }
  // Binds a member's row to the code that runs it.
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
  ControlShell shell_;
  std::map<const MemberInfo*, Handler> handlers_;
};

// Creates a published class by its programmatic name ("QorvelOLE.Zebrin"), found through the
// registry as a client's runtime finds it; 429 when the name isn't registered or the class
// isn't built yet.
AutomationObject CreateObject(std::string_view prog_id);

// Makes a built class creatable; FactoryOf gives an empty function for a class not built.
void RegisterClassFactory(const std::string& class_name, std::function<AutomationObject()> make);
std::function<AutomationObject()> FactoryOf(const std::string& class_name);

}  // namespace qorvel

#endif  // QORVEL_FRAME_DISPATCH_FACE_H_
