// A line of a batch file taken apart into words, as a POSIX shell would: blanks part them, quotes
// and backslashes keep blanks in them. Nothing is expanded.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvrctl {

// The words of the line; none where it is blank or only a comment, which begins with '#' at the
// start of a word. Throws Failure where a quote is not closed or a lone backslash ends the line.
std::vector<std::string> SplitWords(std::string_view line);

}  // namespace kvrctl
