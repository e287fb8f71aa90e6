// The few things that kvrctl asks of the operating system itself; each has its own .cpp.
#pragma once

#include <string>
#include <vector>

namespace kvrctl {

// The words of the command line behind the program's name, in UTF-8 wherever the system knows them
// so.
std::vector<std::string> CommandLine(int argc, char **argv);

// Lets a terminal take what is printed as UTF-8, and files take it unchanged.
void PrepareOutput();

// Sets a variable of this process's environment, so that the libraries it loads see it.
void SetEnvironment(const char *name, const std::string &value);

}  // namespace kvrctl
