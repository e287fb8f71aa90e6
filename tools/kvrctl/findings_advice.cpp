#include "findings_advice.h"

#include <algorithm>

#include <fmt/format.h>

#include "paths.h"
#include "text.h"

namespace kvrctl {
namespace {

std::uint32_t CountOf(const Member &client, bool onlyUsed) {
  std::uint32_t count = 0;
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    const bool used = client.Has(ACE_CHILD | ACE_DELEGATED, slot);
    if (client.Has(ACE_RESERVED, slot) && (used || !onlyUsed)) ++count;
  }
  return count;
}

}  // namespace

std::string Listed(const std::vector<std::string> &items) {
  std::string text;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) text += i + 1 == items.size() ? " and " : ", ";
    text += items[i];
  }
  return text;
}

std::string SlotText(const std::vector<std::uint32_t> &slots) {
  std::vector<std::string> runs;
  for (std::size_t i = 0; i < slots.size();) {
    std::size_t last = i;
    while (last + 1 < slots.size() && slots[last + 1] == slots[last] + 1)
      ++last;
    runs.push_back(last > i + 1 ? fmt::format("{} to {}", slots[i], slots[last])
                                : fmt::format("{}", slots[i]));
    i = last > i + 1 ? last + 1 : i + 1;
  }
  return (slots.size() == 1 ? "slot " : "slots ") + Listed(runs);
}

std::string Command(const std::vector<std::string> &words, const std::vector<std::string> &names) {
  return "`" + CommandText(Naming(words, names)) + "`";
}

std::string OnMsc(const View &view) {
  if (view.mscs.size() != 1) return "On the MSC";
  return fmt::format("On {}, the MSC,", view.mscs.front()->host->name);
}

std::string OnMscWithin(const View &view) {
  return "on " + (view.mscs.size() == 1 ? view.mscs.front()->host->name : "the MSC");
}

std::string AwaitMsc(const View &view) {
  std::vector<std::string> backups;
  for (const Member *backup : view.backups)
    backups.push_back(backup->host->name);
  return fmt::format(
      "Bring the MSC back into reach, or run `kvrctl takeover` on {}, and run `kvrctl doctor` "
      "again: without the MSC's table it can't be told whether this one is sound.",
      backups.empty()       ? "a backup MSC"
      : backups.size() == 1 ? backups.front()
                            : "one of " + Listed(backups));
}

std::string WhereMissing(const View &view) {
  const auto &excluded = view.survey.excluded;
  std::string text;
  if (!view.unread.empty()) {
    text = fmt::format("Bring {} back into reach first: the missing one may be among them.",
                       Listed(view.unread));
  }
  if (excluded.empty()) return text;
  return text + (text.empty() ? "" : " ") +
         (excluded.size() == 1
              ? fmt::format("{} is excluded from discovery: it may be the missing one. Let it be "
                            "discovered again",
                            excluded.front())
              : fmt::format("{} are excluded from discovery: the missing one may be among them. "
                            "Let them be discovered again",
                            Listed(excluded))) +
         "; on the simulated network, `excluded` in fabric.toml.";
}

std::string AwaitMissing(const View &view) {
  return WhereMissing(view) + " Then run `kvrctl doctor` again.";
}

std::string Readmission(const View &view, const Member &member) {
  if (view.mscs.empty()) return AwaitMsc(view);
  const std::vector<std::string> name = {member.host->name};
  const std::string out = Command({"kvrctl", "acg", "remove"}, name);
  const std::string in = Command({"kvrctl", "acg", "add"}, name);
  if (member.msc) {
    return fmt::format(
        "{} the role to {} with `kvrctl handover HOST`, then run {} and {} on that one: the table "
        "is written anew. A handover copies the access words, so that damage in those stays: no "
        "command mends it.",
        view.backups.empty() ? "Make a host a backup MSC with `kvrctl backup add HOST`, hand"
                             : "Hand",
        view.backups.empty() ? "it" : "a backup MSC", out, in);
  }
  if (member.backup) {
    return fmt::format("{} run {}, {} and {}: the table is written anew.", OnMsc(view),
                       Command({"kvrctl", "backup", "remove"}, name), out,
                       Command({"kvrctl", "backup", "add"}, name));
  }
  if (member.slot && !view.HasParent(member)) {
    return WhereMissing(view).empty() ? RemovalByHand({member.host->name}) : AwaitMissing(view);
  }
  if (member.slot) {
    return fmt::format(
        "{} hand its group to another host with {}, then run {} and {}: the table is written anew, "
        "and the group can be handed back.",
        OnMsc(view),
        Command({"kvrctl", "group", "set-client"}, {ClientPath(member.host->name), "HOST"}), out,
        in);
  }
  return fmt::format(
      "{} run {} and {}: the table is written anew. Then name the host again to the groups that it "
      "is to serve, with `kvrctl group add-server`.",
      OnMsc(view), out, in);
}

std::string MscStays(const Member &msc) {
  return fmt::format(
      "Keep the table of {}: it is the MSC's, and says who has which slot. No command takes such a "
      "mark out of it, and a handover copies it along: it stays until the configuration is made "
      "anew with `kvrctl destroy` and `kvrctl create`.",
      msc.host->name);
}

std::string RemovalByHand(const std::vector<std::string> &hosts) {
  std::vector<std::string> files;
  for (const std::string &host : hosts)
    files.push_back("tables/" + host + ".satable");
  return fmt::format(
      "No command removes such a table alone: remove it with the adapter vendor's tool, or on the "
      "simulated network the file {}; {} brings the host back.",
      hosts.size() == 1 ? files.front() : "tables/HOST.satable",
      Command({"kvrctl", "acg", "add"}, {hosts.size() == 1 ? hosts.front() : "HOST"}));
}

std::string ReserveAnew(const View &view, const std::vector<const Member *> &clients) {
  if (view.mscs.empty()) return AwaitMsc(view);
  const auto resized = [&clients](bool onlyUsed) {
    std::vector<std::string> commands;
    for (const Member *client : clients) {
      commands.push_back(
          Command({"kvrctl", "group", "set-reserve"},
                  {ClientPath(client->host->name), std::to_string(CountOf(*client, onlyUsed))}));
    }
    return Listed(commands);
  };
  return fmt::format(
      "{} give back what is free of the reserve with {}, then set it aside anew with "
      "{}.",
      OnMsc(view), resized(true), resized(false));
}

}  // namespace kvrctl
