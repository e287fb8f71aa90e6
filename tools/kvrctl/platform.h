// The few things that kvrctl asks of the operating system itself.
#pragma once

#include <optional>
#include <string>

namespace kvrctl {

// Sets a variable of this process's environment, so that the libraries it loads see it.
void SetEnvironment(const char *name, const std::string &value);

// The value of an environment variable; none where it is absent or empty.
std::optional<std::string> Environment(const char *name);

}  // namespace kvrctl
