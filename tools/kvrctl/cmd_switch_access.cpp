// `kvrctl switch-access`: the flag that opens every host's table to the switches, on or off for the
// whole configuration.
#include <memory>

#include <fmt/format.h>

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

std::vector<std::string> Again(const std::string &state) {
  return {"kvrctl", "switch-access", state, "--again"};
}

std::string DrawSwitched(const Json &result, const Screen &) {
  const char *state = result.at("enabled") ? "on" : "off";
  if (!result.at("written")) return Line("Switch access is {}.", state);
  return Line("Switch access is {}. Written to: {}.", state,
              ShownList(WithThisHost(result.at("done"), result.at("here"))));
}

Outcome NothingWritten(const std::string &state) {
  return {
      {{"enabled", state == "on"}, {"written", false}, {"done", Json::array()}, {"here", false}},
      DrawSwitched,
      {fmt::format("It was {} already, so nothing was written; `{}` writes it to every host "
                   "once more.",
                   state, CommandText(Again(state)))}};
}

Outcome SwitchAccess(const SwitchRequest &request) {
  const std::string doing = "Switching switch access " + request.state;
  const bool on = request.state == "on";
  const Library library;
  kvrapi::Session &session = library.Session();
  RequireConfiguration(library, doing);
  const bool stored = session.IsSwitchAccessOn();
  // The stored value changes nothing, and tells whether this host may.
  Require(doing, [&] { session.SwitchAccess(stored); });
  if (stored == on && !request.again) return NothingWritten(request.state);
  const AcgResults results = ChangeAcg(doing, library, [&] { session.RewriteSwitchAccess(on); });
  if (results.code != KVR_OK && results.code != KVR_ERR_SERVERS_FAILED) {
    throw Failure(doing, results.code);
  }
  // The library does not tell whether this host's adapter took its table.
  const bool storedHere = ReadLocalSwitchAccess() == on;
  Outcome outcome = {
      {{"enabled", on}, {"written", true}, {"done", results.done}, {"here", storedHere}},
      DrawSwitched};
  if (results.code != KVR_OK) {
    outcome.failure = PartialFailure(doing, results, Again(request.state));
  }
  if (!storedHere) AddLocalFailure(outcome, Again(request.state));
  return outcome;
}

}  // namespace

void AddSwitchAccessCommand(CLI::App &app, Commands &commands) {
  const auto asked = std::make_shared<SwitchRequest>();
  CLI::App *command =
      AddCommand(app,
                 {"switch-access", "Switch switch access on or off everywhere; run it on the MSC",
                  R"({"enabled","written","done":[…],"here"})", Effect::Changes, false,
                  "What is stored already is not written again, unless with --again. `here` tells "
                  "whether this host's own table took it.",
                  "switch-access on"},
                 commands, [asked] { return SwitchAccess(*asked); });
  command->add_option("STATE", asked->state, "on or off")
      ->required()
      ->check(CLI::IsMember({"on", "off"}));
  command->add_flag("--again", asked->again,
                    "Write it to every host although it is so already, as after some failed; "
                    "'off --again' switches it on everywhere for a moment");
}

}  // namespace kvrctl
