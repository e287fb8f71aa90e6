#include <algorithm>
#include <mutex>
#include <utility>
#include <windows.h>

#include "fabric/event_timer.h"

namespace fabric {

// A timer of the system's thread pool. A thread of our own would be waited for when its library is
// unloaded, and could not end then, as the system unloads one library and ends one thread at a
// time; a thread of the pool needs only to leave our function.
struct EventTimer::State : std::enable_shared_from_this<State> {
  std::mutex mutex;
  std::function<void()> function;  // null: nothing to come
  std::chrono::steady_clock::time_point due;
  bool ending = false;
  PTP_TIMER timer = nullptr;
  DWORD thread = 0;  // that runs a function, of the many that the pool has
  PTP_CALLBACK_INSTANCE instance = nullptr;

  void Schedule() const;
  std::function<void()> TakeDue();
  void Run(PTP_CALLBACK_INSTANCE running);
  static void CALLBACK Fire(PTP_CALLBACK_INSTANCE running, void *context, PTP_TIMER);
};

// At the due time, or at once.
void EventTimer::State::Schedule() const {
  using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
  const auto left = std::chrono::ceil<Ticks>(due - std::chrono::steady_clock::now());
  const std::int64_t fromNow = -std::max<std::int64_t>(left.count(), 0);  // negative: relative
  FILETIME time{static_cast<DWORD>(fromNow), static_cast<DWORD>(fromNow >> 32)};
  SetThreadpoolTimer(timer, &time, 0, 0);
}

// The function, unless it was cancelled or put off after the timer went off, or the one before it
// is not at its end.
std::function<void()> EventTimer::State::TakeDue() {
  if (!function || thread != 0) return nullptr;
  if (std::chrono::steady_clock::now() < due) {
    Schedule();
    return nullptr;
  }
  return std::exchange(function, nullptr);
}

void EventTimer::State::Run(PTP_CALLBACK_INSTANCE running) {
  std::unique_lock lock(mutex);
  const auto call = TakeDue();
  if (!call) return;
  thread = GetCurrentThreadId();
  instance = running;
  lock.unlock();
  call();
  lock.lock();
  thread = 0;
  if (function) Schedule();
}

// Keeps the state: the function may destroy the timer.
void CALLBACK EventTimer::State::Fire(PTP_CALLBACK_INSTANCE running, void *context, PTP_TIMER) {
  const auto state = static_cast<State *>(context)->shared_from_this();
  state->Run(running);
}

EventTimer::EventTimer() : state_(std::make_shared<State>()) {}

void EventTimer::Arm(std::chrono::milliseconds delay, std::function<void()> function) {
  const std::lock_guard guard(state_->mutex);
  if (state_->ending) return;
  if (state_->timer == nullptr) {
    state_->timer = CreateThreadpoolTimer(State::Fire, state_.get(), nullptr);
  }
  if (state_->timer == nullptr) throw std::bad_alloc();
  state_->function = std::move(function);
  state_->due = std::chrono::steady_clock::now() + delay;
  state_->Schedule();
}

void EventTimer::Cancel() {
  const std::lock_guard guard(state_->mutex);
  state_->function = nullptr;
}

void EventTimer::Stop() {
  PTP_TIMER timer = nullptr;
  {
    const std::lock_guard guard(state_->mutex);
    state_->ending = true;
    state_->function = nullptr;
    timer = std::exchange(state_->timer, nullptr);
    if (timer == nullptr) return;
    // The function itself is not waited for by what it calls.
    if (state_->thread == GetCurrentThreadId()) {
      DisassociateCurrentThreadFromCallback(state_->instance);
    }
  }
  SetThreadpoolTimer(timer, nullptr, 0, 0);
  WaitForThreadpoolTimerCallbacks(timer, TRUE);
  CloseThreadpoolTimer(timer);
}

}  // namespace fabric
