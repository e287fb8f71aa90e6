#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include <sys/wait.h>

#include "support/process.h"

void Process::Start(const std::vector<std::string> &words) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
  fcntl(ends[0], F_SETPIPE_SZ, 4096);
  out_ = std::tmpfile();
  std::vector<char *> argv;
  for (const std::string &word : words) argv.push_back(const_cast<char *>(word.c_str()));
  argv.push_back(nullptr);
  id_ = fork();
  if (id_ == 0) {
    dup2(fileno(out_), STDOUT_FILENO);
    dup2(ends[1], STDERR_FILENO);
    execv(argv[0], argv.data());
    _exit(127);
  }
  close(ends[1]);
  err_ = fdopen(ends[0], "r");
}

void Process::Kill() const { kill(static_cast<pid_t>(id_), SIGKILL); }

int Process::Wait() {
  int status = 0;
  waitpid(static_cast<pid_t>(id_), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int RunInShell(const std::string &line) {
  const int status = std::system((line + " >/dev/null 2>&1").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void SetVariable(const char *name, const std::string &value) { setenv(name, value.c_str(), 1); }
