// Where text is drawn: how much room there is, and whether it takes colours.
#pragma once

#include <cstddef>

namespace kvrctl {

struct Screen {
  std::size_t width = 0;  // columns; 0: as many as are needed
  bool color = false;
};

// Standard output: a terminal's width and colours, or neither where it is none. NO_COLOR, and a TERM
// of "dumb", keep colours away.
Screen OutputScreen();

}  // namespace kvrctl
