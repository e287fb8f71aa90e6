// `kvrctl handover` and `kvrctl takeover`: the MSC's role goes to another host.
#include <memory>

#include <fmt/format.h>

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

// The failure of a change of the role; a host without the role is told who has it.
Failure SuccessionFailure(const std::string &doing, const kvrapi::Error &error) {
  Failure failure(doing, error.Code());
  if (error.Code() == KVR_ERR_NOT_MSC) {
    failure.hint = "Run it on the MSC or a backup MSC; `kvrctl backup list` on the MSC names them.";
  }
  return failure;
}

// A change that the library would refuse whatever is answered is not asked for.
void RequireRole(const Library &library, const std::string &doing) {
  RequireConfiguration(library, doing);
  if (library.Session().IsMsc() || library.Session().IsBackupMsc()) return;
  throw SuccessionFailure(doing, kvrapi::Error(doing, KVR_ERR_NOT_MSC));
}

Outcome HandOver(const std::string &name, const Consent &consent) {
  const std::string doing = "Handing the MSC's role to " + name;
  const Library library;
  const Host &next = library.HostNamed(name);
  RequireRole(library, doing);
  if (!next.backupMsc) throw Failure(doing, KVR_ERR_NOT_BACKUP_MSC);
  consent.Require(fmt::format("{} would be the MSC, and this host a plain member that changes "
                              "nothing any more.",
                              next.name),
                  "handover");
  const bool fromMsc = library.Session().IsMsc();
  try {
    library.Session().HandOver(next.system);
  } catch (const kvrapi::Error &error) {
    throw SuccessionFailure(doing, error);
  }
  Outcome outcome = {{{"msc", next.name}}, [](const Json &result, const Screen &) {
                       return Line("{} is the MSC now; this host is a plain member.",
                                   Shown(result.at("msc")));
                     }};
  if (!fromMsc) outcome.notes.emplace_back(kFormerMsc);
  // The library does not tell whether this host's adapter took the table of a plain member.
  if (!CanReadLocalTable()) {
    outcome.notes.emplace_back(
        "Whether this host's own table took it could not be checked: run `kvrctl status` here when "
        "its adapter answers again, and nothing else before.");
  } else if (!ReadLocalSlot().is_null()) {
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

Outcome TakeOver(const Consent &consent) {
  constexpr char kDoing[] = "Taking the MSC's role over";
  const Library library;
  RequireRole(library, kDoing);
  if (library.Session().IsMsc()) throw Failure(kDoing, KVR_ERR_NO_NEW_MSC);
  consent.Require(
      "This host would be the MSC, while the former one's table still says that it is: "
      "that is for an MSC that is lost.",
      "takeover");
  try {
    library.Session().TakeOver();
  } catch (const kvrapi::Error &error) {
    throw SuccessionFailure(kDoing, error);
  }
  return {{{"slot", ReadLocalSlot()}},
          [](const Json &result, const Screen &) {
            return Line("This host is the MSC now, in slot {}.", Shown(result.at("slot")));
          },
          {kFormerMsc, "Programs that have the library loaded see it when they load it anew."}};
}

}  // namespace

void AddSuccessionCommands(CLI::App &app, Commands &commands) {
  const auto next = std::make_shared<std::string>();
  AddCommand(app,
             {"handover", "Hand the MSC's role to a backup MSC; run it on the MSC", R"({"msc"})",
              Effect::Destroys, false,
              "This host becomes a plain member. Another backup MSC may hand the role over too; "
              "the former MSC's own table is not corrected then.",
              "handover db-0005"},
             commands, [next, &consent = commands.consent] { return HandOver(*next, consent); })
      ->add_option("HOST", *next, "The backup MSC that becomes the MSC")
      ->required();
  AddCommand(app,
             {"takeover", "Take the MSC's role on this backup MSC, when the MSC is lost",
              R"({"slot"})", Effect::Destroys, true,
              "The former MSC's table still says that it is the MSC: when it comes back, keep it "
              "cut off and run `kvrctl destroy` on it first."},
             commands, [&consent = commands.consent] { return TakeOver(consent); });
}

}  // namespace kvrctl
