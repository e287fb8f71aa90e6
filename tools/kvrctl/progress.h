// The line that tells, on a terminal, how far work that walks hosts has come.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace kvrctl {

// Shows its line from the first step to its end, on standard error where that is a terminal that
// can go back to a line's begin, else nothing. A run that is soon over shows none. One at a time is
// shown.
class Progress {
 public:
  // doing is what goes on, as "Adding to the ACG"; steps is their number, or 0: not known.
  explicit Progress(std::string doing, std::size_t steps = 0);
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;
  ~Progress();

  // The next step begins; it is about this host, or whatever it is about.
  void Step(const std::string &what);

  // Does work that is one step to whoever calls it; what it throws is passed on.
  void During(const std::function<void()> &work);

  // Takes the line that is shown off the terminal, so that something else can be printed; the next
  // step shows it again.
  static void Clear();

 private:
  std::string doing_;
  std::size_t steps_;
  std::size_t step_ = 0;
  bool shown_;
};

}  // namespace kvrctl
