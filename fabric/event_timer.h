// Calls a function once, later, from a thread of its own, as a discovery library announces systems.
//
// The thread is made at the first Arm and ends with the timer. The function may call Arm and Cancel
// and may even destroy the timer; the timer's lock is not held while it runs. Each operating system
// has its own .cpp.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace fabric {

class EventTimer {
 public:
  EventTimer();
  EventTimer(const EventTimer &) = delete;
  EventTimer &operator=(const EventTimer &) = delete;

  ~EventTimer() { Stop(); }

  // Calls the function after the delay; a call still to come is replaced.
  void Arm(std::chrono::milliseconds delay, std::function<void()> function);

  // Drops the call still to come, if any. A function already running runs on.
  void Cancel();

  // Cancels for good. Waits for the end of a function that is running, unless called from it.
  void Stop();

 private:
  struct State;

  std::shared_ptr<State> state_;
};

}  // namespace fabric
