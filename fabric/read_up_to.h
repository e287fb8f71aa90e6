// The loop around each operating system's call that reads some of a file.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace fabric {

// Bytes up to the limit, or to the end. readSome(buffer, size) reads up to size bytes and returns
// how many, 0 at the end; none when it fails, and then there is no content either.
template <class ReadSome>
std::optional<std::string> ReadUpTo(std::size_t limit, ReadSome readSome) {
  std::string content;
  char part[1 << 16];
  while (content.size() < limit) {
    const std::optional<std::size_t> count =
        readSome(part, std::min(sizeof part, limit - content.size()));
    if (!count) return std::nullopt;
    if (*count == 0) break;
    content.append(part, *count);
  }
  return content;
}

}  // namespace fabric
