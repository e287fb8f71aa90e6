#include "progress.h"

#include <cstdio>
#include <utility>

#include <fmt/format.h>

#include "fabric/platform_files.h"
#include "platform.h"
#include "text.h"

namespace kvrctl {
namespace {

bool g_isShowing = false;

// A line of the trace would be written behind the progress line, so that no such line is shown then.
bool MayShow() {
  return !g_isShowing && IsTerminal(stderr) && !fabric::Environment("KVR_TRACE");
}

void Show(const std::string &line) {
  fmt::print(stderr, "\r\x1b[K{}", line);
  std::fflush(stderr);
}

}  // namespace

Progress::Progress(std::string doing, std::size_t steps)
    : doing_(std::move(doing)), steps_(steps), shown_(MayShow()) {
  if (!shown_) return;
  g_isShowing = true;
  Show(doing_ + " ...");
}

Progress::~Progress() {
  if (!shown_) return;
  g_isShowing = false;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
}

void Progress::Step(const std::string &what) {
  ++step_;
  if (!shown_) return;
  const std::string share = steps_ == 0 ? "" : fmt::format(" ({} of {})", step_, steps_);
  Show(fmt::format("{}: {}{}", doing_, Printable(what), share));
}

}  // namespace kvrctl
