// kvrctl: one run is one process that plays one host. It reads the command line, runs the one
// command chosen and renders its outcome.
#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "arguments.h"
#include "command.h"
#include "exit_status.h"
#include "platform.h"
#include "render.h"

namespace {

using namespace kvrctl;

struct Globals {
  std::string fabric;
  std::string host;
  std::string output = "text";
  bool trace = false;
};

void AddGlobalOptions(CLI::App &app, Globals &globals) {
  app.fallthrough();
  app.require_subcommand(1);
  app.set_version_flag("--version", "kvrctl " KVRCTL_VERSION);
  app.add_option("--fabric", globals.fabric, "The simulated network's folder (KVR_FABRIC)");
  app.add_option("--host", globals.host, "The host that this run plays (KVR_HOST)");
  app.add_option("--output", globals.output, "text, or json: one object on standard output")
      ->check(CLI::IsMember({"text", "json"}))
      ->capture_default_str();
  app.add_flag("--trace", globals.trace, "Print every call to the outside libraries (KVR_TRACE)");
  app.footer(kExitStatusHelp);
}

// The libraries read their settings from the environment when they are first called.
void ApplyGlobals(const Globals &globals) {
  if (!globals.fabric.empty()) SetEnvironment("KVR_FABRIC", globals.fabric);
  if (!globals.host.empty()) SetEnvironment("KVR_HOST", globals.host);
  if (globals.trace) SetEnvironment("KVR_TRACE", "1");
}

// The form asked for, found without the parser: its refusals come in that form too.
Form FormIn(const std::vector<std::string> &arguments) {
  const auto split = std::adjacent_find(
      arguments.begin(), arguments.end(),
      [](const std::string &a, const std::string &b) { return a == "--output" && b == "json"; });
  const bool joined =
      std::find(arguments.begin(), arguments.end(), "--output=json") != arguments.end();
  return split != arguments.end() || joined ? Form::ForPrograms : Form::ForPeople;
}

// The words of the command as far as they were recognized.
std::string WordsRead(const CLI::App &app) {
  std::string words;
  for (const CLI::App *at = &app; !at->get_subcommands().empty();) {
    at = at->get_subcommands().front();
    words += (words.empty() ? "" : " ") + at->get_name();
  }
  return words;
}

// Why the line is refused: a word that nothing takes is named before something that is missing.
std::string Fault(const CLI::App &app, const CLI::ParseError &error) {
  const std::vector<std::string> strange = app.remaining(true);
  if (!strange.empty()) return fmt::format("'{}' has no place here", Unmarked(strange.front()));
  return error.what();
}

ExitStatus RefuseLine(const CLI::App &app, const CLI::ParseError &error, Form form) {
  const std::string words = WordsRead(app);
  const std::string help = words.empty() ? "kvrctl --help" : "kvrctl " + words + " --help";
  return Render(form, words,
                Failure(ExitStatus::Usage, "USAGE",
                        fmt::format("The command line is not understood: {}.", Fault(app, error)),
                        fmt::format("`{}` lists what is.", help)));
}

ExitStatus RunChosen(const Chosen &chosen, Form form) {
  try {
    return Render(form, chosen.name, chosen.run());
  } catch (const Failure &failure) {
    return Render(form, chosen.name, failure);
  } catch (const std::exception &error) {
    return Render(form, chosen.name,
                  Failure(ExitStatus::NothingToTalkTo, "SYSTEM",
                          fmt::format("The command could not be run: {}.", error.what()),
                          "Check the folder, its permissions and the space left, and repeat."));
  }
}

int Run(int argc, char **argv) {
  PrepareOutput();
  const std::vector<std::string> arguments = CommandLine(argc, argv);
  const Form form = FormIn(arguments);
  CLI::App app{"Manages one security configuration among the hosts of a storage network.",
               "kvrctl"};
  Globals globals;
  Chosen chosen;
  AddGlobalOptions(app, globals);
  AddFabricCommands(app, chosen);
  AddStatusCommands(app, chosen);
  AddHostsCommand(app, chosen);
  AddTreeCommand(app, chosen);
  AddConfigurationCommands(app, chosen);
  AddAcgCommands(app, chosen);
  AddGroupCommands(app, chosen);
  AddBackupCommands(app, chosen);
  AddSuccessionCommands(app, chosen);
  AddSwitchAccessCommand(app, chosen);
  AddKeyCommands(app, chosen);
  UnmarkValues(app);
  try {
    std::vector<std::string> marked = Marked(arguments);
    std::reverse(marked.begin(), marked.end());  // as the parser takes them
    app.parse(std::move(marked));
  } catch (const CLI::Success &request) {
    return app.exit(request);
  } catch (const CLI::ParseError &error) {
    return static_cast<int>(RefuseLine(app, error, form));
  }
  ApplyGlobals(globals);
  return static_cast<int>(RunChosen(chosen, form));
}

}  // namespace

// What fails before or behind a command, memory that runs out among it, has no form to be told in.
int main(int argc, char **argv) {
  try {
    return Run(argc, argv);
  } catch (...) {
    std::fputs("kvrctl: the run broke off for want of memory or of its output; repeat it.\n",
               stderr);
    return static_cast<int>(ExitStatus::NothingToTalkTo);
  }
}
