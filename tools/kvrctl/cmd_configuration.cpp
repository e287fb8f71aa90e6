// `kvrctl create` and `kvrctl destroy`: the configuration itself.
#include <algorithm>

#include "kvrapi/kvrapi.h"

#include "command.h"
#include "host_changes.h"
#include "library.h"

namespace kvrctl {
namespace {

Outcome Create() {
  const Library library;
  std::int32_t slot = -1;
  Require("Creating a configuration", KVR_CreateKVR(&slot));
  return {{{"slot", slot}},
          Line("This host is the MSC of a new configuration, in slot {}.", slot),
          {},
          std::nullopt};
}

// "here" tells whether this host's table is gone, "removed" the other hosts whose table is.
Outcome Destroy() {
  constexpr char kDoing[] = "Deleting the configuration";
  const Library library;
  const std::uint32_t code = KVR_DeleteKVR();
  if (code != KVR_ERR_SERVERS_FAILED) Require(kDoing, code);
  const auto kept = library.TakeFailedHosts();
  Json removed = Json::array();
  for (const Host &host : library.Hosts()) {
    const bool failed = std::find(kept.begin(), kept.end(), &host) != kept.end();
    if (host.inAcg && !failed) removed.push_back(host.name);
  }
  const bool gone = code == KVR_OK;
  Outcome outcome = {{{"here", gone}, {"removed", removed}},
                     Line("The configuration {} here. Removed from other hosts: {}.",
                          gone ? "is gone" : "remains", removed.empty() ? "none" : Shown(removed)),
                     {},
                     std::nullopt};
  if (gone) return outcome;
  std::vector<HostFailure> failures;
  for (const Host *host : kept)
    failures.push_back({host->name, code});
  outcome.failure = PartialFailure(kDoing, removed.size() + kept.size(), code, failures);
  return outcome;
}

}  // namespace

void AddConfigurationCommands(CLI::App &app, Chosen &chosen) {
  AddCommand(app, "create", "Make this host the MSC of a new configuration", chosen, Create);
  AddCommand(app, "destroy", "Take the configuration down on every host; run it on the MSC", chosen,
             Destroy);
}

}  // namespace kvrctl
