// kvrctl: one run is one process that plays one host. It reads the command line, runs the one
// command chosen and renders its outcome.
#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "command_line.h"
#include "dry_run.h"
#include "exit_status.h"
#include "platform.h"
#include "render.h"

namespace {

using namespace kvrctl;

// The libraries read their settings from the environment when they are first called.
void ApplyGlobals(const Globals &globals) {
  if (!globals.fabric.empty()) SetEnvironment("KVR_FABRIC", globals.fabric);
  if (!globals.host.empty()) SetEnvironment("KVR_HOST", globals.host);
  if (globals.trace) SetEnvironment("KVR_TRACE", "1");
}

// The form asked for, found without the parser: its refusals come in that form too.
Form FormIn(const std::vector<std::string> &arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");  // no option behind it
  const auto split = std::adjacent_find(
      arguments.begin(), end,
      [](const std::string &a, const std::string &b) { return a == "--output" && b == "json"; });
  const bool joined = std::find(arguments.begin(), end, "--output=json") != end;
  return split != end || joined ? Form::ForPrograms : Form::ForPeople;
}

Outcome RunChosen(const Commands &commands) {
  if (!commands.consent.dryRun) return Run(commands.chosen);
  std::optional<DryRun> dryRun;
  try {
    dryRun.emplace();
  } catch (const std::exception &) {
    Outcome outcome{Json()};
    outcome.failure = Failure(ExitStatus::NothingToTalkTo, "SYSTEM",
                              "A dry run needs a folder for temporary files, and there is none.",
                              "Set TMPDIR to a folder that can be written to.");
    return outcome;
  }
  return dryRun->Reported(Run(commands.chosen));
}

int Run(int argc, char **argv) {
  PrepareOutput();
  const std::vector<std::string> arguments = ProgramArguments(argc, argv);
  const Form form = FormIn(arguments);
  CommandLine line(CommandLine::Place::Shell);
  try {
    line.Read(arguments);
  } catch (const CLI::Success &request) {
    return line.app.exit(request);
  } catch (const Failure &refusal) {
    return static_cast<int>(Render(form, line.WordsRead(), refusal));
  }
  ApplyGlobals(line.globals);
  if (form == Form::ForPeople && !line.commands.consent.dryRun)
    line.commands.listener = WriteBeforehand;
  return static_cast<int>(Render(form, line.commands.chosen.name, RunChosen(line.commands)));
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
