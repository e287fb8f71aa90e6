// `kvrctl renew-keys` and `kvrctl sync`: what every host is asked for without a change of who may
// reach whom.
#include <optional>

#include "command.h"
#include "host_changes.h"
#include "library.h"
#include "progress.h"
#include "slot_reader.h"

namespace kvrctl {
namespace {

// here: whether this host has the new keys, where that is known. Where no host takes them, the
// library drops them.
std::vector<std::string> NotesOn(const HostResults &results, std::optional<bool> here) {
  if (!results.done.empty() && here) return {};
  if (!results.done.empty()) return {"Whether this host's table took them could not be checked."};
  if (results.failed.empty()) return {"No other host is in the ACG, so nothing was written."};
  return {"No host took the new keys, so the old ones stay everywhere."};
}

Outcome RenewKeys() {
  constexpr char kDoing[] = "Renewing the keys";
  const std::vector<std::string> retry = {"kvrctl", "renew-keys"};
  const Library library;
  RequireConfiguration(library, kDoing);
  const AcgResults results = ChangeAcg(kDoing, library, [&] { library.Session().RenewKeys(); });
  if (results.code != KVR_OK && results.code != KVR_ERR_SERVERS_FAILED) {
    throw Failure(kDoing, results.code);
  }
  // The library does not tell whether this host's adapter took its table. Keys made within one
  // second are the same, so the table is held against another's, not against what it was.
  const std::optional<bool> here =
      results.done.empty() ? false : SharesKeys(library.Hosts(), results.failed);
  Outcome outcome = {{{"done", results.done}, {"here", here ? Json(*here) : Json()}},
                     [](const Json &result, const Screen &) {
                       const Json &stored = result.at("here");
                       const bool isHere = stored.is_boolean() && stored.get<bool>();
                       return Line("New keys on: {}.",
                                   ShownList(WithThisHost(result.at("done"), isHere)));
                     },
                     NotesOn(results, here)};
  if (results.code != KVR_OK) outcome.failure = PartialFailure(kDoing, results, retry);
  if (!results.done.empty() && here == false) AddLocalFailure(outcome, retry);
  return outcome;
}

Outcome Sync() {
  const Library library;
  Progress("Synchronizing").During([&] {
    Require("Synchronizing", [&] { library.Session().Synchronize(); });
  });
  Outcome outcome = {{{"hosts", library.Hosts().size()}},
                     [](const Json &result, const Screen &) {
                       return Line(
                           "Asked {} other hosts and this one to bring their adapters in line with "
                           "their tables.",
                           Shown(result.at("hosts")));
                     },
                     library.Notes()};
  outcome.notes.emplace_back("Whether a host did so is not reported.");
  return outcome;
}

}  // namespace

void AddKeyCommands(CLI::App &app, Commands &commands) {
  AddCommand(app,
             {"renew-keys", "Write new keys to every host; run it on the MSC",
              R"({"done":[…],"here"})", Effect::Changes, false,
              "`here` tells whether this host's own table took them; it is null where that cannot "
              "be told."},
             commands, RenewKeys);
  AddCommand(
      app,
      {"sync", "Ask every host to bring its adapters in line with its table",
       R"({"hosts"}, a number)", Effect::Changes, false, "Whether a host did so is not reported."},
      commands, Sync);
}

}  // namespace kvrctl
