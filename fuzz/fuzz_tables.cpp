// The entry that the fuzzer calls, and that the replay calls for each input of the corpus.
#include <cstddef>
#include <cstdint>

#include "library_walk.h"
#include "stranger.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  fuzz::SetStranger({data, size});
  fuzz::UseEverything(size > 0 ? data[size - 1] : 0);
  return 0;
}
