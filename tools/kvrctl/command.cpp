#include "command.h"

#include <utility>

namespace kvrctl {

ExitStatus StatusOf(const Outcome &outcome) {
  if (outcome.failure) return outcome.failure->status;
  return outcome.unhealthy ? ExitStatus::Unhealthy : ExitStatus::Done;
}

CLI::App *AddCommand(CLI::App &parent, const Description &description, Commands &commands,
                     std::function<Outcome()> run) {
  const std::string family = parent.get_parent() == nullptr ? "" : parent.get_name() + ' ';
  CLI::App *command = parent.add_subcommand(description.name, description.summary);
  const Description *described = &(commands.described[command] = description);
  command->callback(
      [&commands, described, words = family + description.name, run = std::move(run)] {
        commands.chosen = {words, described, run};
      });
  if (description.effect != Effect::Reads) {
    command->add_flag("--dry-run", commands.consent.dryRun,
                      "Write nothing; tell which tables of which hosts would be written "
                      "(simulated network only)");
  }
  if (description.effect == Effect::Destroys) {
    command->add_flag("--yes", commands.consent.yes, "Do not ask for confirmation");
  }
  return command;
}

CLI::App *AddFamily(CLI::App &parent, const std::string &name, const std::string &description) {
  return parent.add_subcommand(name, description)->require_subcommand(1);
}

}  // namespace kvrctl
