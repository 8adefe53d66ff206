// Saving and loading a control: in a stream of the library's own format (IPersistStreamInit)
// or in the container's property bag (IPersistPropertyBag). Both go through the control's
// ReadProperties and WriteProperties; only ValueBox saves anything.

#include "qorvel/platform/variant_windows.h"
#include "qorvel/server/classes.h"
#include "windows/server/control_object.h"
#include "windows/server/module.h"
#include "windows/server/property_stream.h"

namespace qorvel::win {
namespace {

VARTYPE VarTypeOf(VarType type) { return static_cast<VARTYPE>(type); }

// A property the bag holds, converted by the bag to the type the control reads it as; empty
// for one the bag doesn't hold, which then takes its default.
std::optional<Variant> ReadBagProperty(IPropertyBag* bag, IErrorLog* log,
                                       const SavedProperty& property) {
  const std::wstring name = Widen(property.name);
  UniqueVariant value;
  value.vt = VarTypeOf(property.type);
  const HRESULT hr = bag->Read(name.c_str(), &value, log);
  if (hr == E_INVALIDARG) return std::nullopt;  // the bag's word for a missing property
  if (FAILED(hr)) {
    throw Error(static_cast<int32_t>(hr),
                std::string("The saved property ") + property.name + " can't be read");
  }
  return FromVariant(value);
}

}  // namespace

HRESULT ControlDispatch::GetClassID(CLSID* clsid) {
  if (clsid == nullptr) return E_POINTER;
  *clsid = ToGuid(class_object().class_info().guid);
  return S_OK;
}

HRESULT ControlDispatch::InitNew() {
  return Guarded([&] { return life_.InitNew() ? S_OK : E_UNEXPECTED; });
}

HRESULT ControlDispatch::IsDirty() { return dirty_ ? S_OK : S_FALSE; }

HRESULT ControlDispatch::Load(IStream* stream) {
  if (stream == nullptr) return E_POINTER;
  return Guarded([&] {
    if (life_.loaded() || life_.closed()) return E_UNEXPECTED;
    const PropertyBag bag = ReadPropertyStream(stream);
    life_.Load(bag);
    dirty_ = false;
    return S_OK;
  });
}

HRESULT ControlDispatch::Save(IStream* stream, BOOL clear_dirty) {
  if (stream == nullptr) return E_POINTER;
  return Guarded([&] {
    if (!life_.loaded()) return E_UNEXPECTED;
    WritePropertyStream(life_.Save(), stream);
    if (clear_dirty) dirty_ = false;
    return S_OK;
  });
}

HRESULT ControlDispatch::GetSizeMax(ULARGE_INTEGER* size) {
  if (size == nullptr) return E_POINTER;
  size->QuadPart = kMostPropertyStreamBytes;
  return S_OK;
}

// Only the properties the control reads back are asked for, each as its own type. All are
// read before the control sees any, so a bag that fails leaves the control unloaded.
HRESULT ControlDispatch::Load(IPropertyBag* bag, IErrorLog* log) {
  if (bag == nullptr) return E_POINTER;
  return Guarded([&] {
    if (life_.loaded() || life_.closed()) return E_UNEXPECTED;
    PropertyBag saved;
    for (const SavedProperty& property : SavedPropertiesOf(life_.class_name())) {
      if (auto value = ReadBagProperty(bag, log, property)) {
        saved.Append(property.name, *value);
      }
    }
    life_.Load(saved);
    dirty_ = false;
    return S_OK;
  });
}

// WriteProperties leaves out what is at its default, whatever the container asks: a missing
// property reads back as that default.
HRESULT ControlDispatch::Save(IPropertyBag* bag, BOOL clear_dirty, BOOL) {
  if (bag == nullptr) return E_POINTER;
  return Guarded([&] {
    if (!life_.loaded()) return E_UNEXPECTED;
    const PropertyBag saved = life_.Save();
    for (const auto& [name, value] : saved.entries()) {
      UniqueVariant out;
      ToVariant(value, &out);
      const std::wstring wide = Widen(name);
      const HRESULT hr = bag->Write(wide.c_str(), &out);
      if (FAILED(hr))
        throw Error(static_cast<int32_t>(hr), "The property " + name + " can't be saved");
    }
    if (clear_dirty) dirty_ = false;
    return S_OK;
  });
}

}  // namespace qorvel::win
