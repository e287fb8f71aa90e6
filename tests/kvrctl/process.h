// Runs kvrctl as processes of their own, as the hosts of a network would.
#pragma once

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iterator>
#include <sstream>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <sys/wait.h>

struct Result {
  int status;  // the exit status; 128 + the number of the signal that ended the process
  std::string out, err;
};

// A started kvrctl. It gets no more than a page of errors ahead of who reads them here; its
// output goes to a file. The destructor waits for its end.
class Process {
 public:
  // The words of the command have no blanks.
  explicit Process(const std::string &command) {
    std::istringstream stream(command);
    std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
    fcntl(ends[0], F_SETPIPE_SZ, 4096);
    std::vector<char *> argv = {const_cast<char *>(KVRCTL_PATH)};
    for (std::string &word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
      dup2(fileno(out_), STDOUT_FILENO);
      dup2(ends[1], STDERR_FILENO);
      execv(KVRCTL_PATH, argv.data());
      _exit(127);
    }
    close(ends[1]);
    err_ = fdopen(ends[0], "r");
  }
  Process(const Process &) = delete;
  ~Process() {
    if (pid_ > 0) Finish();
    std::fclose(out_);
    std::fclose(err_);
  }

  // Reads standard error up to this text; false when it ended before.
  bool ReadErrorsUntil(const std::string &text) { return Read(err_, text).ends_with(text); }

  void Kill() { kill(pid_, SIGKILL); }

  // Reads both streams to their end and waits.
  Result Finish() {
    Result result{-1, "", Read(err_)};
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    std::rewind(out_);
    result.out = Read(out_);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
  }

 private:
  // Up to this text; without one to the end.
  static std::string Read(std::FILE *stream, const std::string &until = "") {
    std::string text;
    for (int c; (until.empty() || !text.ends_with(until)) && (c = std::getc(stream)) != EOF;)
      text += static_cast<char>(c);
    return text;
  }

  std::FILE *out_ = std::tmpfile();
  std::FILE *err_;
  int pid_;
};
