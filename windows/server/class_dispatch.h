#ifndef WINDOWS_SERVER_CLASS_DISPATCH_H_
#define WINDOWS_SERVER_CLASS_DISPATCH_H_

#include <windows.h>

#include <ocidl.h>

#include <memory>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/dispatch_windows.h"

namespace qorvel::win {

// One of the library's published classes as a platform object: its members and DISPIDs from
// the type library table, its type information from the DLL's type library, its class through
// IProvideClassInfo2, and its outgoing interface through one connection point. A control's
// object (ControlDispatch) adds the interfaces of an OLE control.
class ClassDispatch : public ObjectDispatch,
                      public IProvideClassInfo2,
                      public IConnectionPointContainer,
                      public IConnectionPoint {
 public:
  explicit ClassDispatch(std::shared_ptr<ClassObject> object);

  // IUnknown, shared by all the interfaces
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    return ObjectDispatch::QueryInterface(riid, out);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ObjectDispatch::AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return ObjectDispatch::Release(); }

  // IDispatch
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
  // IProvideClassInfo2
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) override;
  // IConnectionPointContainer
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID riid, IConnectionPoint** point) override;
  // IConnectionPoint
  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override;
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** c) override;
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

 protected:
  void* QueryOther(REFIID riid) override;
  DISPID IdOfName(const std::string& name) override;
  Variant Call(DISPID id, CallKind kind, std::span<Variant> args) override;
  ClassObject& class_object() const { return object_; }

 private:
  ClassObject& object_;
};

// What the DLL installs with SetExposer: its classes with their type information, anything
// else (a Collection) by name only.
IDispatch* ExposeClassObject(AutomationObject object);

}  // namespace qorvel::win

#endif  // WINDOWS_SERVER_CLASS_DISPATCH_H_
