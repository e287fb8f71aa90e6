// The command line: everything that may be said, and what one line of it chose.
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "command.h"

namespace kvrctl {

// What may be said beside a command.
struct Globals {
  std::string fabric;
  std::string host;
  std::string output = "text";
  bool trace = false;
};

class CommandLine {
 public:
  // In a batch the options beside the command have been given for all lines.
  enum class Place { Shell, Batch };

  explicit CommandLine(Place place);
  CommandLine(const CommandLine &) = delete;
  CommandLine &operator=(const CommandLine &) = delete;

  // Reads the words. Throws CLI::Success where only help or the version was asked for, Failure
  // where the line is not understood.
  void Read(const std::vector<std::string> &words);

  // The words of the command as far as they were recognized.
  [[nodiscard]] std::string WordsRead() const;

  CLI::App app;
  Globals globals;
  Commands commands;
};

// Runs the command chosen; whatever stops it is the outcome's failure.
Outcome Run(const Chosen &chosen);

}  // namespace kvrctl
