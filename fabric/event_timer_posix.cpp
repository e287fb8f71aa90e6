#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "fabric/event_timer.h"

namespace fabric {

// Shared with the thread, which outlives a timer destroyed from within the function.
struct EventTimer::State {
  std::mutex mutex;
  std::condition_variable changed;
  std::function<void()> function;  // null: nothing to come
  std::chrono::steady_clock::time_point due;
  bool ending = false;
  std::thread thread;

  void Run();
};

void EventTimer::State::Run() {
  std::unique_lock lock(mutex);
  while (!ending) {
    if (!function) {
      changed.wait(lock);
    } else if (std::chrono::steady_clock::now() < due) {
      const auto until = due;
      changed.wait_until(lock, until);
    } else {
      const auto call = std::exchange(function, nullptr);
      lock.unlock();
      call();
      lock.lock();
    }
  }
}

EventTimer::EventTimer() : state_(std::make_shared<State>()) {}

void EventTimer::Arm(std::chrono::milliseconds delay, std::function<void()> function) {
  const std::lock_guard guard(state_->mutex);
  if (state_->ending) return;
  state_->function = std::move(function);
  state_->due = std::chrono::steady_clock::now() + delay;
  state_->changed.notify_all();
  if (!state_->thread.joinable()) state_->thread = std::thread([state = state_] { state->Run(); });
}

void EventTimer::Cancel() {
  const std::lock_guard guard(state_->mutex);
  state_->function = nullptr;
}

void EventTimer::Stop() {
  {
    const std::lock_guard guard(state_->mutex);
    state_->ending = true;
  }
  state_->changed.notify_all();
  std::thread &thread = state_->thread;
  if (!thread.joinable()) return;
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
}

}  // namespace fabric
