// The library's result codes in words: for each its name, what it means and the way out of it.
#pragma once

#include <cstdint>

namespace kvrctl {

struct ResultText {
  std::uint32_t code;
  const char *name;     // as in kvrapi.h
  const char *meaning;  // a clause that completes "...: "; no full stop
  const char *hint;     // a sentence that says what to do next
};

// The words for a result code; for a code that the library does not have, words that say so.
const ResultText &TextOf(std::uint32_t code);

}  // namespace kvrctl
