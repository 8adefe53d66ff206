#include "windows/server/class_dispatch.h"

#include <olectl.h>

#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"
#include "windows/server/module.h"

namespace qorvel::win {
ClassDispatch::ClassDispatch(std::shared_ptr<ClassObject> object)
    : ObjectDispatch(object), object_(*object) {}

void* ClassDispatch::QueryOther(REFIID riid) {
  if (riid == IID_IProvideClassInfo || riid == IID_IProvideClassInfo2) {
    return static_cast<IProvideClassInfo2*>(this);
  }
  if (riid == IID_IConnectionPointContainer && object_.event_interface()) {
    return static_cast<IConnectionPointContainer*>(this);
  }
  return nullptr;
}

// Names of the default interface only, in any case; a get and a put share their DISPID.
DISPID ClassDispatch::IdOfName(const std::string& name) {
  for (const MemberInfo& m : object_.interface_info().members) {
    if (EqualsNoCase(m.name, name)) return m.dispid;
  }
  return DISPID_UNKNOWN;
}

Variant ClassDispatch::Call(DISPID id, CallKind kind, std::span<Variant> args) {
  return object_.InvokeById(id, kind, args);
}

HRESULT ClassDispatch::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = ModuleTypeLib() ? 1 : 0;
  return S_OK;
}

HRESULT ClassDispatch::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = index == 0 ? TypeInfoOf(object_.interface_info().guid) : nullptr;
  return *info ? S_OK : DISP_E_BADINDEX;
}

HRESULT ClassDispatch::GetClassInfo(ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = TypeInfoOf(object_.class_info().guid);
  return *info ? S_OK : E_FAIL;
}

HRESULT ClassDispatch::GetGUID(DWORD kind, GUID* guid) {
  if (guid == nullptr) return E_POINTER;
  *guid = GUID_NULL;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
  const InterfaceInfo* events = object_.event_interface();
  if (events == nullptr) return E_FAIL;
  *guid = ToGuid(events->guid);
  return S_OK;
}

HRESULT ClassDispatch::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (points) *points = nullptr;
  return E_NOTIMPL;
}

HRESULT ClassDispatch::FindConnectionPoint(REFIID riid, IConnectionPoint** point) {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  const InterfaceInfo* events = object_.event_interface();
  if (events == nullptr || (riid != ToGuid(events->guid) && riid != IID_IDispatch)) {
    return CONNECT_E_NOCONNECTION;
  }
  *point = static_cast<IConnectionPoint*>(this);
  AddRef();
  return S_OK;
}

HRESULT ClassDispatch::GetConnectionInterface(IID* iid) {
  if (iid == nullptr) return E_POINTER;
  return GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, iid);
}

HRESULT ClassDispatch::GetConnectionPointContainer(IConnectionPointContainer** c) {
  if (c == nullptr) return E_POINTER;
  *c = static_cast<IConnectionPointContainer*>(this);
  AddRef();
  return S_OK;
}

// A sink hears each event as a call of IDispatch::Invoke with the event's DISPID.
HRESULT ClassDispatch::Advise(IUnknown* sink, DWORD* cookie) {
  if (sink == nullptr || cookie == nullptr) return E_POINTER;
  *cookie = 0;
  ComPtr<IDispatch> events;
  if (FAILED(sink->QueryInterface(IID_IDispatch, events.put_void())))
    return CONNECT_E_CANNOTCONNECT;
  try {
    *cookie = static_cast<DWORD>(object_.Advise(WrapDispatch(events.get())));
    return S_OK;
  } catch (const Error&) {
    return CONNECT_E_CANNOTCONNECT;
  }
}

HRESULT ClassDispatch::Unadvise(DWORD cookie) {
  try {
    object_.Unadvise(static_cast<int32_t>(cookie));
    return S_OK;
  } catch (const Error&) {
    return CONNECT_E_NOCONNECTION;
  }
}

HRESULT ClassDispatch::EnumConnections(IEnumConnections** connections) {
  if (connections) *connections = nullptr;
  return E_NOTIMPL;
}

IDispatch* ExposeClassObject(AutomationObject object) {
  if (auto typed = std::dynamic_pointer_cast<ClassObject>(object)) {
    return static_cast<IDispatch*>(new ClassDispatch(std::move(typed)));
  }
  return new ObjectDispatch(std::move(object));
}

}  // namespace qorvel::win
