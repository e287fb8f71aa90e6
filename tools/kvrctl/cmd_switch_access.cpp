// `kvrctl switch-access`: the flag that opens every host's table to the switches, on or off for the
// whole configuration.
#include <memory>

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "command.h"
#include "host_changes.h"
#include "library.h"
#include "slot_reader.h"
#include "text.h"

namespace kvrctl {
namespace {

struct SwitchRequest {
  std::string state;
  bool again = false;
};

// Writes the state to every host even where it is the stored one. The library writes only a value
// that differs from the stored one: any number but 0 is on, but off is 0 alone, so that it has to
// be on in between.
std::uint32_t Write(bool on, std::uint32_t stored) {
  if (on) return KVR_EnableSwitchAccess(stored + 1);
  if (stored == 0) KVR_EnableSwitchAccess(1);
  return KVR_EnableSwitchAccess(0);
}

std::vector<std::string> Again(const std::string &state) {
  return {"kvrctl", "switch-access", state, "--again"};
}

Outcome SwitchAccess(const SwitchRequest &request) {
  const std::string doing = "Switching switch access " + request.state;
  const bool on = request.state == "on";
  const Library library;
  RequireConfiguration(doing);
  const std::uint32_t stored = KVR_IsSwitchAccessEnabled();
  // The stored value changes nothing, and tells whether this host may.
  Require(doing, KVR_EnableSwitchAccess(stored));
  if ((stored != 0) == on && !request.again) {
    return {{{"enabled", on}, {"written", false}, {"done", Json::array()}, {"here", false}},
            Line("Switch access is {}.", request.state),
            {fmt::format("It was {} already, so nothing was written; `{}` writes it to every host "
                         "once more.",
                         request.state, CommandText(Again(request.state)))},
            std::nullopt};
  }
  const std::uint32_t code = Write(on, stored);
  if (code != KVR_ERR_SERVERS_FAILED) Require(doing, code);
  const HostResults results = ResultsInAcg(library, code);
  // The library does not tell whether this host's adapter took its table.
  const bool storedHere = ReadLocalSwitchAccess() == on;
  Outcome outcome = {
      {{"enabled", on}, {"written", true}, {"done", results.done}, {"here", storedHere}},
      Line("Switch access is {}. Written to: {}.", request.state,
           ShownList(WithThisHost(results.done, storedHere))),
      {},
      std::nullopt};
  if (code != KVR_OK) outcome.failure = PartialFailure(doing, results, Again(request.state));
  if (!storedHere) AddLocalFailure(outcome, Again(request.state));
  return outcome;
}

}  // namespace

void AddSwitchAccessCommand(CLI::App &app, Chosen &chosen) {
  const auto asked = std::make_shared<SwitchRequest>();
  CLI::App *command = AddCommand(app, "switch-access",
                                 "Switch switch access on or off everywhere; run it on the MSC",
                                 chosen, [asked] { return SwitchAccess(*asked); });
  command->add_option("STATE", asked->state, "on or off")
      ->required()
      ->check(CLI::IsMember({"on", "off"}));
  command->add_flag("--again", asked->again,
                    "Write it to every host although it is so already, as after some failed; "
                    "'off --again' switches it on everywhere for a moment");
}

}  // namespace kvrctl
