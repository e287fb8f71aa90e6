#include <stdlib.h>

#include "platform.h"

namespace kvrctl {

std::vector<std::string> CommandLine(int argc, char **argv) {
  return {argv + 1, argv + argc};
}

void PrepareOutput() {}

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
