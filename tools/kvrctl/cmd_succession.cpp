// `kvrctl handover` and `kvrctl takeover`: the MSC's role goes to another host.
#include <memory>

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "command.h"
#include "library.h"
#include "slot_reader.h"

namespace kvrctl {
namespace {

// A table that calls its host the MSC is out of reach for the others, and the library has no call
// that corrects it: it holds the MSC's slot, so that it can neither leave the ACG nor become a
// backup.
constexpr char kFormerMsc[] =
    "The former MSC's own table still says that it is the MSC. Run nothing on it while it reaches "
    "other hosts: its discovery alone writes to the backup MSCs. Cut it off from them, run "
    "`kvrctl destroy` on it, which then removes its own table alone, and when it is back name it "
    "again with `kvrctl backup add` on the new MSC.";

// Asks the library for the change; a host without the role is told who has it.
void Assign(const std::string &doing, KVR_SYSTEM system) {
  RequireConfiguration(doing);
  const std::uint32_t code = KVR_AssignNewMSC(system);
  if (code == KVR_OK) return;
  Failure failure(doing, code);
  if (code == KVR_ERR_NOT_MSC) {
    failure.hint = "Run it on the MSC or a backup MSC; `kvrctl backup list` on the MSC names them.";
  }
  throw failure;
}

Outcome HandOver(const std::string &name) {
  const std::string doing = "Handing the MSC's role to " + name;
  const Library library;
  const Host &next = library.HostNamed(name);
  const bool fromMsc = KVR_IsMSC() != 0;
  Assign(doing, next.handle);
  Outcome outcome = {{{"msc", next.name}},
                     Line("{} is the MSC now; this host is a plain member.", next.name),
                     {},
                     std::nullopt};
  if (!fromMsc) outcome.notes.emplace_back(kFormerMsc);
  // The library does not tell whether this host's adapter took the table of a plain member.
  if (!ReadLocalSlot().is_null()) {
    outcome.failure = Failure("Storing this host's table", KVR_ERR_LOCAL_WRITE_FAILED);
    outcome.failure->status = ExitStatus::Partial;
    outcome.failure->hint = fmt::format(
        "The role has gone to {}, but this host's table still claims the MSC's slot. Cut this host "
        "off from the others, run `kvrctl destroy` on it, and bring it back with `kvrctl acg add` "
        "on {}.",
        next.name, next.name);
  }
  return outcome;
}

Outcome TakeOver() {
  const Library library;
  Assign("Taking the MSC's role over", nullptr);
  const Json slot = ReadLocalSlot();
  return {{{"slot", slot}},
          Line("This host is the MSC now, in slot {}.", Shown(slot)),
          {kFormerMsc, "Programs that have the library loaded see it when they load it anew."},
          std::nullopt};
}

}  // namespace

void AddSuccessionCommands(CLI::App &app, Chosen &chosen) {
  const auto next = std::make_shared<std::string>();
  AddCommand(app, "handover", "Hand the MSC's role to a backup MSC; run it on the MSC", chosen,
             [next] { return HandOver(*next); })
      ->add_option("HOST", *next, "The backup MSC that becomes the MSC")
      ->required();
  AddCommand(app, "takeover", "Take the MSC's role on this backup MSC, when the MSC is lost",
             chosen, TakeOver);
}

}  // namespace kvrctl
