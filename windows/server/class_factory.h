#ifndef WINDOWS_SERVER_CLASS_FACTORY_H_
#define WINDOWS_SERVER_CLASS_FACTORY_H_

#include <windows.h>

#include <unknwn.h>

#include <string>
#include <utility>

namespace qorvel::win {

// The class factory of one of the library's classes: each instance comes with its type
// information, a control's with the interfaces of an OLE control. No aggregation.
class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(std::string class_name) : class_name_(std::move(class_name)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** out) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

 private:
  ~ClassFactory() = default;

  std::string class_name_;
  LONG refs_ = 1;
};

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CLASS_FACTORY_H_
