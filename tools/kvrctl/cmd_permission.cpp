// `kvrctl can-remove` and `kvrctl can-handover`: whether a change would be done, and why not.
#include <memory>

#include <fmt/format.h>

#include "command.h"
#include "library.h"
#include "slot_reader.h"

namespace kvrctl {
namespace {

// The answer as it grows: what forbids the change, and what it would bring with it.
struct Answer {
  Json reasons = Json::array();
  Json consequences = Json::array();
};

template <class... Arguments>
void Say(Json &sentences, fmt::format_string<Arguments...> format, Arguments &&...arguments) {
  sentences.push_back(fmt::format(format, std::forward<Arguments>(arguments)...));
}

void RequireReadable(Answer &answer, const Host &host) {
  if (CanBeRead(host)) return;
  Say(answer.reasons, "No adapter of {} lets its table be read (5019); check that the host is up.",
      host.name);
}

// wording says what the change is, as "can be removed from the ACG".
Outcome Answered(const Host &host, const Answer &answer, const std::string &wording,
                 const std::string &denial) {
  const bool can = answer.reasons.empty();
  Outcome outcome = {{{"host", host.name},
                      {"can", can},
                      {"reasons", answer.reasons},
                      {"consequences", answer.consequences}},
                     [wording, denial](const Json &result, const Screen &) {
                       std::string text = Line("{} {}.", Shown(result.at("host")),
                                               result.at("can") ? wording : denial);
                       for (const char *key : {"reasons", "consequences"}) {
                         for (const Json &sentence : result.at(key))
                           text += Line("  {}", Shown(sentence));
                       }
                       return text;
                     }};
  outcome.unhealthy = !can;
  return outcome;
}

// The groups that keep the host in the ACG, and those that would lose it.
void AskGroups(Answer &answer, const Library &library, const Host &host) {
  bool isClient = false;
  ForEachGroup(library.Groups(), [&](const Group &group) {
    if (group.client == &host) {
      isClient = true;
      Say(answer.reasons,
          "It is the client of group {} (5022): hand the group on with `kvrctl group set-client`, "
          "or delete it with `kvrctl group delete`.",
          group.path);
    }
    for (const Host *server : group.servers) {
      if (server == &host) {
        Say(answer.consequences, "It serves group {}, whose client would reach it no more.",
            group.path);
      }
    }
  });
  if (isClient || !host.holdsSlot || host.backupMsc) return;
  Say(answer.reasons,
      "It holds a slot (5022), though no group of it is seen: `kvrctl doctor` tells more.");
}

Outcome CanRemove(const std::string &name) {
  const Library library;
  const Host &host = library.HostNamed(name);
  Answer answer;
  if (!library.Session().IsMsc()) {
    Say(answer.reasons, "Only the MSC removes hosts, and this host is not it (5000).");
  }
  if (!host.inAcg) {
    Say(answer.reasons, "It is not in the ACG (5010).");
  } else {
    if (host.backupMsc) {
      Say(answer.reasons, "It is a backup MSC (5022): end that with `kvrctl backup remove` first.");
    }
    AskGroups(answer, library, host);
    RequireReadable(answer, host);
  }
  return Answered(host, answer, "can be removed from the ACG", "cannot be removed from the ACG");
}

void AskRole(Answer &answer, const kvrapi::Session &session) {
  if (!session.IsSecured()) {
    Say(answer.reasons, "No configuration is active on this host (5004).");
  } else if (!session.IsMsc() && !session.IsBackupMsc()) {
    Say(answer.reasons,
        "Only the MSC or a backup MSC hands the role over, and this host is neither (5000).");
  } else if (!session.IsMsc()) {
    Say(answer.consequences,
        "This host is not the MSC itself: the former MSC's own table would go on saying that it "
        "is.");
  }
}

Outcome CanHandOver(const std::string &name) {
  const Library library;
  const Host &host = library.HostNamed(name);
  Answer answer;
  AskRole(answer, library.Session());
  if (!host.backupMsc) {
    Say(answer.reasons,
        "It is not a backup MSC (5025): make it one with `kvrctl backup add` first.");
  }
  if (host.inAcg) RequireReadable(answer, host);
  if (!host.system.CanDiscoverAll()) {
    Say(answer.consequences,
        "It shares no reach with some of the hosts, so that as the MSC it may not see them all.");
  }
  return Answered(host, answer, "can take the MSC's role", "cannot take the MSC's role");
}

void AddQuestion(CLI::App &app, Commands &commands, const char *name, const char *summary,
                 Outcome (*ask)(const std::string &)) {
  const auto host = std::make_shared<std::string>();
  AddCommand(app, {name, summary, R"({"host","can","reasons":[…],"consequences":[…]})"}, commands,
             [host, ask] { return ask(*host); })
      ->add_option("HOST", *host, "The host")
      ->required();
}

}  // namespace

void AddPermissionCommands(CLI::App &app, Commands &commands) {
  AddQuestion(app, commands, "can-remove",
              "Tell whether a host could be taken out of the ACG, and why not", CanRemove);
  AddQuestion(app, commands, "can-handover",
              "Tell whether a host could take the MSC's role, and why not", CanHandOver);
}

}  // namespace kvrctl
