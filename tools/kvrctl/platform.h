// The few things that kvrctl asks of the operating system itself; each has its own .cpp.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kvrctl {

// The words of the command line behind the program's name, in UTF-8 wherever the system knows them
// so.
std::vector<std::string> ProgramArguments(int argc, char **argv);

// Lets a terminal take what is printed as UTF-8, and files take it unchanged.
void PrepareOutput();

// True when the stream is a terminal.
bool IsTerminal(std::FILE *stream);

// The columns of the terminal that the stream is; 80 where it does not tell.
std::size_t TerminalWidth(std::FILE *stream);

// Lets the terminal that the stream is take colours until the process ends; false where it cannot.
bool EnableColor(std::FILE *stream);

// The ASCII characters beside letters and digits that mean nothing to the system's shell.
extern const std::string_view kPlainInShell;

// A word in quotes, as the system's shell takes it for one.
std::string QuotedForShell(const std::string &word);

// Sets a variable of this process's environment, so that the libraries it loads see it.
void SetEnvironment(const char *name, const std::string &value);

}  // namespace kvrctl
