#include "qorvel/machining/tarvik3_face.h"

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/machining/tarvik3.h"

namespace qorvel {
namespace {

using K = MemberKind;
using Args = ClassObject::Args;

class Tarvik3Object : public ClassObject {
 public:
  Tarvik3Object() : ClassObject("Tarvik3") {
    BindTarvikSession();
    BindBlock();
    BindLists();
  }
  void Initialize() override { t_.Initialize(); }
  void Terminate() override { t_.Terminate(); }

 private:
  void BindTarvikSession() {
    BindSession(t_);
    Bind("ExitTarvik", K::kMethod, [this](Args&) { return Done([&] { t_.ExitTarvik(); }); });
    Bind("Dialogs", K::kPut,
         [this](Args& a) { return Done([&] { t_.SetDialogs(a[0].ToBool()); }); });
    Bind("Dialogs", K::kGet, [this](Args&) { return Variant(t_.Dialogs()); });
  }

  void BindBlock() {
    Bind("StoreBlock", K::kMethod, [this](Args&) {
      t_.StoreBlock();
      return Variant();
    });
    Bind("StoreModel", K::kMethod, [this](Args&) {
      t_.StoreModel();
      return Variant();
    });
    Bind("ResizeBlock", K::kMethod, [this](Args& a) {
      t_.ResizeBlock(a[0].ToDouble(), a[1].ToBool(), a[2].ToBool(), a[3].ToBool(), a[4].ToBool(),
                     a[5].ToBool(), a[6].ToBool());
      return Variant();
    });
    Bind("SetBlock", K::kMethod, [this](Args& a) {
      t_.SetBlock(a[0].ToLong(), a[1].ToDouble());
      return Variant();
    });
    Bind("DefineTool", K::kMethod, [this](Args& a) {
      t_.DefineTool(a[0].ToLong(), a[1].ToDouble(), a[2].ToDouble(), a[3].ToDouble(),
                    a[4].ToDouble(), a[5].ToDouble(), a[6].ToDouble(), a[7].ToDouble(),
                    a[8].ToLong(), a[9].ToText());
      return Variant();
    });
    Bind("BlockSize", K::kGet, [this](Args& a) { return Variant(t_.BlockSize(a[0].ToLong())); });
    Bind("ModelSize", K::kGet, [this](Args& a) { return Variant(t_.ModelSize(a[0].ToLong())); });
    Bind("Units", K::kPut, [this](Args& a) {
      t_.SetUnits(a[0].ToLong());
      return Variant();
    });
    Bind("Units", K::kGet, [this](Args&) { return Variant(t_.Units()); });
    Bind("IsModelLoaded", K::kGet, [this](Args&) { return Variant(t_.IsModelLoaded()); });
    Bind("BlockDefined", K::kGet, [this](Args&) { return Variant(t_.BlockDefined()); });
  }

  // The list members fill the client's collection and index in place.
  void BindList(const char* name, void (Tarvik3::*list)(AutomationObject&, int32_t&)) {
    Bind(name, K::kMethod, [this, list](Args& a) {
      AutomationObject collection = a[0].ToObject();
      int32_t active = 0;
      (t_.*list)(collection, active);
      a[1] = Variant(active);
      return Variant();
    });
  }

  void BindLists() {
    BindList("GetToolpathList", &Tarvik3::GetToolpathList);
    BindList("GetPatternList", &Tarvik3::GetPatternList);
    BindList("GetWorkplaneList", &Tarvik3::GetWorkplaneList);
    Bind("SizeToolpath", K::kMethod, [this](Args& a) {
      std::string name = a[0].ToText();
      double v[6] = {};
      t_.SizeToolpath(name, v[0], v[1], v[2], v[3], v[4], v[5]);
      a[0] = Variant(name);
      for (int i = 0; i < 6; ++i) a[i + 1] = Variant(v[i]);
      return Variant();
    });
  }

  Tarvik3 t_;
};

}  // namespace

AutomationObject NewTarvik3Object() {
  return Container::RunTime().Site(std::make_unique<Tarvik3Object>());
}

}  // namespace qorvel
