// Names between UTF-8, in which a program holds them, and the two forms of the library's interface.
//
// 8-bit names are taken byte for byte as the units 0 to 255, as the library itself widens them.
#ifndef KVRAPI_TEXT_HPP
#define KVRAPI_TEXT_HPP

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "kvrapi/kvr_wchar.h"

namespace kvrapi {

using WideString = std::basic_string<KVR_WCHAR>;

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

namespace detail {

constexpr bool IsHighSurrogate(char32_t c) noexcept {
  return c >= 0xD800 && c <= 0xDBFF;
}

constexpr bool IsLowSurrogate(char32_t c) noexcept {
  return c >= 0xDC00 && c <= 0xDFFF;
}

}  // namespace detail

// Adds a character to UTF-8 text.
inline void AppendUtf8(std::string &out, char32_t c) {
  const auto byte = [](char32_t value) {
    return static_cast<char>(static_cast<unsigned char>(value));
  };
  if (c < 0x80) {
    out += byte(c);
    return;
  }
  if (c < 0x800) {
    out += byte(0xC0 | c >> 6);
  } else if (c < 0x10000) {
    out += byte(0xE0 | c >> 12);
    out += byte(0x80 | (c >> 6 & 0x3F));
  } else {
    out += byte(0xF0 | c >> 18);
    out += byte(0x80 | (c >> 12 & 0x3F));
    out += byte(0x80 | (c >> 6 & 0x3F));
  }
  out += byte(0x80 | (c & 0x3F));
}

// Takes one character off the front of UTF-8 text, which is not empty; none, taking one byte, where
// it is not valid.
inline std::optional<char32_t> TakeCharacter(std::string_view &utf8) {
  const auto lead = static_cast<unsigned char>(utf8.front());
  utf8.remove_prefix(1);
  if (lead < 0x80) return lead;
  const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || utf8.size() < more) return std::nullopt;
  char32_t c = lead & (0x3Fu >> more);
  for (std::size_t i = 0; i < more; ++i) {
    const auto next = static_cast<unsigned char>(utf8[i]);
    if ((next & 0xC0) != 0x80) return std::nullopt;
    c = c << 6 | (next & 0x3F);
  }
  const char32_t lowest = more == 3 ? 0x10000 : more == 2 ? 0x800 : 0x80;
  if (c < lowest || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return std::nullopt;
  utf8.remove_prefix(more);
  return c;
}

// The UTF-8 form of a string of UTF-16 units, of whatever type they are; a surrogate without its
// pair becomes U+FFFD.
template <class Units>
requires(sizeof(typename Units::value_type) == 2) std::string Utf8Of(const Units &units) {
  std::string out;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    const char32_t next = i + 1 < units.size() ? units[i + 1] : U'\0';
    if (detail::IsHighSurrogate(unit) && detail::IsLowSurrogate(next)) {
      AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
      ++i;
    } else {
      AppendUtf8(out, unit >= 0xD800 && unit <= 0xDFFF ? kReplacementCharacter : unit);
    }
  }
  return out;
}

// The UTF-8 form of an 8-bit name.
inline std::string Utf8OfBytes(std::string_view bytes) {
  std::string out;
  for (const char c : bytes)
    AppendUtf8(out, static_cast<unsigned char>(c));
  return out;
}

// The UTF-16 form of UTF-8 text, or none where the text is not valid UTF-8.
inline std::optional<WideString> Utf16Of(std::string_view utf8) {
  WideString out;
  while (!utf8.empty()) {
    const auto c = TakeCharacter(utf8);
    if (!c) return std::nullopt;
    if (*c < 0x10000) {
      out += static_cast<KVR_WCHAR>(*c);
    } else {
      out += static_cast<KVR_WCHAR>(0xD800 + ((*c - 0x10000) >> 10));
      out += static_cast<KVR_WCHAR>(0xDC00 + ((*c - 0x10000) & 0x3FF));
    }
  }
  return out;
}

// True when the text holds only characters below 128, so that its 8-bit form says everything.
inline bool IsAscii(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace kvrapi

#endif
