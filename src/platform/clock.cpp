#include "platform/clock.h"

#include <ctime>

#if defined(_WIN32)
#include <windows.h>
#else
#include <chrono>
#include <thread>
#endif

namespace kvr {

std::uint32_t CurrentTimeSeconds() {
#if defined(_WIN32)
  const auto now = _time64(nullptr);  // time() has 32 bits, signed, and ends in 2038
#else
  const auto now = std::time(nullptr);
#endif
  return static_cast<std::uint32_t>(now);
}

void SleepMilliseconds(std::uint32_t duration_ms) {
#if defined(_WIN32)
  Sleep(duration_ms);
#else
  std::this_thread::sleep_for(std::chrono::milliseconds(duration_ms));
#endif
}

}  // namespace kvr
