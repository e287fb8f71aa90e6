// Text measured in the columns of a terminal, and broken into the lines of a narrow one. It is
// UTF-8 and printable.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kvrctl {

// The columns that a terminal gives to printable text: East Asian wide characters take two,
// combining ones none.
std::size_t WidthOf(std::string_view text);

// The longest beginning of the text that takes at most `width` columns.
std::string_view CutTo(std::string_view text, std::size_t width);

// The text as lines, at least one, of at most `first` columns, the further ones of at most `rest`;
// both are at least 2. It is parted at ", ", an item that is longer than a line at blanks too, and
// a word that is longer than a line anywhere. The blank at which it is parted goes.
std::vector<std::string> Wrapped(std::string_view text, std::size_t first, std::size_t rest);

// The width of the longest word, a part of the text that has no blank.
std::size_t LongestWord(std::string_view text);

}  // namespace kvrctl
