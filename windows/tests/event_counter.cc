#include "windows/tests/event_counter.h"

#include <map>

namespace qorvel::win::testing {

// A dispinterface sink: it answers for IDispatch and for the source interface's own IID, which
// some connection points ask for, and counts each Invoke by DISPID.
class EventCounter::Sink final : public IDispatch {
 public:
  explicit Sink(const IID& events) : events_(events) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (riid != IID_IUnknown && riid != IID_IDispatch && riid != events_) {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    *out = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return InterlockedIncrement(&refs_); }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = InterlockedDecrement(&refs_);
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count) *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    if (result) VariantInit(result);
    ++heard[id];
    return S_OK;
  }

  std::map<DISPID, int> heard;

 private:
  ~Sink() = default;
  IID events_;
  LONG refs_ = 1;
};

EventCounter::EventCounter(IUnknown* control) {
  ComPtr<IProvideClassInfo2> info;
  IID events{};
  ComPtr<IConnectionPointContainer> container;
  if (control == nullptr) {
    error_ = "no control";
  } else if (FAILED(control->QueryInterface(IID_IProvideClassInfo2, info.put_void())) ||
             FAILED(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events))) {
    error_ = "the control names no outgoing interface";
  } else if (FAILED(control->QueryInterface(IID_IConnectionPointContainer, container.put_void())) ||
             FAILED(container->FindConnectionPoint(events, point_.put()))) {
    error_ = "the control has no connection point for its outgoing interface";
  } else {
    sink_ = new Sink(events);
    if (const HRESULT hr = point_->Advise(sink_, &cookie_); FAILED(hr)) {
      cookie_ = 0;
      error_ = "Advise failed";
    }
  }
}

EventCounter::~EventCounter() {
  if (cookie_ != 0) point_->Unadvise(cookie_);
  if (sink_) sink_->Release();
}

int EventCounter::heard(DISPID dispid) const {
  if (sink_ == nullptr) return 0;
  auto it = sink_->heard.find(dispid);
  return it == sink_->heard.end() ? 0 : it->second;
}

int EventCounter::heard_others(DISPID dispid) const {
  int others = 0;
  if (sink_ == nullptr) return 0;
  for (const auto& [id, count] : sink_->heard) others += id == dispid ? 0 : count;
  return others;
}

void EventCounter::Reset() {
  if (sink_) sink_->heard.clear();
}

}  // namespace qorvel::win::testing
