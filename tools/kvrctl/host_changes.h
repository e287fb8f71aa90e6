// One change made to several hosts in turn: it goes on past a host that fails, and tells which did.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "command.h"
#include "library.h"

namespace kvrctl {

// How a change is spoken of: "Adding to the ACG" while it is made, "Added to the ACG" afterwards.
struct Wording {
  std::string doing;
  std::string didSo;
  std::vector<std::string> command;  // its words before the hosts, as {"kvrctl", "acg", "add"}
};

// A change to one host; throws kvrapi::Error.
using Change = std::function<void(const kvrapi::System &)>;

// What became of a change to several hosts.
struct HostResults {
  Json done = Json::array();  // the names of those that took it
  std::vector<HostFailure> failed;
};

// Calls change(system) for every host; doing is what the progress line says.
HostResults ChangeEach(const std::string &doing, const std::vector<const Host *> &hosts,
                       const Change &change);

// What became of a change that the library makes to every host of the ACG by itself.
struct AcgResults : HostResults {
  std::uint32_t code = KVR_OK;  // as the library answered
};

// Makes such a change; doing is what the progress line says. The ACG is that of before; the hosts
// that failed are there after 5008 only.
AcgResults ChangeAcg(const std::string &doing, const Library &library,
                     const std::function<void()> &change);

// Calls change(system) for every host that the user names. Throws Failure before anything is
// changed where a name does not fit one host, and afterwards where every host failed; where some
// did, the outcome carries them.
Outcome ChangeHosts(const Library &library, const std::vector<std::string> &names,
                    const Wording &wording, const Change &change);

// Adds a command below family: a change that only the MSC makes, to the hosts that the command line
// names. Where it destroys, sentence says what it does to those hosts, their names put in at "{}".
void AddMscChange(CLI::App &family, Commands &commands, const Description &description,
                  const Wording &wording, void (kvrapi::Session::*change)(const kvrapi::System &),
                  const std::string &sentence = "");

// Ends the failure's way out with the command that repeats what was asked.
void AddRetry(Failure &failure, const std::vector<std::string> &command);

// The command with the names of the failed hosts behind it, those left out for which a repetition
// would change nothing.
std::vector<std::string> NamingFailed(std::vector<std::string> command, const HostResults &results);

// The failure of a change that some hosts did not take; retry is the command that repeats it. The
// first code that a repetition can overcome stands for all.
Failure PartialFailure(const std::string &doing, const HostResults &results,
                       const std::vector<std::string> &retry);

// The hosts that took a change, and "this host" behind them where it did too.
Json WithThisHost(Json done, bool here);

// Tells that this host's own table did not take the change (5030): as the outcome's failure, or
// beside the one that it has already. retry is the command that repeats the change.
void AddLocalFailure(Outcome &outcome, const std::vector<std::string> &retry);

}  // namespace kvrctl
