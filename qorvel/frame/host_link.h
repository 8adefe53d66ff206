#ifndef QORVEL_FRAME_HOST_LINK_H_
#define QORVEL_FRAME_HOST_LINK_H_

#include <string>

#include "qorvel/platform/variant.h"

namespace qorvel {

enum class Host { kZebrin = 0, kTarvik = 1, kUlmora = 2 };

// The constants of one host. Ulmora can't be started, so its start fields are empty.
struct HostProfile {
  const char* module;
  const char* class_name;
  const char* version_key;
  const char* install_key_prefix;
  const char* start_title;
  const char* start_text;
  const char* link_title;
  const char* link_text;
};
const HostProfile& ProfileOf(Host host);

// The one late-bound reference to a host, per host and per thread, shared by every control of
// that host on the thread. None of its operations raises an error.
class HostLink {
 public:
  // This thread's link to `host` in the installed environment.
  static HostLink& Of(Host host);
  explicit HostLink(Host host) : host_(host) {}

  const AutomationObject& object() const { return object_; }
  bool empty() const { return object_ == nullptr; }
  void Clear() { object_.reset(); }  // Disconnect, and the refusal of mode 2 of Tarvik3
  void Bind(AutomationObject object) { object_ = std::move(object); }

  VariantBool ConnectToRunning();
  VariantBool StartAndConnect();  // Zebrin, Tarvik
  VariantBool ConnectNew();       // Tarvik
  VariantBool HostExecute(const std::string& command);
  std::string HostExecuteEx(const std::string& command);  // the form of this link's host

 private:
  std::string ExecuteExZebrin(const std::string& command);
  std::string ExecuteExTarvik(const std::string& command);

  Host host_;
  AutomationObject object_;
};

}  // namespace qorvel

#endif  // QORVEL_FRAME_HOST_LINK_H_
