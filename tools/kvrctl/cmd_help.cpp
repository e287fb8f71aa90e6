// `kvrctl help`: what can be said, for people and for programs.
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "command.h"
#include "description.h"

namespace kvrctl {
namespace {

struct HelpRequest {
  Words words;
  bool json = false;
};

Outcome Help(const CLI::App &app, const Commands &commands, const HelpRequest &asked) {
  const CLI::App *about = Below(app, asked.words);
  const std::string name = fmt::format("{}", fmt::join(asked.words, " "));
  if (about == nullptr) {
    throw Failure(ExitStatus::Usage, "USAGE", fmt::format("There is no command '{}'.", name),
                  "`kvrctl help` lists the commands.");
  }
  Outcome outcome{Json()};
  outcome.result = DescriptionOf(app, commands, asked.words);
  if (asked.json) {
    outcome.draw = [](const Json &result, const Screen &) { return result.dump(2) + '\n'; };
    return outcome;
  }
  std::string text = about->get_formatter()->make_help(
      about, name.empty() ? app.get_name() : app.get_name() + ' ' + name,
      CLI::AppFormatMode::Normal);
  outcome.draw = [text = std::move(text)](const Json &, const Screen &) { return text; };
  return outcome;
}

}  // namespace

void AddHelpCommand(CLI::App &app, Commands &commands) {
  const auto asked = std::make_shared<HelpRequest>();
  const Description description = {
      "help",
      "Tell what a command, a family of commands or the whole program takes",
      R"({"program","version","summary","options":[…],"exit_statuses":[…],"failures":[…],)"
      R"("environment":[…],"families":[…],"commands":[…]})",
      Effect::Reads,
      true,
      "It needs no network. The object tells of all commands, or of those asked for only, and is "
      "what this reference, the manual pages and the completions are made from.",
      "help group create"};
  CLI::App *help = AddCommand(app, description, commands,
                              [asked, &app, &commands] { return Help(app, commands, *asked); });
  help->add_option("COMMAND", asked->words, "The words of the command; else the whole program");
  help->add_flag("--json", asked->json, "As one bare JSON object");
}

}  // namespace kvrctl
