// A control active in place: its window, a child of the container's, and Text1's in it.

#include "qorvel/platform/error.h"
#include "windows/server/control_drawing.h"
#include "windows/server/control_object.h"
#include "windows/server/control_units.h"

namespace qorvel::win {
namespace {

void Check(HRESULT hr, const char* what) {
  if (FAILED(hr)) throw Error(static_cast<int32_t>(hr), what);
}

}  // namespace

SIZE ControlDispatch::PixelSize() const {
  const UserControl& surface = life_.shell().user_control;
  return {TwipsToPixels(surface.Width), TwipsToPixels(surface.Height)};
}

bool ControlDispatch::ShowsItself() const {
  return !(misc_status_ & OLEMISC_INVISIBLEATRUNTIME) || !life_.shell().UserMode();
}

// Verbs that show the control activate it in place; HIDE hides its window; OPEN and
// PROPERTIES have nothing to open. A positive verb the control doesn't know acts as PRIMARY.
HRESULT ControlDispatch::DoVerb(LONG verb, LPMSG, IOleClientSite* active_site, LONG, HWND parent,
                                LPCRECT pos) {
  return Guarded([&]() -> HRESULT {
    if (life_.closed()) return OLE_E_NOTRUNNING;
    switch (verb) {
      case OLEIVERB_HIDE:
        UIDeactivate();
        if (window_) window_->Show(false);
        return S_OK;
      case OLEIVERB_OPEN:
      case OLEIVERB_PROPERTIES:
        return E_NOTIMPL;
      case OLEIVERB_PRIMARY:
      case OLEIVERB_SHOW:
      case OLEIVERB_INPLACEACTIVATE:
      case OLEIVERB_UIACTIVATE:
        InPlaceActivate(verb, active_site, parent, pos);
        return S_OK;
      default:
        if (verb < 0) return E_NOTIMPL;
        InPlaceActivate(OLEIVERB_PRIMARY, active_site, parent, pos);
        return OLEOBJ_S_INVALIDVERB;
    }
  });
}

// The site's window context gives the parent window and the place; the control's own window
// follows, hidden at run time when the control is invisible then. A container that never
// initialised the control has it started as a scripting client would.
void ControlDispatch::InPlaceActivate(LONG verb, IOleClientSite* active_site, HWND parent,
                                      LPCRECT pos) {
  life_.StartForMember();
  if (!window_) {
    IOleClientSite* site = site_ ? site_->get() : active_site;
    if (site == nullptr) throw Error(static_cast<int32_t>(E_UNEXPECTED), "The control has no site");
    ComPtr<IOleInPlaceSite> in_place;
    Check(site->QueryInterface(IID_IOleInPlaceSite, in_place.put_void()),
          "The container can't hold the control in place");
    if (in_place->CanInPlaceActivate() != S_OK) {
      throw Error(static_cast<int32_t>(E_FAIL), "The container refuses to activate the control");
    }
    Check(in_place->OnInPlaceActivate(), "The container refused the control's activation");
    in_place_site_ = in_place;
    HWND site_window = nullptr;
    if (FAILED(in_place->GetWindow(&site_window)) || site_window == nullptr) site_window = parent;
    OLEINPLACEFRAMEINFO frame_info{};
    frame_info.cb = sizeof(frame_info);
    RECT place{};
    RECT clip{};
    if (FAILED(in_place->GetWindowContext(frame_.put(), document_.put(), &place, &clip,
                                          &frame_info))) {
      place = pos ? *pos : RECT{};
    }
    window_ = std::make_unique<ControlWindow>(site_window, [this](HDC dc, const RECT& client) {
      if (!text1_window_) DrawControl(life_.shell(), dc, client);
    });
    if (life_.shell().Text1) {
      text1_window_ = TextBoxWindow::Create(*life_.shell().Text1, window_->hwnd());
      if (!text1_window_) {
        throw Error(static_cast<int32_t>(HRESULT_FROM_WIN32(GetLastError())),
                    "Text1's window can't be made");
      }
      window_->set_child_color([this](HDC dc, HWND child) -> LRESULT {
        if (text1_window_ && child == text1_window_->hwnd()) return text1_window_->ColorFor(dc);
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
      });
    }
    SetObjectRects(&place, &clip);
  }
  window_->Show(ShowsItself());
  if (verb == OLEIVERB_UIACTIVATE || verb == OLEIVERB_PRIMARY) UIActivate();
}

// Controls that never take the focus (OLEMISC_NOUIACTIVATE) stay active without it.
void ControlDispatch::UIActivate() {
  if (ui_active_ || (misc_status_ & OLEMISC_NOUIACTIVATE) || !in_place_site_) return;
  Check(in_place_site_->OnUIActivate(), "The container refused to give the control the focus");
  ui_active_ = true;
  if (frame_) frame_->SetActiveObject(static_cast<IOleInPlaceActiveObject*>(this), nullptr);
  if (document_) document_->SetActiveObject(static_cast<IOleInPlaceActiveObject*>(this), nullptr);
  SetFocus(window_->hwnd());
}

// The window takes the control's own size at the place the container gives; Text1 stands
// where the control's Resize put it.
void ControlDispatch::Layout() {
  if (!window_) return;
  const SIZE size = PixelSize();
  window_->Place(
      {position_.left, position_.top, position_.left + size.cx, position_.top + size.cy});
  if (text1_window_) text1_window_->Layout();
  window_->Repaint();
}

// IOleWindow

HRESULT ControlDispatch::GetWindow(HWND* hwnd) {
  if (hwnd == nullptr) return E_POINTER;
  *hwnd = window_ ? window_->hwnd() : nullptr;
  return window_ ? S_OK : E_FAIL;
}

HRESULT ControlDispatch::ContextSensitiveHelp(BOOL) { return E_NOTIMPL; }

// IOleInPlaceObject

HRESULT ControlDispatch::InPlaceDeactivate() {
  if (!window_) return S_OK;
  UIDeactivate();
  text1_window_.reset();
  window_.reset();
  if (in_place_site_) in_place_site_->OnInPlaceDeactivate();
  in_place_site_.reset();
  frame_.reset();
  document_.reset();
  return S_OK;
}

HRESULT ControlDispatch::UIDeactivate() {
  if (!ui_active_) return S_OK;
  ui_active_ = false;
  if (frame_) frame_->SetActiveObject(nullptr, nullptr);
  if (document_) document_->SetActiveObject(nullptr, nullptr);
  if (in_place_site_) in_place_site_->OnUIDeactivate(FALSE);
  return S_OK;
}

// A control of free size follows the rectangle's size, as a new extent with its Resize; one
// of fixed size keeps its own and only moves.
HRESULT ControlDispatch::SetObjectRects(LPCRECT pos, LPCRECT) {
  if (pos == nullptr) return E_POINTER;
  return Guarded([&] {
    position_ = *pos;
    const ShellSize kind = life_.shell().size_kind();
    const SIZE wanted{pos->right - pos->left, pos->bottom - pos->top};
    const SIZE now = PixelSize();
    if ((kind == ShellSize::kFree || kind == ShellSize::kTextBox) && wanted.cx >= 0 &&
        wanted.cy >= 0 && (wanted.cx != now.cx || wanted.cy != now.cy)) {
      life_.SetExtent(PixelsToTwips(wanted.cx), PixelsToTwips(wanted.cy));
    }
    Layout();
    return S_OK;
  });
}

HRESULT ControlDispatch::ReactivateAndUndo() { return INPLACE_E_NOTUNDOABLE; }

// IOleInPlaceActiveObject: no accelerators of its own; the EDIT handles its keys itself.

HRESULT ControlDispatch::TranslateAccelerator(LPMSG) { return S_FALSE; }

HRESULT ControlDispatch::OnFrameWindowActivate(BOOL) { return S_OK; }

HRESULT ControlDispatch::OnDocWindowActivate(BOOL) { return S_OK; }

HRESULT ControlDispatch::ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) { return S_OK; }

HRESULT ControlDispatch::EnableModeless(BOOL) { return S_OK; }

}  // namespace qorvel::win
