// SHA-256 (FIPS 180-4), by which bytes that are not to be shown can be compared by eye.
#pragma once

#include <string>
#include <string_view>

namespace kvrctl {

// The digest of the bytes in 64 hexadecimal digits.
std::string Sha256(std::string_view bytes);

}  // namespace kvrctl
