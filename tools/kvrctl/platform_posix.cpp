#include <stdlib.h>
#include <unistd.h>

#include <sys/ioctl.h>

#include "platform.h"

namespace kvrctl {
namespace {

constexpr std::size_t kUsualWidth = 80;

}  // namespace

std::vector<std::string> ProgramArguments(int argc, char **argv) {
  return {argv + 1, argv + argc};
}

void PrepareOutput() {}

bool IsTerminal(std::FILE *stream) {
  return isatty(fileno(stream)) == 1;
}

std::size_t TerminalWidth(std::FILE *stream) {
  winsize size{};
  const bool told = ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return told ? size.ws_col : kUsualWidth;
}

bool EnableColor(std::FILE * /*stream*/) {
  return true;
}

const std::string_view kPlainInShell = "-_./@:,+=%";

std::string QuotedForShell(const std::string &word) {
  std::string quoted = "'";
  for (const char c : word)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

void SetEnvironment(const char *name, const std::string &value) {
  setenv(name, value.c_str(), 1);
}

}  // namespace kvrctl
