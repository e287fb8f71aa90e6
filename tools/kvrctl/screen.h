// Where text is drawn: how much room there is, whether it takes colours, and what they mean.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <fmt/color.h>

namespace kvrctl {

struct Screen {
  std::size_t width = 0;  // columns; 0: as many as are needed
  bool color = false;
};

// A standard stream: a terminal's width and colours, or neither where it is none. NO_COLOR, and a
// TERM of "dumb", keep colours away.
Screen OutputScreen();
Screen ErrorScreen();

// What is left of the screen for text that will be moved in by two columns.
Screen Inset(const Screen &screen);

using Style = fmt::text_style;

constexpr Style kLabelStyle = fmt::emphasis::bold;
constexpr Style kWarningStyle = fmt::fg(fmt::terminal_color::yellow);  // runs on, with less
constexpr Style kAlarmStyle = fmt::fg(fmt::terminal_color::red);       // failed

// The text in the style where the screen takes colours, else as it is.
std::string Painted(std::string_view text, const Style &style, const Screen &screen);

}  // namespace kvrctl
