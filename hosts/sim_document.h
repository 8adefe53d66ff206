#ifndef HOSTS_SIM_DOCUMENT_H_
#define HOSTS_SIM_DOCUMENT_H_

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "hosts/sim_object.h"
#include "hosts/sim_surfaces.h"

namespace qorvel::hosts {

// The active document of the simulated modelling host: the model's surfaces as the data calls
// read and write them whole, and the nearest points on one of them. Each call checks the
// VARIANT type of every argument as the host's type information declares it, and refuses a
// wrong one with 13 naming the argument. It shares its host's lock and log, and goes with it.
class SimDocument : public SimObject {
 public:
  static constexpr const char* kClass = "Ulmora.Document";

  SimDocument(const std::shared_ptr<SimObject>& host, SimSurfaces& surfaces);

  // The status the two data calls give back instead of doing anything (0: none). ClearFaults
  // drops it.
  void FailDataCalls(int32_t status);
  // getnearestpoint leaves its answer as it came: only the client's part of the work is timed.
  void set_echo_nearest(bool echo);
  // For tests that play a host answering otherwise: once its own work is done, every later call
  // of `member` ("GetSurfacePointData", "SetSurfacePointData" or "getnearestpoint", any case)
  // writes `value` through its by-reference argument at `position` (1-based, in the member's
  // order), as that reference takes a write: a VARIANT holds whatever comes, a typed one
  // converts. ClearFaults drops these.
  void ScriptArgument(const std::string& member, int position, Variant value);

 protected:
  const SimMembers& members() const override;
  void ClearOwnFaults() override;

 private:
  Variant GetSurfacePointData(std::span<Variant> args);
  Variant SetSurfacePointData(std::span<Variant> args);
  Variant GetNearestPoint(std::span<Variant> args);
  void WriteScripted(const char* member, std::span<Variant> args);

  SimSurfaces& surfaces_;  // the host's, which outlives every call that reaches here
  int32_t failing_status_ = 0;
  bool echo_nearest_ = false;
  struct Scripted {
    std::string member;  // upper-cased
    size_t index;
    Variant value;
  };
  std::vector<Scripted> scripted_;  // in the order given
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_DOCUMENT_H_
