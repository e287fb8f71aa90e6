// Telling threads apart.
#pragma once

#include <cstdint>

namespace kvr {

using ThreadId = std::uintptr_t;

// No thread's identity.
constexpr ThreadId NO_THREAD = 0;

// The calling thread's identity, as long as it lives.
ThreadId CurrentThread();

}  // namespace kvr
