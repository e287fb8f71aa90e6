// `kvrctl renew-keys` and `kvrctl sync`: what every host is asked for without a change of who may
// reach whom.
#include "kvrapi/kvrapi.h"

#include "command.h"
#include "host_changes.h"
#include "library.h"

namespace kvrctl {
namespace {

// Where no host takes the new keys, the library drops them.
std::vector<std::string> NotesOn(const HostResults &results) {
  if (!results.done.empty()) return {};
  if (results.failed.empty()) return {"No other host is in the ACG, so nothing was written."};
  return {"No host took the new keys, so the old ones stay everywhere."};
}

Outcome RenewKeys() {
  constexpr char kDoing[] = "Renewing the keys";
  const Library library;
  RequireConfiguration(kDoing);
  const std::uint32_t code = KVR_GenerateNewKeys();
  if (code != KVR_ERR_SERVERS_FAILED) Require(kDoing, code);
  const HostResults results = ResultsInAcg(library, code);
  Outcome outcome = {{{"done", results.done}},
                     Line("New keys on: {}.", ShownList(results.done)),
                     NotesOn(results),
                     std::nullopt};
  if (code != KVR_OK) {
    outcome.failure = PartialFailure(kDoing, results, {"kvrctl", "renew-keys"});
  }
  return outcome;
}

Outcome Sync() {
  const Library library;
  Require("Synchronizing", KVR_SyncDiscovery());
  const std::size_t hosts = library.Hosts().size();
  Outcome outcome = {{{"hosts", hosts}},
                     Line("Asked {} other hosts and this one to bring their adapters in line with "
                          "their tables.",
                          hosts),
                     library.Notes(),
                     std::nullopt};
  outcome.notes.emplace_back("Whether a host did so is not reported.");
  return outcome;
}

}  // namespace

void AddKeyCommands(CLI::App &app, Chosen &chosen) {
  AddCommand(app, "renew-keys", "Write new keys to every host; run it on the MSC", chosen,
             RenewKeys);
  AddCommand(app, "sync", "Ask every host to bring its adapters in line with its table", chosen,
             Sync);
}

}  // namespace kvrctl
