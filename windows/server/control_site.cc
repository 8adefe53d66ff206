#include "windows/server/control_site.h"

#include <olectl.h>

#include <utility>

namespace qorvel::win {
namespace {

// The site's ambient UserMode; true when it has none or answers with something else.
bool AmbientUserMode(IOleClientSite* site) {
  ComPtr<IDispatch> ambient;
  if (site == nullptr || FAILED(site->QueryInterface(IID_IDispatch, ambient.put_void()))) {
    return true;
  }
  DISPPARAMS none{nullptr, nullptr, 0, 0};
  UniqueVariant result;
  if (FAILED(ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, LOCALE_USER_DEFAULT,
                             DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr))) {
    return true;
  }
  if (FAILED(VariantChangeType(&result, &result, 0, VT_BOOL))) return true;
  return result.boolVal != VARIANT_FALSE;
}

}  // namespace

ClientSite::ClientSite(IOleClientSite* site, Changed changed)
    : site_(site), changed_(std::move(changed)) {
  RefreshUserMode();
}

void ClientSite::PropertyChanged(std::string_view name) {
  if (changed_) changed_(name);
}

void ClientSite::RefreshUserMode() { user_mode_ = AmbientUserMode(site_.get()); }

}  // namespace qorvel::win
