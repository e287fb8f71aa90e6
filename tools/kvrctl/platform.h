// The few things that kvrctl asks of the operating system itself; each has its own .cpp.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvrctl {

// The words of the command line behind the program's name, in UTF-8 wherever the system knows them
// so.
std::vector<std::string> CommandLine(int argc, char **argv);

// Lets a terminal take what is printed as UTF-8, and files take it unchanged.
void PrepareOutput();

// The ASCII characters beside letters and digits that mean nothing to the system's shell.
extern const std::string_view kPlainInShell;

// A word in quotes, as the system's shell takes it for one.
std::string QuotedForShell(const std::string &word);

// Sets a variable of this process's environment, so that the libraries it loads see it.
void SetEnvironment(const char *name, const std::string &value);

}  // namespace kvrctl
