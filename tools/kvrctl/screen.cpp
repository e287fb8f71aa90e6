#include "screen.h"

#include <cstdio>

#include "fabric/platform_files.h"
#include "platform.h"

namespace kvrctl {
namespace {

Screen ScreenOf(std::FILE *stream) {
  if (!IsTerminal(stream)) return {};
  const bool dumb = fabric::Environment("TERM") == "dumb";
  const bool color = !dumb && !fabric::Environment("NO_COLOR") && EnableColor(stream);
  return {TerminalWidth(stream), color};
}

}  // namespace

Screen OutputScreen() {
  return ScreenOf(stdout);
}

Screen ErrorScreen() {
  return ScreenOf(stderr);
}

Screen Inset(const Screen &screen) {
  constexpr std::size_t kIndent = 2;
  return {screen.width > kIndent ? screen.width - kIndent : screen.width, screen.color};
}

std::string Painted(std::string_view text, const Style &style, const Screen &screen) {
  const bool plain =
      !screen.color || text.empty() || (!style.has_foreground() && !style.has_emphasis());
  return plain ? std::string(text) : fmt::format(style, "{}", text);
}

}  // namespace kvrctl
