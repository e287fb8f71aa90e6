// What a command is made of: the words by which the command line chooses it, and the outcome that
// it hands back for rendering.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "failure.h"
#include "show.h"

namespace kvrctl {

struct Outcome {
  Json result;                     // the facts; null where nothing was done
  std::string text;                // the same facts in whole lines
  std::vector<std::string> notes;  // sentences beside them: what the reader should know
  std::optional<Failure> failure;  // set when the result is only a part of what was asked
};

// The command that the command line chose.
struct Chosen {
  std::string name;  // its words, as "group create"
  std::function<Outcome()> run;
};

// Adds the command called name below parent; when the command line names it, it is put into chosen.
// run is called after the whole line has been read, and may throw Failure.
CLI::App *AddCommand(CLI::App &parent, const std::string &name, const std::string &description,
                     Chosen &chosen, std::function<Outcome()> run);

// Adds a word that only groups commands.
CLI::App *AddFamily(CLI::App &parent, const std::string &name, const std::string &description);

void AddFabricCommands(CLI::App &app, Chosen &chosen);
void AddStatusCommands(CLI::App &app, Chosen &chosen);
void AddHostsCommand(CLI::App &app, Chosen &chosen);
void AddTreeCommand(CLI::App &app, Chosen &chosen);
void AddConfigurationCommands(CLI::App &app, Chosen &chosen);
void AddAcgCommands(CLI::App &app, Chosen &chosen);
void AddGroupCommands(CLI::App &app, Chosen &chosen);
void AddBackupCommands(CLI::App &app, Chosen &chosen);
void AddSuccessionCommands(CLI::App &app, Chosen &chosen);
void AddSwitchAccessCommand(CLI::App &app, Chosen &chosen);
void AddKeyCommands(CLI::App &app, Chosen &chosen);

}  // namespace kvrctl
