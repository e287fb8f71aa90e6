#include "platform.h"

#include <stdlib.h>

namespace kvrctl {

std::vector<std::string> CommandLine(int argc, char **argv) {
  return {argv + 1, argv + argc};
}

void PrepareOutput() {}

void SetEnvironment(const char *name, const std::string &value) {
  setenv(name, value.c_str(), 1);
}

}  // namespace kvrctl
