// The line that tells, on a terminal, how far work that walks hosts has come.
#pragma once

#include <cstddef>
#include <string>

namespace kvrctl {

// Shows its line from the first step to its end, on standard error where that is a terminal, else
// nothing. One at a time is shown.
class Progress {
 public:
  // doing is what goes on, as "Adding to the ACG"; steps is their number, or 0 where it isn't known.
  explicit Progress(std::string doing, std::size_t steps = 0);
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;
  ~Progress();

  // The next step begins; it is about this host, or whatever it is about.
  void Step(const std::string &what);

 private:
  std::string doing_;
  std::size_t steps_;
  std::size_t step_ = 0;
  bool shown_;
};

}  // namespace kvrctl
