#include "text.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>

#include "kvrapi/text.hpp"

#include "platform.h"

namespace kvrctl {
namespace {

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
    width += ColumnsOf(kvrapi::TakeCharacter(text).value_or(kvrapi::kReplacementCharacter));
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

std::string Printable(std::string_view utf8) {
  std::string out;
  while (!utf8.empty()) {
    const char32_t c = kvrapi::TakeCharacter(utf8).value_or(kvrapi::kReplacementCharacter);
    if (!IsControl(c)) {
      kvrapi::AppendUtf8(out, c);
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

std::string Indented(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    out += "  " + std::string(text.substr(0, end)) + '\n';
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return out;
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
