#ifndef WINDOWS_TESTS_MEMORY_PROPERTY_BAG_H_
#define WINDOWS_TESTS_MEMORY_PROPERTY_BAG_H_

// A container's property bag kept in memory: what a control saves with
// IPersistPropertyBag::Save, by name, and the order the names were written in.

#include <windows.h>

#include <ocidl.h>

#include <map>
#include <string>
#include <vector>

namespace qorvel::win::testing {

class MemoryPropertyBag final : public IPropertyBag {
 public:
  MemoryPropertyBag() = default;
  MemoryPropertyBag(const MemoryPropertyBag&) = delete;
  MemoryPropertyBag& operator=(const MemoryPropertyBag&) = delete;

  // IUnknown; the bag lives on the caller's stack, so the count only guards against misuse.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override { return --refs_; }
  // IPropertyBag. Read converts to the type the caller asks for, as a container's bag does,
  // and answers E_INVALIDARG for a name that was never written.
  HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog* log) override;
  HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) override;

  // The value written under `name`, or nullptr.
  const VARIANT* Find(const std::wstring& name) const;
  const std::vector<std::wstring>& write_order() const { return order_; }
  size_t size() const { return values_.size(); }
  // References a control still holds after its call returned: should be none.
  ULONG outstanding() const { return refs_ - 1; }
  ~MemoryPropertyBag();

 private:
  ULONG refs_ = 1;
  std::map<std::wstring, VARIANT> values_;
  std::vector<std::wstring> order_;
};

// A copy of what a bag holds, for a report: "DecimalPlaces=3 (VT 2)".
std::string DescribeBag(const MemoryPropertyBag& bag);

}  // namespace qorvel::win::testing

#endif  // WINDOWS_TESTS_MEMORY_PROPERTY_BAG_H_
