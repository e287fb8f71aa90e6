#include "text.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>

#include "platform.h"

namespace kvrctl {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLowSurrogate(char32_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}
bool IsSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDFFF;
}

char Byte(char32_t value) {
  return static_cast<char>(static_cast<unsigned char>(value));
}

void AppendUtf8(std::string &out, char32_t c) {
  if (c < 0x80) {
    out += Byte(c);
    return;
  }
  if (c < 0x800) {
    out += Byte(0xC0 | c >> 6);
  } else if (c < 0x10000) {
    out += Byte(0xE0 | c >> 12);
    out += Byte(0x80 | (c >> 6 & 0x3F));
  } else {
    out += Byte(0xF0 | c >> 18);
    out += Byte(0x80 | (c >> 12 & 0x3F));
    out += Byte(0x80 | (c >> 6 & 0x3F));
  }
  out += Byte(0x80 | (c & 0x3F));
}

// Takes one character off the front of the text; none, taking one byte, where it is not valid.
std::optional<char32_t> TakeCharacter(std::string_view &text) {
  const auto lead = static_cast<unsigned char>(text.front());
  text.remove_prefix(1);
  if (lead < 0x80) return lead;
  const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < more) return std::nullopt;
  char32_t c = lead & (0x3Fu >> more);
  for (std::size_t i = 0; i < more; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0) != 0x80) return std::nullopt;
    c = c << 6 | (next & 0x3F);
  }
  const char32_t lowest = more == 3 ? 0x10000 : more == 2 ? 0x800 : 0x80;
  if (c < lowest || c > 0x10FFFF || IsSurrogate(c)) return std::nullopt;
  text.remove_prefix(more);
  return c;
}

// Controls proper, and the marks that make a terminal reorder or break a line.
bool IsControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

// Columns that a terminal gives the character: East Asian wide forms and pictographs take two.
std::size_t ColumnsOf(char32_t c) {
  struct Range {
    char32_t first, last;
  };
  constexpr Range kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0xA4CF},
                             {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},  {0xFE30, 0xFE6F},
                             {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F},
                             {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
  if (c >= 0x300 && c <= 0x36F) return 0;
  const bool wide = std::any_of(std::begin(kWide), std::end(kWide),
                                [c](Range r) { return c >= r.first && c <= r.last; });
  return wide ? 2 : 1;
}

std::size_t Width(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty())
    width += ColumnsOf(TakeCharacter(text).value_or(kReplacement));
  return width;
}

// A word as it is where a shell takes it so, else in quotes.
std::string ShellWord(const std::string &word) {
  const bool plain = std::all_of(word.begin(), word.end(), [](unsigned char c) {
    return c >= 0x80 || std::isalnum(c) != 0 ||
           kPlainInShell.find(static_cast<char>(c)) != std::string_view::npos;
  });
  return plain && !word.empty() ? word : QuotedForShell(word);
}

}  // namespace

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string Utf8Of(std::u16string_view units) {
  std::string out;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    if (IsHighSurrogate(unit) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) {
      AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (char32_t{units[i + 1]} - 0xDC00));
      ++i;
    } else {
      AppendUtf8(out, IsSurrogate(unit) ? kReplacement : unit);
    }
  }
  return out;
}

std::string Utf8OfBytes(std::string_view bytes) {
  std::string out;
  for (const char c : bytes)
    AppendUtf8(out, static_cast<unsigned char>(c));
  return out;
}

std::optional<std::u16string> Utf16Of(std::string_view utf8) {
  std::u16string out;
  while (!utf8.empty()) {
    const auto c = TakeCharacter(utf8);
    if (!c) return std::nullopt;
    if (*c < 0x10000) {
      out += static_cast<char16_t>(*c);
    } else {
      out += static_cast<char16_t>(0xD800 + ((*c - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + ((*c - 0x10000) & 0x3FF));
    }
  }
  return out;
}

std::string Printable(std::string_view utf8) {
  std::string out;
  while (!utf8.empty()) {
    const char32_t c = TakeCharacter(utf8).value_or(kReplacement);
    if (!IsControl(c)) {
      AppendUtf8(out, c);
    } else if (c < 0x80) {
      out += fmt::format("\\x{:02x}", static_cast<unsigned>(c));
    } else {
      out += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    }
  }
  return out;
}

std::vector<std::string> Naming(std::vector<std::string> command,
                                const std::vector<std::string> &values) {
  bool guarded = std::find(command.begin(), command.end(), "--") != command.end();
  for (const std::string &value : values) {
    if (!guarded && value.substr(0, 1) == "-") {
      command.emplace_back("--");
      guarded = true;
    }
    command.push_back(value);
  }
  return command;
}

std::string CommandText(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words)
    text += (text.empty() ? "" : " ") + ShellWord(word);
  return text;
}

std::string Columns(const std::vector<std::vector<std::string>> &rows) {
  std::vector<std::size_t> widths;
  for (const auto &row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], Width(Printable(row[i])));
    }
  }
  std::string out;
  for (const auto &row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string cell = Printable(row[i]);
      line += cell + std::string(widths[i] - Width(cell) + 2, ' ');
    }
    out += line.erase(line.find_last_not_of(' ') + 1) + '\n';
  }
  return out;
}

}  // namespace kvrctl
