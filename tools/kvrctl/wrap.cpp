#include "wrap.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "kvrapi/text.hpp"

namespace kvrctl {
namespace {

struct Range {
  char32_t first, last;
};

constexpr Range kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0xA4CF},
                           {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},  {0xFE30, 0xFE6F},
                           {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F},
                           {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

constexpr Range kCombining[] = {{0x300, 0x36F},   {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},
                                {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F},
                                {0xFE20, 0xFE2F}};

template <std::size_t Count>
bool IsAmong(const Range (&ranges)[Count], char32_t c) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [c](Range range) { return c >= range.first && c <= range.last; });
}

// Takes the first character; returns the columns that a terminal gives it.
std::size_t TakeWidth(std::string_view &text) {
  const char32_t c = kvrapi::TakeCharacter(text).value_or(kvrapi::kReplacementCharacter);
  if (IsAmong(kCombining, c)) return 0;
  return IsAmong(kWide, c) ? 2 : 1;
}

// Takes the text up to the blank behind the next mark, or all of it; the blank itself goes.
std::string_view TakePart(std::string_view &text, std::string_view mark) {
  const std::size_t found = text.find(mark);
  const std::size_t end = found == std::string_view::npos ? text.size() : found + mark.size() - 1;
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

class Wrapper {
 public:
  Wrapper(std::size_t first, std::size_t rest) : room_(first), rest_(rest) {}

  // Parts are kept whole on one line where that is possible.
  void Add(std::string_view text, const std::vector<std::string_view> &marks) {
    if (WidthOf(text) + Gap() > room_ && !lines_.back().empty() && WidthOf(text) <= rest_) Break();
    if (WidthOf(text) + Gap() <= room_) return Append(text);
    if (marks.empty()) return Cut(text);
    while (!text.empty())
      Add(TakePart(text, marks.front()), {marks.begin() + 1, marks.end()});
  }

  std::vector<std::string> Lines() && { return std::move(lines_); }

 private:
  std::size_t Gap() const { return lines_.back().empty() ? 0 : 1; }

  void Append(std::string_view text) {
    room_ -= WidthOf(text) + Gap();
    lines_.back().append(Gap(), ' ').append(text);
  }

  void Break() {
    lines_.emplace_back();
    room_ = rest_;
  }

  void Cut(std::string_view word) {
    if (!lines_.back().empty()) Break();
    for (; WidthOf(word) > room_; Break()) {
      const std::string_view part = CutTo(word, room_);
      lines_.back() = part;
      word.remove_prefix(part.size());
    }
    Append(word);
  }

  std::vector<std::string> lines_ = {""};
  std::size_t room_;  // left on the last line
  std::size_t rest_;
};

}  // namespace

std::size_t WidthOf(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty())
    width += TakeWidth(text);
  return width;
}

std::string_view CutTo(std::string_view text, std::size_t width) {
  std::string_view rest = text;
  while (!rest.empty()) {
    std::string_view behind = rest;
    const std::size_t taken = TakeWidth(behind);
    if (taken > width) break;
    width -= taken;
    rest = behind;
  }
  return text.substr(0, text.size() - rest.size());
}

std::vector<std::string> Wrapped(std::string_view text, std::size_t first, std::size_t rest) {
  Wrapper wrapper(first, rest);
  wrapper.Add(text, {", ", " "});
  return std::move(wrapper).Lines();
}

std::size_t LongestWord(std::string_view text) {
  std::size_t longest = 0;
  while (!text.empty())
    longest = std::max(longest, WidthOf(TakePart(text, " ")));
  return longest;
}

}  // namespace kvrctl
