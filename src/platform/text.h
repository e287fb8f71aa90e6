// Zero-terminated text in fields of fixed capacity, in 8-bit and 16-bit characters.
//
// Fields come from strangers: a field that is full has no terminator, so every operation is bounded
// by the field's capacity.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "kvrapi/kvr_wchar.h"

namespace kvr {

// Number of characters before the terminator; capacity when there is none.
template <class Char>
std::size_t BoundedLength(const Char *text, std::size_t capacity) {
  return static_cast<std::size_t>(std::find(text, text + capacity, Char{}) - text);
}

// Fills the whole field: the text's characters up to capacity, then zeros. A text of capacity
// characters or more leaves the field without a terminator.
template <class Char>
void CopyPadded(Char *field, std::size_t capacity, const Char *text, std::size_t length) {
  const std::size_t copied = std::min(length, capacity);
  std::copy_n(text, copied, field);
  std::fill(field + copied, field + capacity, Char{});
}

// Compares two fields of the same capacity character by character as unsigned values. Returns a
// negative value, 0 or a positive value.
template <class Char>
int CompareOrdinal(const Char *a, const Char *b, std::size_t capacity) {
  using Unsigned = std::make_unsigned_t<std::conditional_t<sizeof(Char) == 1, char, short>>;
  for (std::size_t i = 0; i < capacity; ++i) {
    const auto left = static_cast<Unsigned>(a[i]);
    const auto right = static_cast<Unsigned>(b[i]);
    if (left != right) return left < right ? -1 : 1;
    if (left == 0) return 0;
  }
  return 0;
}

// Converts length 8-bit characters into 16-bit units, each byte becoming one unit.
void Widen(KVR_WCHAR *units, const char *text, std::size_t length);

// Converts up to length 16-bit units into 8-bit characters, stopping at the first unit above 255;
// the characters from there on are left as they are.
void Narrow(char *text, const KVR_WCHAR *units, std::size_t length);

}  // namespace kvr
