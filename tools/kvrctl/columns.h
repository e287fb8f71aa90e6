// Cells of text laid out in columns, on as many lines as the screen's width asks for.
#pragma once

#include <string>
#include <vector>

#include "screen.h"

namespace kvrctl {

// One cell of a row; its text is made printable.
struct Cell {
  std::string text;
  Style style = {};        // of the text
  std::string lead = {};   // stands before the text's first line, as a branch of a tree
  std::string trail = {};  // stands before every further line of the row; as wide as lead or wider
};

using Row = std::vector<Cell>;

// The rows as lines with aligned columns, two spaces between them, each line ended, under a line of
// labels where there are any. Every row has as many cells as the first.
//
// Where the screen has a width, no line is longer: the cells of the widest columns go on below
// themselves, parted at ", " or else at blanks; a word is cut only where it is longer than any
// share that its column could get. Where the columns have too little room side by side, each row
// stands as lines of its own, the first cell above the others.
std::string Columns(const std::vector<std::string> &labels, const std::vector<Row> &rows,
                    const Screen &screen);

}  // namespace kvrctl
