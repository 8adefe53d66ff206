#ifndef QORVEL_PLATFORM_THREAD_STATES_H_
#define QORVEL_PLATFORM_THREAD_STATES_H_

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <typeindex>
#include <utility>

namespace qorvel {

// What an environment keeps for each thread that uses it: one T per thread (the host links, the
// surface store), made on the thread's first use and dropped with the environment, so a fresh
// environment starts every thread afresh. A thread that ends leaves its state until then.
class ThreadStates {
 public:
  ThreadStates() : serial_(NextSerial()) {}
  ThreadStates(const ThreadStates&) = delete;
  ThreadStates& operator=(const ThreadStates&) = delete;

  // This thread's T. Each thread keeps the last one it found, so the lock is taken once per
  // thread and environment, not on every call.
  template <class T>
  T& Get() {
    thread_local struct {
      uint64_t serial = 0;
      T* state = nullptr;
    } last;
    if (last.serial != serial_) {
      last.state = static_cast<T*>(Find(typeid(T), [] { return std::shared_ptr<void>(new T()); }));
      last.serial = serial_;
    }
    return *last.state;
  }

 private:
  static uint64_t NextSerial();
  void* Find(std::type_index type, std::shared_ptr<void> (*make)());

  const uint64_t serial_;  // unique in the process, so a new set is never mistaken for an old one
  std::mutex mu_;
  std::map<std::pair<std::thread::id, std::type_index>, std::shared_ptr<void>> states_;
};

}  // namespace qorvel

#endif  // QORVEL_PLATFORM_THREAD_STATES_H_
