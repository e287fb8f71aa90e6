// Runs programs as processes of their own, as the hosts of a network would be.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

struct Result {
  int status;  // the exit status; Process::kKilled where the process was killed
  std::string out, err;
};

// A started program. It gets no more than a page of errors ahead of who reads them here; its output
// goes to a file. The destructor waits for its end.
class Process {
 public:
  static constexpr int kKilled = 128 + 9;

  // The program's path and its arguments, in UTF-8.
  explicit Process(const std::vector<std::string> &words);
  Process(const Process &) = delete;
  ~Process();

  // Reads standard error up to this text; false when it ended before.
  bool ReadErrorsUntil(const std::string &text);

  void Kill() const;

  // Reads both streams to their end and waits.
  Result Finish();

 private:
  void Start(const std::vector<std::string> &words);
  int Wait();  // the exit status

  std::FILE *out_ = nullptr;
  std::FILE *err_ = nullptr;
  std::intptr_t id_ = 0;  // 0 behind its end
};

// Lets the system's shell run a line, without its output. Returns the exit status.
int RunInShell(const std::string &line);

// Sets a variable of the environment, for processes started later as well.
void SetVariable(const char *name, const std::string &value);
