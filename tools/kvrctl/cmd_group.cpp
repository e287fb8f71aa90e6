// `kvrctl group`: the words by which groups are shown, made, changed and deleted.
#include <functional>
#include <memory>
#include <utility>

#include "command.h"
#include "group_changes.h"
#include "group_lifetime.h"
#include "group_views.h"

namespace kvrctl {
namespace {

constexpr char kPathHelp[] = "The group, as sales/north, or @HOST by its client";

// What the commands for one group take beside its path; each uses its part.
struct GroupArguments {
  std::string path;
  std::vector<std::string> hosts;
  std::string word;  // a new name, or one host
  std::uint32_t slots = 0;
  bool force = false;
};

// Adds a command for the group at PATH; its other arguments are put into the second of what is
// returned.
std::pair<CLI::App *, std::shared_ptr<GroupArguments>> AddGroupCommand(
    CLI::App &family, Commands &commands, const Description &description,
    const std::function<Outcome(const GroupArguments &)> &run) {
  auto arguments = std::make_shared<GroupArguments>();
  CLI::App *command =
      AddCommand(family, description, commands, [arguments, run] { return run(*arguments); });
  command->add_option("PATH", arguments->path, kPathHelp)->required();
  return {command, arguments};
}

void AddCreate(CLI::App &group, Commands &commands) {
  const auto asked = std::make_shared<GroupRequest>();
  CLI::App *create = AddCommand(
      group,
      {"create", "Create a group",
       R"({"path","client","asked","granted","done":[…]}, "done" with --server)", Effect::Changes},
      commands, [asked] { return CreateGroup(*asked); });
  create->add_option("PATH", asked->path, "The new group below its parents, as sales/north")
      ->required();
  create->add_option("--client", asked->client, "The host that becomes its client")->required();
  create->add_option("--reserve", asked->reserve, "Slots set aside for groups below it")
      ->capture_default_str();
  create->add_option("--server", asked->servers, "Hosts that serve its client");
}

void AddDelete(CLI::App &group, Commands &commands) {
  const auto [command, asked] =
      AddGroupCommand(group, commands,
                      {"delete", "Take a group's servers out and delete it",
                       R"({"path","deleted","done":[…]})", Effect::Destroys},
                      [&consent = commands.consent](const GroupArguments &named) {
                        return DeleteGroup(named.path, named.force, consent);
                      });
  command->add_flag("--force", asked->force,
                    "Although hosts that were not found hold slots below it");
}

void AddServerCommands(CLI::App &group, Commands &commands) {
  const auto [add, added] = AddGroupCommand(
      group, commands,
      {"add-server", "Let hosts serve a group's client", R"({"done":[…]})", Effect::Changes},
      [](const GroupArguments &asked) { return AddServers(asked.path, asked.hosts); });
  add->add_option("HOST", added->hosts, "The hosts")->required();
  const auto [remove, removed] = AddGroupCommand(
      group, commands,
      {"remove-server", "End hosts' service to a group's client", R"({"done":[…]})",
       Effect::Changes},
      [](const GroupArguments &asked) { return RemoveServers(asked.path, asked.hosts); });
  remove->add_option("HOST", removed->hosts, "The hosts")->required();
}

void AddChanges(CLI::App &group, Commands &commands) {
  const auto [rename, renamed] = AddGroupCommand(
      group, commands,
      {"rename", "Give a group another name", R"({"path","name","new_path"})", Effect::Changes},
      [](const GroupArguments &asked) { return RenameGroup(asked.path, asked.word); });
  rename->add_option("NAME", renamed->word, "The new name, as it is: no path")->required();
  const auto [reserve, sized] = AddGroupCommand(
      group, commands,
      {"set-reserve", "Change how many slots are set aside for groups below",
       R"({"path","asked","granted"})", Effect::Changes},
      [](const GroupArguments &asked) { return SetReserve(asked.path, asked.slots); });
  reserve->add_option("N", sized->slots, "The number of slots in all")->required();
  const auto [client, handed] = AddGroupCommand(
      group, commands,
      {"set-client", "Hand a group, with those below it, to another client",
       R"({"path","client","former_client"})", Effect::Changes},
      [](const GroupArguments &asked) { return SetClient(asked.path, asked.word); });
  client->add_option("HOST", handed->word, "The host that becomes its client")->required();
}

}  // namespace

void AddGroupCommands(CLI::App &app, Commands &commands) {
  CLI::App *group = AddFamily(app, "group", "Show and change groups");
  AddCreate(*group, commands);
  AddDelete(*group, commands);
  AddServerCommands(*group, commands);
  AddChanges(*group, commands);
  AddCommand(*group,
             {"list", "List all groups", R"([{"path","client","offline","servers","children"}])"},
             commands, ListGroups);
  AddGroupCommand(
      *group, commands,
      {"show", "Show one group",
       R"({"name","path","client","offline","slot","free","used","servers":[…],"available":[…],"children":[…]})"},
      [](const GroupArguments &asked) { return ShowGroup(asked.path); });
  AddGroupCommand(
      *group, commands,
      {"available", "List the hosts that could be added as servers", R"([{"name","wide_name"}])"},
      [](const GroupArguments &asked) { return ListAvailable(asked.path); });
}

}  // namespace kvrctl
