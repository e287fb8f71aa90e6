#include "words.h"

#include <fmt/format.h>

#include "failure.h"
#include "text.h"

namespace kvrctl {
namespace {

Failure Unfinished(std::string_view line, const char *fault) {
  return {ExitStatus::Usage, "USAGE", fmt::format("The line '{}' {}.", Printable(line), fault),
          "Close quotes; write a backslash twice, or put the word in single quotes."};
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Reads words off the front of a line.
class Reader {
 public:
  explicit Reader(std::string_view line) : line_(line) {}

  std::vector<std::string> Words() {
    std::vector<std::string> words;
    for (SkipBlanks(); at_ < line_.size() && line_[at_] != '#'; SkipBlanks())
      words.push_back(Word());
    return words;
  }

 private:
  void SkipBlanks() {
    while (at_ < line_.size() && IsBlank(line_[at_]))
      ++at_;
  }

  // What follows a backslash.
  char Escaped() {
    if (++at_ == line_.size()) throw Unfinished(line_, "ends in a lone backslash");
    return line_[at_];
  }

  // What stands between quotes; a backslash means something between double ones only, and there
  // only before another or a quote.
  std::string Quoted(char quote) {
    std::string text;
    for (++at_; at_ < line_.size() && line_[at_] != quote; ++at_) {
      const char next = at_ + 1 < line_.size() ? line_[at_ + 1] : '\0';
      const bool escapes = quote == '"' && line_[at_] == '\\' && (next == '"' || next == '\\');
      text += escapes ? Escaped() : line_[at_];
    }
    if (at_ == line_.size()) throw Unfinished(line_, "has a quote that is not closed");
    return text;
  }

  std::string Word() {
    std::string word;
    for (; at_ < line_.size() && !IsBlank(line_[at_]); ++at_) {
      const char c = line_[at_];
      if (c == '\'' || c == '"') {
        word += Quoted(c);
      } else {
        word += c == '\\' ? Escaped() : c;
      }
    }
    return word;
  }

  std::string_view line_;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<std::string> SplitWords(std::string_view line) {
  return Reader(line).Words();
}

}  // namespace kvrctl
