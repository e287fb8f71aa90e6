#include "columns.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "text.h"
#include "wrap.h"

namespace kvrctl {
namespace {

constexpr std::size_t kGap = 2;
constexpr std::size_t kLeastShare = 32;  // a word within it is not cut: rows stand in lines before

using Widths = std::vector<std::size_t>;

std::string WithoutEnd(const std::string &text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

// Of the cell on one line, and of a further line without text.
std::size_t WholeWidth(const Cell &cell) {
  return std::max(WidthOf(cell.lead + cell.text), WidthOf(WithoutEnd(cell.trail)));
}

// What the cells of one column ask for.
struct Extent {
  std::size_t whole = 0;    // no cell breaks
  std::size_t longest = 0;  // no word breaks
  std::size_t trail = 0;    // of it, what does not belong to the words
};

void Extend(Extent &extent, const Cell &cell) {
  const std::size_t whole = WholeWidth(cell), trail = WidthOf(cell.trail);
  extent.whole = std::max(extent.whole, whole);
  extent.longest = std::max(extent.longest, std::min(whole, trail + LongestWord(cell.text)));
  extent.trail = std::max(extent.trail, trail);
}

std::vector<Extent> ExtentsOf(const std::vector<Row> &rows) {
  std::vector<Extent> extents;
  for (const Row &row : rows) {
    extents.resize(std::max(extents.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i)
      Extend(extents[i], row[i]);
  }
  return extents;
}

// The widths of columns with at most `room` in all: the widest give way first. None where the rows
// have to stand in lines.
Widths Shares(const std::vector<Extent> &extents, std::size_t room) {
  const auto fitted = [&](std::size_t level, const auto &share) {
    Widths widths;
    for (const Extent &extent : extents)
      widths.push_back(share(extent, level));
    return std::accumulate(widths.begin(), widths.end(), std::size_t{0}) <= room ? widths
                                                                                 : Widths();
  };
  const auto unbroken = [](const Extent &extent, std::size_t level) {
    return std::min(extent.whole, std::max(extent.longest, level));
  };
  const auto broken = [](const Extent &extent, std::size_t level) {
    return std::min(extent.longest, extent.trail + level);
  };
  for (std::size_t level = room; level > 0; --level)
    if (Widths widths = fitted(level, unbroken); !widths.empty()) return widths;
  for (std::size_t level = room; level >= kLeastShare; --level)
    if (Widths widths = fitted(level, broken); !widths.empty()) return widths;
  return {};
}

Widths WidthsOf(const std::vector<Row> &rows, const Screen &screen) {
  const std::vector<Extent> extents = ExtentsOf(rows);
  Widths whole;
  for (const Extent &extent : extents)
    whole.push_back(extent.whole);
  if (screen.width == 0 || rows.empty()) return whole;
  const std::size_t gaps = kGap * (extents.size() - 1);
  return screen.width > gaps ? Shares(extents, screen.width - gaps) : Widths();
}

// What is left of the width behind a margin; at least room for a wide character.
std::size_t Behind(const std::string &margin, std::size_t width) {
  constexpr std::size_t kLeast = 2;
  return std::max(kLeast, width - std::min(width, WidthOf(margin)));
}

std::vector<std::string> LinesOf(const Cell &cell, std::size_t width) {
  return Wrapped(cell.text, Behind(cell.lead, width), Behind(cell.trail, width));
}

// A line that is filled from the left; it ends where its last visible text does.
class Line {
 public:
  explicit Line(const Screen &screen) : screen_(screen) {}

  void Put(std::size_t column, const std::string &margin, const std::string &text,
           const Style &style) {
    const std::string shown = WithoutEnd(text);
    const std::string before = shown.empty() ? WithoutEnd(margin) : margin;
    if (before.empty() && shown.empty()) return;
    line_ += std::string(column - filled_, ' ') + before + Painted(shown, style, screen_);
    filled_ = column + WidthOf(before) + WidthOf(shown);
  }

  std::string Ended() && { return std::move(line_) + '\n'; }

 private:
  const Screen &screen_;
  std::string line_;
  std::size_t filled_ = 0;
};

std::string SideBySide(const Row &row, const Widths &widths, const Screen &screen) {
  std::vector<std::vector<std::string>> cells;
  std::size_t height = 0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const bool fits = WholeWidth(row[i]) <= widths[i];
    cells.push_back(fits ? std::vector{row[i].text} : LinesOf(row[i], widths[i]));
    height = std::max(height, cells.back().size());
  }
  std::string out;
  for (std::size_t l = 0; l < height; ++l) {
    Line line(screen);
    for (std::size_t i = 0, column = 0; i < row.size(); column += widths[i++] + kGap) {
      const std::string &margin = l == 0 ? row[i].lead : row[i].trail;
      line.Put(column, margin, l < cells[i].size() ? cells[i][l] : "", row[i].style);
    }
    out += std::move(line).Ended();
  }
  return out;
}

// The end of a margin that takes at most half the screen.
std::string Narrowed(std::string margin, const Screen &screen) {
  const std::size_t width = WidthOf(margin);
  const std::size_t over = width - std::min(width, screen.width / 2);
  return margin.erase(0, CutTo(margin, over).size());
}

std::string OneBelowAnother(const Row &labels, const Row &row, const Screen &screen) {
  const std::string lead = Narrowed(row[0].lead, screen), trail = Narrowed(row[0].trail, screen);
  std::string out;
  for (std::size_t i = 0; i < row.size(); ++i) {
    Cell cell = {row[i].text, row[i].style, trail + "  ", trail + "    "};
    if (i == 0) {
      cell.lead = lead;
      cell.style |= kLabelStyle;
    }
    if (i > 0 && !labels.empty()) cell.text = labels[i].text + ": " + cell.text;
    out += SideBySide({cell}, {screen.width}, screen);
  }
  return out;
}

Row LabelRow(const std::vector<std::string> &labels) {
  Row row;
  for (const std::string &label : labels)
    row.push_back({label, kLabelStyle});
  return row;
}

}  // namespace

std::string Columns(const std::vector<std::string> &labels, const std::vector<Row> &rows,
                    const Screen &screen) {
  const Row labelRow = LabelRow(labels);
  std::vector<Row> all = rows;
  for (Row &row : all)
    for (Cell &cell : row)
      cell.text = Printable(cell.text);
  if (!labels.empty()) all.insert(all.begin(), labelRow);
  const Widths widths = WidthsOf(all, screen);
  if (widths.empty() && !labels.empty()) all.erase(all.begin());
  std::string out;
  for (const Row &row : all)
    out +=
        widths.empty() ? OneBelowAnother(labelRow, row, screen) : SideBySide(row, widths, screen);
  return out;
}

}  // namespace kvrctl
