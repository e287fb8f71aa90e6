// Names between the command line and the library, and what of them may reach a terminal.
//
// On the command line and in every output text is UTF-8. The library's 8-bit names are taken byte
// for byte as the units 0 to 255, as the library itself widens them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvrctl {

// True when the text holds only characters below 128, so that its 8-bit form says everything.
bool IsAscii(std::string_view text);

// The UTF-8 form of UTF-16 units; a surrogate without its pair becomes U+FFFD.
std::string Utf8Of(std::u16string_view units);

// The UTF-8 form of an 8-bit name.
std::string Utf8OfBytes(std::string_view bytes);

// The UTF-16 form of UTF-8 text, or none where the text is not valid UTF-8.
std::optional<std::u16string> Utf16Of(std::string_view utf8);

// The text with every control character replaced by its escape (\x1b, \u0085): names are bytes from
// strangers and must not steer a terminal.
std::string Printable(std::string_view utf8);

// The command with values behind it, and "--" before the first that would be taken for an option.
std::vector<std::string> Naming(std::vector<std::string> command,
                                const std::vector<std::string> &values);

// A command line as a shell reads it: words that it would take apart or change stand in quotes.
std::string CommandText(const std::vector<std::string> &words);

// Rows of cells as lines with aligned columns, two spaces between them, each line ended. The cells
// are made printable.
std::string Columns(const std::vector<std::vector<std::string>> &rows);

}  // namespace kvrctl
