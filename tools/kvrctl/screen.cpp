#include "screen.h"

#include <cstdio>

#include "fabric/platform_files.h"
#include "platform.h"

namespace kvrctl {

Screen OutputScreen() {
  if (!IsTerminal(stdout)) return {};
  const bool dumb = fabric::Environment("TERM") == "dumb";
  const bool color = !dumb && !fabric::Environment("NO_COLOR") && EnableColor();
  return {TerminalWidth(), color};
}

}  // namespace kvrctl
