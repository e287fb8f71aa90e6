#include "process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdexcept>
#include <unistd.h>

#include <sys/wait.h>

namespace {

struct Pipe {
  int read = -1;
  int write = -1;
};

Pipe MakePipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  fcntl(ends[0], F_SETPIPE_SZ, 4096);
  return {ends[0], ends[1]};
}

// Appends what the stream has to give; false at its end.
bool ReadSome(int stream, std::string &text) {
  char buffer[4096];
  const ssize_t count = read(stream, buffer, sizeof buffer);
  if (count <= 0) return false;
  text.append(buffer, static_cast<std::size_t>(count));
  return true;
}

int Count(const std::string &text, const std::string &part) {
  int count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

}  // namespace

Process::Process(const std::vector<std::string> &arguments) {
  const Pipe out = MakePipe();
  const Pipe err = MakePipe();
  std::vector<char *> argv = {const_cast<char *>(KVRCTL_PATH)};
  for (const std::string &argument : arguments)
    argv.push_back(const_cast<char *>(argument.c_str()));
  argv.push_back(nullptr);
  pid_ = fork();
  if (pid_ == 0) {
    dup2(out.write, STDOUT_FILENO);
    dup2(err.write, STDERR_FILENO);
    execv(KVRCTL_PATH, argv.data());
    _exit(127);
  }
  close(out.write);
  close(err.write);
  out_ = out.read;
  err_ = err.read;
}

Process::~Process() {
  Kill();
  Finish();
  close(out_);
  close(err_);
}

Result Process::Finish() {
  Result result{-1, "", errSoFar_};
  pollfd streams[] = {{out_, POLLIN, 0}, {err_, POLLIN, 0}};
  while (streams[0].fd >= 0 || streams[1].fd >= 0) {
    poll(streams, 2, -1);
    if (streams[0].revents != 0 && !ReadSome(out_, result.out)) streams[0].fd = -1;
    if (streams[1].revents != 0 && !ReadSome(err_, result.err)) streams[1].fd = -1;
  }
  if (pid_ <= 0) return result;
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

bool Process::ReadErrorsUntil(const std::string &text, int times) {
  while (Count(errSoFar_, text) < times) {
    if (!ReadSome(err_, errSoFar_)) return false;
  }
  return true;
}

void Process::Kill() {
  if (pid_ > 0) kill(pid_, SIGKILL);
}
