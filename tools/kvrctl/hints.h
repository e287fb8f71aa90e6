// The way out of each of the library's result codes.
#pragma once

#include <cstdint>

namespace kvrctl {

// A sentence that says what to do next; for a code that the library does not have, one for that.
const char *HintOf(std::uint32_t code);

}  // namespace kvrctl
