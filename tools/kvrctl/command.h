// What a command is made of: the words by which the command line chooses it, what is told about it,
// and the outcome that it hands back for rendering.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "consent.h"
#include "failure.h"
#include "show.h"

namespace kvrctl {

struct Outcome {
  Json result;                          // the facts; null where nothing was done
  Drawing draw = {};                    // the same facts as text; empty where there is no result
  std::vector<std::string> notes = {};  // sentences beside them: what the reader should know
  std::optional<Failure> failure = {};  // set when the result is only a part of what was asked
  bool unhealthy = false;               // done, and something unhealthy was found
};

// The exit status that an outcome leads to.
ExitStatus StatusOf(const Outcome &outcome);

// What a command may do to the tables of the hosts.
enum class Effect {
  Reads,
  Changes,   // takes --dry-run
  Destroys,  // may sweep or destroy: takes --yes too, and asks where it isn't given
};

// What is told about a command beside its options.
struct Description {
  std::string name;     // its last word
  std::string summary;  // one line
  std::string result;   // the shape of its result in JSON
  Effect effect = Effect::Reads;
  bool alone = false;        // has no place in a batch: what it changes is seen by the next run
  std::string details = {};  // sentences for the reference, beyond the summary
  std::string example = {};  // one line as it would be typed, without "kvrctl"
};

// The command that the command line chose.
struct Chosen {
  std::string name;  // its words, as "group create"
  const Description *description = nullptr;
  std::function<Outcome()> run;
};

// Takes a part of a command's text before its end; empty where the answer comes as a whole.
using Listener = std::function<void(const std::string &text)>;

// What the command line may say, and what it said. Stays where it is: the commands refer to it.
struct Commands {
  std::map<const CLI::App *, Description> described;
  Chosen chosen;
  Consent consent;
  Listener listener;
};

// Adds a command below parent; when the command line names it, it is chosen. run is called after
// the whole line has been read, and may throw Failure.
CLI::App *AddCommand(CLI::App &parent, const Description &description, Commands &commands,
                     std::function<Outcome()> run);

// Adds a word that only groups commands.
CLI::App *AddFamily(CLI::App &parent, const std::string &name, const std::string &description);

void AddFabricCommands(CLI::App &app, Commands &commands);
void AddStatusCommands(CLI::App &app, Commands &commands);
void AddHostsCommand(CLI::App &app, Commands &commands);
void AddTreeCommand(CLI::App &app, Commands &commands);
void AddConfigurationCommands(CLI::App &app, Commands &commands);
void AddAcgCommands(CLI::App &app, Commands &commands);
void AddGroupCommands(CLI::App &app, Commands &commands);
void AddBackupCommands(CLI::App &app, Commands &commands);
void AddSuccessionCommands(CLI::App &app, Commands &commands);
void AddPermissionCommands(CLI::App &app, Commands &commands);
void AddSwitchAccessCommand(CLI::App &app, Commands &commands);
void AddKeyCommands(CLI::App &app, Commands &commands);
void AddDoctorCommand(CLI::App &app, Commands &commands);
void AddTableCommands(CLI::App &app, Commands &commands);
void AddBatchCommand(CLI::App &app, Commands &commands);
void AddHelpCommand(CLI::App &app, Commands &commands);
void AddCompleteCommand(CLI::App &app, Commands &commands);

}  // namespace kvrctl
