#ifndef QORVEL_PLATFORM_DISPATCH_WINDOWS_H_
#define QORVEL_PLATFORM_DISPATCH_WINDOWS_H_

// Late-bound calls across the platform's IDispatch, both ways, and the one translation between
// the library's raised errors and HRESULTs.

#include <windows.h>

#include <oaidl.h>

#include <map>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "qorvel/platform/com_windows.h"
#include "qorvel/platform/dispatch.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/variant.h"

namespace qorvel::win {

// An error's HRESULT as automation clients read it back: MAKE_HRESULT(1, FACILITY_CONTROL,
// number), which VB and VBScript turn into Err.Number `number`.
HRESULT ErrorHresult(int32_t number);
// Fills EXCEPINFO (when given) and the thread's error object with the error's number and
// description, no source and no help, and returns DISP_E_EXCEPTION.
HRESULT ReportError(const Error& error, EXCEPINFO* excep_info);
// The library's error for a failed call: the callee's own number from EXCEPINFO, else the
// runtime's number for the HRESULT (438 for an unknown member, 462 for a server that has gone).
Error ErrorOf(HRESULT hr, const EXCEPINFO* excep_info);

// A platform object as one of the library's automation objects: each call asks the object for
// the member's DISPID once, then invokes it, references as VT_BYREF.
AutomationObject WrapDispatch(IDispatch* object);
// The platform object behind WrapDispatch's result; nullptr for one of the library's own.
IDispatch* WrappedDispatch(const AutomationObject& object);

// One of the library's objects as a platform object (a new reference). Made by the installed
// exposer: by default ObjectDispatch, which knows members by name only; the COM server installs
// one that gives its classes their type information.
using Exposer = IDispatch* (*)(AutomationObject object);
IDispatch* ExposeObject(AutomationObject object);
void SetExposer(Exposer exposer);
// The library's object behind a platform object that ExposeObject made; empty for another.
AutomationObject ExposedObject(IUnknown* object);

// IID of the private interface that says "this is one of the library's objects". Two modules
// that link the library each have their own objects, so the object is handed over only to the
// module that made it.
extern const IID IID_IQorvelObject;
struct IQorvelObject : IUnknown {
  virtual const void* STDMETHODCALLTYPE Module() = 0;
  virtual AutomationObject STDMETHODCALLTYPE Object() = 0;
};

// IDispatch over one of the library's automation objects. Member names get DISPIDs as they are
// first asked for, one per name (any case); errors go out through ReportError. Derived classes
// serve typed objects and more interfaces.
class ObjectDispatch : public IDispatch, public ISupportErrorInfo, public IQorvelObject {
 public:
  explicit ObjectDispatch(AutomationObject object);
  virtual ~ObjectDispatch();

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  // IDispatch
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* excep_info,
                                   UINT* arg_err) override;
  // ISupportErrorInfo
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override;
  // IQorvelObject
  const void* STDMETHODCALLTYPE Module() override;
  AutomationObject STDMETHODCALLTYPE Object() override { return object_; }

 protected:
  const AutomationObject& object() const { return object_; }
  // Another interface this object serves; nullptr for none.
  virtual void* QueryOther(REFIID riid);
  // The DISPID of a member name, or DISPID_UNKNOWN.
  virtual DISPID IdOfName(const std::string& name);
  // Runs the member; raises as the library does.
  virtual Variant Call(DISPID id, CallKind kind, std::span<Variant> args);

 private:
  AutomationObject object_;
  LONG refs_ = 1;
  std::mutex names_mu_;
  std::map<std::string, DISPID> ids_;  // upper-cased name -> DISPID
  std::vector<std::string> names_;     // DISPID - 1 -> name as first asked
};

// The CallKind of IDispatch::Invoke's flags: a put for DISPATCH_PROPERTYPUT(REF), a method when
// DISPATCH_METHOD is among them (VBScript asks for method or get at once), else a get.
CallKind KindOfFlags(WORD flags);

// Objects of the library alive in this module, for DllCanUnloadNow.
LONG LiveDispatches();

}  // namespace qorvel::win

#endif  // QORVEL_PLATFORM_DISPATCH_WINDOWS_H_
