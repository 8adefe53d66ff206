#include "windows/tests/memory_property_bag.h"

#include <oleauto.h>

#include "qorvel/platform/com_windows.h"

namespace qorvel::win::testing {

HRESULT MemoryPropertyBag::QueryInterface(REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (riid != IID_IUnknown && riid != IID_IPropertyBag) return E_NOINTERFACE;
  *out = static_cast<IPropertyBag*>(this);
  AddRef();
  return S_OK;
}

HRESULT MemoryPropertyBag::Read(LPCOLESTR name, VARIANT* value, IErrorLog* /*log*/) {
  if (name == nullptr || value == nullptr) return E_POINTER;
  auto it = values_.find(name);
  if (it == values_.end()) return E_INVALIDARG;
  const VARTYPE wanted = value->vt;
  VariantInit(value);
  if (wanted == VT_EMPTY) return VariantCopy(value, &it->second);
  return VariantChangeType(value, &it->second, 0, wanted);
}

HRESULT MemoryPropertyBag::Write(LPCOLESTR name, VARIANT* value) {
  if (name == nullptr || value == nullptr) return E_POINTER;
  VARIANT copy;
  VariantInit(&copy);
  if (const HRESULT hr = VariantCopy(&copy, value); FAILED(hr)) return hr;
  auto [it, added] = values_.try_emplace(name, copy);
  if (!added) {
    VariantClear(&it->second);
    it->second = copy;
  }
  order_.push_back(name);
  return S_OK;
}

const VARIANT* MemoryPropertyBag::Find(const std::wstring& name) const {
  auto it = values_.find(name);
  return it == values_.end() ? nullptr : &it->second;
}

MemoryPropertyBag::~MemoryPropertyBag() {
  for (auto& [name, value] : values_) VariantClear(&value);
}

std::string DescribeBag(const MemoryPropertyBag& bag) {
  std::string text;
  for (const std::wstring& name : bag.write_order()) {
    const VARIANT* value = bag.Find(name);
    VARIANT shown;
    VariantInit(&shown);
    VariantChangeType(&shown, const_cast<VARIANT*>(value), 0, VT_BSTR);
    if (!text.empty()) text += ", ";
    text += Narrow(name.data(), name.size()) + "=" +
            (shown.vt == VT_BSTR ? Narrow(shown.bstrVal) : "?") + " (VT " +
            std::to_string(value->vt) + ")";
    VariantClear(&shown);
  }
  return text.empty() ? "nothing" : text;
}

}  // namespace qorvel::win::testing
