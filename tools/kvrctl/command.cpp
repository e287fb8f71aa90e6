#include "command.h"

#include <utility>

namespace kvrctl {

CLI::App *AddCommand(CLI::App &parent, const std::string &name, const std::string &description,
                     Chosen &chosen, std::function<Outcome()> run) {
  const std::string family = parent.get_parent() == nullptr ? "" : parent.get_name() + ' ';
  CLI::App *command = parent.add_subcommand(name, description);
  command->callback([&chosen, words = family + name, run = std::move(run)] {
    chosen = {words, run};
  });
  return command;
}

CLI::App *AddFamily(CLI::App &parent, const std::string &name, const std::string &description) {
  return parent.add_subcommand(name, description)->require_subcommand(1);
}

}  // namespace kvrctl
