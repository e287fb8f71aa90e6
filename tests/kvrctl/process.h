// Runs kvrctl as processes of their own, as the hosts of a network would.
#pragma once

#include <string>
#include <vector>

struct Result {
  int status;  // the exit status; 128 + the number of the signal that ended the process
  std::string out;
  std::string err;
};

// A started kvrctl with its two output streams; the destructor ends it and waits.
class Process {
 public:
  explicit Process(const std::vector<std::string> &arguments);
  Process(const Process &) = delete;
  Process &operator=(const Process &) = delete;
  ~Process();

  // Reads both streams to their end and waits.
  Result Finish();

  // Reads standard error until it holds `text` this many times; the process gets no more than a
  // page of output ahead of the reader. False when it ended before.
  bool ReadErrorsUntil(const std::string &text, int times);

  void Kill();

 private:
  int pid_;
  int out_;
  int err_;
  std::string errSoFar_;
};
