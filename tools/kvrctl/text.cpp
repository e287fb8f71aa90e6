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

}  // namespace kvrctl
