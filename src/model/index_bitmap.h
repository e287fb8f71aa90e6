// A set of the 256 positions, as eight words: the slots whose clients a host serves.
#pragma once

#include <cstdint>

namespace kvr {

using IndexBitmap = std::uint32_t[8];

// n is 0 to 255.
inline void SetIndexBit(IndexBitmap &bitmap, std::uint32_t n) {
  bitmap[n / 32] |= 1U << (n % 32);
}

// n is 0 to 255.
inline void ClearIndexBit(IndexBitmap &bitmap, std::uint32_t n) {
  bitmap[n / 32] &= ~(1U << (n % 32));
}

// Whether bit n is set; n is -1 to 255, and -1, the index of a host without a slot, is never in.
inline bool TestIndexBit(const IndexBitmap &bitmap, std::int32_t n) {
  if (n == -1) return false;
  const auto index = static_cast<std::uint32_t>(n);
  return (bitmap[index / 32] >> (index % 32) & 1U) != 0;
}

}  // namespace kvr
