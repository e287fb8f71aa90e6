#include "command_line.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "arguments.h"
#include "option_words.h"

namespace kvrctl {
namespace {

std::string ExitStatusText() {
  std::string text = "Exit status:";
  for (const StatusMeaning &one : kStatusMeanings)
    text += fmt::format("\n  {}  {}", static_cast<int>(one.status), one.meaning);
  return text;
}

void AddGlobalOptions(CLI::App &app, Globals &globals) {
  app.set_version_flag("--version", "kvrctl " KVRCTL_VERSION);
  app.add_option("--fabric", globals.fabric, "The simulated network's folder (KVR_FABRIC)")
      ->type_name("DIR");
  app.add_option("--host", globals.host, "The host that this run plays (KVR_HOST)");
  app.add_option("--output", globals.output, "text, or json: one object on standard output")
      ->check(CLI::IsMember({"text", "json"}))
      ->capture_default_str();
  app.add_flag("--trace", globals.trace, "Print every call to the outside libraries (KVR_TRACE)");
  app.footer(ExitStatusText());
}

// Why the line is refused: a word that nothing takes is named before something that is missing.
std::string Fault(const CLI::App &app, const CLI::ParseError &error) {
  const std::vector<std::string> strange = app.remaining(true);
  if (!strange.empty()) return fmt::format("'{}' has no place here", Unmarked(strange.front()));
  return error.what();
}

}  // namespace

CommandLine::CommandLine(Place place)
    : app("Manages one security configuration among the hosts of a storage network.", "kvrctl") {
  const auto formatter = std::make_shared<HelpFormatter>();
  formatter->label("Positionals", "Arguments");
  app.formatter(formatter);
  app.fallthrough();
  app.require_subcommand(1);
  if (place == Place::Shell) AddGlobalOptions(app, globals);
  AddFabricCommands(app, commands);
  AddStatusCommands(app, commands);
  AddHostsCommand(app, commands);
  AddTreeCommand(app, commands);
  AddConfigurationCommands(app, commands);
  AddAcgCommands(app, commands);
  AddGroupCommands(app, commands);
  AddBackupCommands(app, commands);
  AddSuccessionCommands(app, commands);
  AddPermissionCommands(app, commands);
  AddSwitchAccessCommand(app, commands);
  AddKeyCommands(app, commands);
  AddDoctorCommand(app, commands);
  AddTableCommands(app, commands);
  AddBatchCommand(app, commands);
  AddHelpCommand(app, commands);
  AddCompleteCommand(app, commands);
  UnmarkValues(app);
}

void CommandLine::Read(const std::vector<std::string> &words) {
  std::vector<std::string> marked = Marked(words);
  std::reverse(marked.begin(), marked.end());  // as the parser takes them
  try {
    app.parse(std::move(marked));
  } catch (const CLI::Success &) {
    throw;
  } catch (const CLI::ParseError &error) {
    const std::string read = WordsRead();
    const std::string help = read.empty() ? "kvrctl --help" : "kvrctl " + read + " --help";
    throw Failure(ExitStatus::Usage, "USAGE",
                  fmt::format("The command line is not understood: {}.", Fault(app, error)),
                  fmt::format("`{}` lists what is.", help));
  }
}

std::string CommandLine::WordsRead() const {
  std::string words;
  for (const CLI::App *at = &app; !at->get_subcommands().empty();) {
    at = at->get_subcommands().front();
    words += (words.empty() ? "" : " ") + at->get_name();
  }
  return words;
}

Outcome Run(const Chosen &chosen) {
  Outcome outcome{Json()};
  try {
    return chosen.run();
  } catch (const Failure &failure) {
    outcome.failure = failure;
  } catch (const kvrapi::Error &error) {
    outcome.failure = Failure("The command", error.Code());
  } catch (const std::exception &error) {
    outcome.failure = Failure(ExitStatus::NothingToTalkTo, "SYSTEM",
                              fmt::format("The command could not be run: {}.", error.what()),
                              "Check the folder, its permissions and the space left, and repeat.");
  }
  return outcome;
}

}  // namespace kvrctl
