#include "qorvel/session/zebrin_face.h"

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/session/zebrin.h"

namespace qorvel {
namespace {

using K = MemberKind;
using Args = ClassObject::Args;

class ZebrinObject : public ClassObject {
 public:
  ZebrinObject() : ClassObject("Zebrin") {
    z_.Initialize();
    Site();
    Bind("Connect", K::kMethod, [this](Args& a) {
      z_.Connect(a[0].ToLong());
      return Variant();
    });
    Bind("Execute", K::kMethod, [this](Args& a) {
      z_.Execute(a[0].ToText());
      return Variant();
    });
    Bind("ExecuteEx", K::kMethod, [this](Args& a) { return Variant(z_.ExecuteEx(a[0].ToText())); });
    Bind("Disconnect", K::kMethod, [this](Args&) {
      z_.Disconnect();
      return Variant();
    });
    Bind("ExitZebrin", K::kMethod, [this](Args&) {
      z_.ExitZebrin();
      return Variant();
    });
    Bind("version", K::kGet, [this](Args&) { return Variant(z_.version()); });
    Bind("Connected", K::kGet, [this](Args&) { return Variant(z_.Connected()); });
    Bind("Busy", K::kGet, [this](Args&) { return Variant(z_.Busy()); });
    Bind("WindowState", K::kGet, [this](Args&) { return Variant(z_.WindowState()); });
    Bind("WindowState", K::kPut, [this](Args& a) {
      z_.SetWindowState(a[0].ToLong());
      return Variant();
    });
    Bind("InformationWindow", K::kPut, [this](Args& a) {
      z_.SetInformationWindow(a[0].ToBool());
      return Variant();
    });
    Bind("Visible", K::kGet, [this](Args&) { return Variant(z_.Visible()); });
    Bind("Visible", K::kPut, [this](Args& a) {
      z_.SetVisible(a[0].ToBool());
      return Variant();
    });
  }
  ~ZebrinObject() override { z_.Terminate(); }

 private:
  Zebrin z_;
};

}  // namespace

AutomationObject NewZebrinObject() { return std::make_shared<ZebrinObject>(); }

}  // namespace qorvel
