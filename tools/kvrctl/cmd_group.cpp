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
       R"({"path","client","asked","granted","done":[…]}, "done" with --server)", Effect::Changes,
       false,
       "The client of a group below another must serve that one first. Where fewer slots are free "
       "than --reserve asks for, the group gets those: `granted` says how many.",
       "group create sales/north --client web-0003 --reserve 2 --server web-0004"},
      commands, [asked] { return CreateGroup(*asked); });
  create->add_option("PATH", asked->path, "The new group below its parents, as sales/north")
      ->required();
  create->add_option("--client", asked->client, "The host that becomes its client")
      ->required()
      ->type_name("HOST");
  create->add_option("--reserve", asked->reserve, "Slots set aside for groups below it")
      ->capture_default_str();
  create->add_option("--server", asked->servers, "Hosts that serve its client")->type_name("HOST");
}

void AddDelete(CLI::App &group, Commands &commands) {
  const auto [command, asked] = AddGroupCommand(
      group, commands,
      {"delete", "Take a group's servers out and delete it", R"({"path","deleted","done":[…]})",
       Effect::Destroys, false,
       "While a server cannot be taken out, the group stays, and the same command goes on from "
       "there. `done` are the servers taken out. --force is for clients that are gone for good.",
       "group delete sales/north"},
      [&consent = commands.consent](const GroupArguments &named) {
        return DeleteGroup(named.path, named.force, consent);
      });
  command->add_flag("--force", asked->force,
                    "Although hosts that were not found hold slots below it");
}

void AddServerCommands(CLI::App &group, Commands &commands) {
  const auto [add, added] = AddGroupCommand(
      group, commands,
      {"add-server", "Let hosts serve a group's client", R"({"done":[…]})", Effect::Changes, false,
       "", "group add-server sales web-0003 web-0004"},
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
      {"rename", "Give a group another name", R"({"path","name","new_path"})", Effect::Changes,
       false, "The hosts are discovered once more to see whether the name was stored.",
       "group rename sales/north south"},
      [](const GroupArguments &asked) { return RenameGroup(asked.path, asked.word); });
  rename->add_option("NAME", renamed->word, "The new name, as it is: no path")->required();
  const auto [reserve, sized] = AddGroupCommand(
      group, commands,
      {"set-reserve", "Change how many slots are set aside for groups below",
       R"({"path","asked","granted"})", Effect::Changes, false,
       "Where fewer are free, the group gets those: `granted` says how many it has.",
       "group set-reserve sales 10"},
      [](const GroupArguments &asked) { return SetReserve(asked.path, asked.slots); });
  reserve->add_option("N", sized->slots, "The number of slots in all")->required();
  const auto [client, handed] = AddGroupCommand(
      group, commands,
      {"set-client", "Hand a group, with those below it, to another client",
       R"({"path","client","former_client"})", Effect::Changes, false,
       "Its slot, its reserve and the groups below go with it.",
       "group set-client sales/north web-0004"},
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
             {"list", "List all groups", R"([{"path","client","offline","servers","children"}])",
              Effect::Reads, false, "`servers` and `children` are numbers."},
             commands, ListGroups);
  AddGroupCommand(*group, commands,
                  {"show", "Show one group",
                   R"({"name","path","client","offline","slot","free","used","servers":[…],)"
                   R"("available":[…],"children":[…]})",
                   Effect::Reads, false, "`available` is null on a backup MSC, which may not know.",
                   "group show @web-0002"},
                  [](const GroupArguments &asked) { return ShowGroup(asked.path); });
  AddGroupCommand(
      *group, commands,
      {"available", "List the hosts that could be added as servers", R"([{"name","wide_name"}])",
       Effect::Reads, false, "Refused on a backup MSC, which may not know."},
      [](const GroupArguments &asked) { return ListAvailable(asked.path); });
}

}  // namespace kvrctl
