// `kvrctl create` and `kvrctl destroy`: the configuration itself.
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
  RequireConfiguration(kDoing);
  const std::uint32_t code = KVR_DeleteKVR();
  if (code != KVR_ERR_SERVERS_FAILED && code != KVR_ERR_LOCAL_REMOVE_FAILED) Require(kDoing, code);
  const HostResults results = ResultsInAcg(library, code);
  const bool gone = code == KVR_OK;
  Outcome outcome = {{{"here", gone}, {"removed", results.done}},
                     Line("The configuration {} here. Removed from other hosts: {}.",
                          gone ? "is gone" : "remains", ShownList(results.done)),
                     {},
                     std::nullopt};
  if (code == KVR_ERR_SERVERS_FAILED) {
    outcome.failure = PartialFailure(kDoing, results, {"kvrctl", "destroy"});
  } else if (!gone) {
    outcome.failure = Failure(kDoing, code);
    if (!results.done.empty()) outcome.failure->status = ExitStatus::Partial;
  }
  return outcome;
}

}  // namespace

void AddConfigurationCommands(CLI::App &app, Chosen &chosen) {
  AddCommand(app, "create", "Make this host the MSC of a new configuration", chosen, Create);
  AddCommand(app, "destroy", "Take the configuration down on every host; run it on the MSC", chosen,
             Destroy);
}

}  // namespace kvrctl
