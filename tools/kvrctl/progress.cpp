#include "progress.h"

#include <chrono>
#include <cstdio>
#include <future>
#include <utility>

#include <fmt/format.h>

#include "fabric/platform_files.h"
#include "platform.h"
#include "screen.h"
#include "text.h"
#include "wrap.h"

namespace kvrctl {
namespace {

using Clock = std::chrono::steady_clock;

// A run that is over by then would only flicker.
const Clock::time_point kFirstShown = Clock::now() + std::chrono::milliseconds(200);

bool g_isTaken = false;     // by a progress that may show its line
std::size_t g_columns = 0;  // that the line takes which stands on the terminal

// A line of the trace would be written behind the progress line, so none is shown then.
bool MayShow() {
  return !g_isTaken && IsTerminal(stderr) && fabric::Environment("TERM") != "dumb" &&
         !fabric::Environment("KVR_TRACE");
}

// Blanks, not an escape sequence, remove what stood there: not every console takes those. The last
// column stays free, for a cursor behind it would stand on the next line.
void Draw(const std::string &line) {
  if (Clock::now() < kFirstShown) return;
  const std::string_view shown = CutTo(line, ErrorScreen().width - 1);
  const std::size_t columns = WidthOf(shown);
  const std::string rest(g_columns > columns ? g_columns - columns : 0, ' ');
  fmt::print(stderr, "\r{}{}", shown, rest);
  std::fflush(stderr);
  g_columns = columns;
}

}  // namespace

Progress::Progress(std::string doing, std::size_t steps)
    : doing_(std::move(doing)), steps_(steps), shown_(MayShow()) {
  if (!shown_) return;
  g_isTaken = true;
  Draw(doing_ + " ...");
}

Progress::~Progress() {
  if (!shown_) return;
  g_isTaken = false;
  Clear();
}

void Progress::Step(const std::string &what) {
  ++step_;
  if (!shown_) return;
  const std::string share = steps_ == 0 ? "" : fmt::format(" ({} of {})", step_, steps_);
  Draw(fmt::format("{}{}: {}", doing_, share, Printable(what)));
}

void Progress::During(const std::function<void()> &work) {
  if (!shown_) return work();
  std::promise<void> ended;
  const std::future<void> teller = std::async(std::launch::async, [&, end = ended.get_future()] {
    if (end.wait_until(kFirstShown) == std::future_status::timeout) Draw(doing_ + " ...");
  });
  try {
    work();
  } catch (...) {
    ended.set_value();
    throw;
  }
  ended.set_value();
}

void Progress::Clear() {
  if (g_columns == 0) return;
  fmt::print(stderr, "\r{}\r", std::string(std::exchange(g_columns, 0), ' '));
  std::fflush(stderr);
}

}  // namespace kvrctl
