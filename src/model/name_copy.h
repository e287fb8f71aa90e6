// Delivering a stored name into a caller's buffer.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kvrapi/kvrapi.h"

#include "platform/text.h"

namespace kvr {

// Copies the name of a field into a buffer of size characters: a shorter name is followed by zeros,
// a name of size characters or more is cut there without a terminator. Returns 5006 when the name
// is longer than the buffer, else 0.
template <class Char>
std::uint32_t CopyName(const Char *field, std::size_t capacity, Char *buffer, std::uint32_t size) {
  const std::size_t length = BoundedLength(field, capacity);
  CopyPadded(buffer, size, field, length);
  return length > size ? KVR_ERR_NAME_TRUNCATED : KVR_OK;
}

}  // namespace kvr
