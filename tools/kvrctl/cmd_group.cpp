// `kvrctl group`: making groups and giving them servers.
#include <memory>

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "command.h"
#include "group_views.h"
#include "host_changes.h"
#include "library.h"
#include "result_text.h"
#include "text.h"

namespace kvrctl {
namespace {

struct GroupRequest {
  std::string path;
  std::string client;
  std::uint32_t reserve = 0;
};

struct ServerRequest {
  std::string path;
  std::vector<std::string> hosts;
};

// Takes the last name off the path, leaving that of the parent.
std::string TakeName(GroupPath &path) {
  if (path.names.empty()) {
    throw Failure(ExitStatus::Usage, "INVALID_PATH", "The path names a client but no new group.",
                  "Write the new group's name after it, as @HOST/NAME.");
  }
  std::string name = path.names.back();
  path.names.pop_back();
  return name;
}

// A name beyond ASCII goes through the UTF-16 form, which alone can hold it.
std::uint32_t CreateGroup(KVR_GROUP parent, const std::string &name, KVR_SYSTEM client,
                          std::uint32_t *reserve) {
  KVR_GROUP created = nullptr;
  if (IsAscii(name)) return KVR_CreateAsgA(parent, name.c_str(), client, reserve, &created);
  const auto units = Utf16Of(name);
  if (!units) {
    throw Failure(ExitStatus::Usage, "INVALID_PATH", "The name of the group is not valid UTF-8.",
                  "Write the name in UTF-8.");
  }
  const std::basic_string<KVR_WCHAR> wide(units->begin(), units->end());
  return KVR_CreateAsgW(parent, wide.c_str(), client, reserve, &created);
}

Outcome Create(const GroupRequest &request) {
  GroupPath path = SplitPath(request.path);
  const std::string shownPath = PathText(path);
  const std::string name = TakeName(path);
  const Library library;
  const bool top = path.client.empty() && path.names.empty();
  KVR_GROUP parent = top ? nullptr : library.GroupAt(path).handle;
  const Host &client = library.HostNamed(request.client);
  std::uint32_t granted = request.reserve;
  const std::uint32_t code = CreateGroup(parent, name, client.handle, &granted);
  if (code != KVR_ERR_RESERVED_COUNT_REDUCED) Require("Creating group " + shownPath, code);
  Outcome outcome = {{{"path", shownPath},
                      {"client", client.name},
                      {"asked", request.reserve},
                      {"granted", granted}},
                     Line("Created group {} for client {}, with {} of {} reserved slots.",
                          shownPath, client.name, granted, request.reserve),
                     {},
                     std::nullopt};
  if (code != KVR_OK) {
    const ResultText &why = TextOf(code);
    outcome.notes.push_back(
        fmt::format("{} {}: {}. {}", why.code, why.name, why.meaning, why.hint));
  }
  return outcome;
}

Outcome AddServers(const ServerRequest &request) {
  const Library library;
  const Group &group = library.GroupAt(SplitPath(request.path));
  const Wording wording{"Adding to the servers of " + group.path,
                        "Added to the servers of " + group.path};
  return ChangeHosts(library, request.hosts, wording, [&group](KVR_SYSTEM system) {
    return KVR_AddServerToAsg(group.handle, system);
  });
}

constexpr char kPathHelp[] = "The group, as sales/north, or @HOST by its client";

}  // namespace

void AddGroupCommands(CLI::App &app, Chosen &chosen) {
  CLI::App *group = AddFamily(app, "group", "Show and change groups");

  const auto made = std::make_shared<GroupRequest>();
  CLI::App *create =
      AddCommand(*group, "create", "Create a group", chosen, [made] { return Create(*made); });
  create->add_option("PATH", made->path, "The new group below its parents, as sales/north")
      ->required();
  create->add_option("--client", made->client, "The host that becomes its client")->required();
  create->add_option("--reserve", made->reserve, "Slots set aside for groups below it")
      ->capture_default_str();

  const auto served = std::make_shared<ServerRequest>();
  CLI::App *addServer = AddCommand(*group, "add-server", "Let hosts serve a group's client", chosen,
                                   [served] { return AddServers(*served); });
  addServer->add_option("PATH", served->path, kPathHelp)->required();
  addServer->add_option("HOST", served->hosts, "The hosts")->required();

  AddCommand(*group, "list", "List all groups", chosen, ListGroups);

  const auto shown = std::make_shared<std::string>();
  AddCommand(*group, "show", "Show one group", chosen, [shown] { return ShowGroup(*shown); })
      ->add_option("PATH", *shown, kPathHelp)
      ->required();
}

}  // namespace kvrctl
