#include "platform.h"

#include <stdlib.h>

namespace kvrctl {

void SetEnvironment(const char *name, const std::string &value) {
#if defined(_WIN32)
  _putenv_s(name, value.c_str());
#else
  setenv(name, value.c_str(), 1);
#endif
}

std::optional<std::string> Environment(const char *name) {
  const char *value = getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return std::string(value);
}

}  // namespace kvrctl
