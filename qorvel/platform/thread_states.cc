#include "qorvel/platform/thread_states.h"

#include <atomic>

namespace qorvel {

uint64_t ThreadStates::NextSerial() {
  static std::atomic<uint64_t> last{0};
  return ++last;
}

void* ThreadStates::Find(std::type_index type, std::shared_ptr<void> (*make)()) {
  std::lock_guard lock(mu_);
  std::shared_ptr<void>& state = states_[{std::this_thread::get_id(), type}];
  if (!state) state = make();
  return state.get();
}

}  // namespace qorvel
