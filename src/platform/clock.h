// Time: the seconds that seed the random generator, and the pause between two looks at a discovery.
#pragma once

#include <cstdint>

namespace kvr {

// Whole seconds since 1970-01-01 00:00:00 UTC, modulo 2^32.
std::uint32_t CurrentTimeSeconds();

// Suspends the calling thread for at least the given time.
void SleepMilliseconds(std::uint32_t duration_ms);

}  // namespace kvr
