// `kvrctl create` and `kvrctl destroy`: the configuration itself.
#include "command.h"
#include "host_changes.h"
#include "library.h"

namespace kvrctl {
namespace {

Outcome Create() {
  const Library library;
  const std::int32_t slot =
      Require("Creating a configuration", [&] { return library.Session().CreateConfiguration(); });
  return {{{"slot", slot}}, [](const Json &result, const Screen &) {
            return Line("This host is the MSC of a new configuration, in slot {}.",
                        Shown(result.at("slot")));
          }};
}

std::string DrawDestroyed(const Json &result, const Screen &) {
  return Line("The configuration {} here. Removed from other hosts: {}.",
              result.at("here") ? "is gone" : "remains", ShownList(result.at("removed")));
}

void RequireConsent(const Library &library, const Consent &consent) {
  std::vector<const Host *> members;
  for (const Host &host : library.Hosts()) {
    if (host.inAcg) members.push_back(&host);
  }
  consent.Require(fmt::format("The configuration would be gone on this host and on these: {}. "
                              "Nothing would limit any more who reaches them.",
                              ShownList(NamesOf(members))),
                  "destroy");
}

// "here" tells whether this host's table is gone, "removed" the other hosts whose table is.
Outcome Destroy(const Consent &consent) {
  constexpr char kDoing[] = "Deleting the configuration";
  const Library library;
  RequireConfiguration(library, kDoing);
  if (!library.Session().IsMsc()) throw Failure(kDoing, KVR_ERR_NOT_MSC);
  RequireConsent(library, consent);
  const AcgResults results =
      ChangeAcg(kDoing, library, [&] { library.Session().DeleteConfiguration(); });
  const std::uint32_t code = results.code;
  if (code != KVR_OK && code != KVR_ERR_SERVERS_FAILED && code != KVR_ERR_LOCAL_REMOVE_FAILED) {
    throw Failure(kDoing, code);
  }
  const bool gone = code == KVR_OK;
  Outcome outcome = {{{"here", gone}, {"removed", results.done}}, DrawDestroyed};
  if (code == KVR_ERR_SERVERS_FAILED) {
    std::vector<std::string> retry = {"kvrctl", "destroy"};
    if (consent.yes) retry.emplace_back("--yes");
    outcome.failure = PartialFailure(kDoing, results, retry);
  } else if (!gone) {
    outcome.failure = Failure(kDoing, code);
    if (!results.done.empty()) outcome.failure->status = ExitStatus::Partial;
  }
  return outcome;
}

}  // namespace

void AddConfigurationCommands(CLI::App &app, Commands &commands) {
  AddCommand(
      app,
      {"create", "Make this host the MSC of a new configuration", R"({"slot"})", Effect::Changes},
      commands, Create);
  AddCommand(app,
             {"destroy", "Take the configuration down on every host; run it on the MSC",
              R"({"here","removed":[…]})", Effect::Destroys, false,
              "It reaches the members that this host sees; one that is down keeps its table."},
             commands, [&consent = commands.consent] { return Destroy(consent); });
}

}  // namespace kvrctl
