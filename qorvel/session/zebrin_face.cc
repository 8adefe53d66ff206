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
    BindSession(z_);
    Bind("ExitZebrin", K::kMethod, [this](Args&) { return Done([&] { z_.ExitZebrin(); }); });
    Bind("InformationWindow", K::kPut,
         [this](Args& a) { return Done([&] { z_.SetInformationWindow(a[0].ToBool()); }); });
  }
  void Initialize() override { z_.Initialize(); }
  void Terminate() override { z_.Terminate(); }

 private:
  Zebrin z_;
};

}  // namespace

AutomationObject NewZebrinObject() {
  return Container::RunTime().Site(std::make_unique<ZebrinObject>());
}

}  // namespace qorvel
