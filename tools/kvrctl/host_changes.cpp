#include "host_changes.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "progress.h"
#include "text.h"

namespace kvrctl {
namespace {

// True of a host that is already as the change would make it.
bool IsSettled(const HostFailure &failed) {
  switch (failed.code) {
    case KVR_ERR_ALREADY_IN_ACG:
    case KVR_ERR_NOT_IN_ACG:
    case KVR_ERR_ALREADY_ASG_SERVER:
    case KVR_ERR_NOT_ASG_SERVER:
    case KVR_ERR_ALREADY_BACKUP_MSC:
    case KVR_ERR_NOT_BACKUP_MSC:
      return true;
    default:
      return false;
  }
}

}  // namespace

HostResults ChangeEach(const std::string &doing, const std::vector<const Host *> &hosts,
                       const Change &change) {
  Progress progress(doing, hosts.size());
  HostResults results;
  for (const Host *host : hosts) {
    progress.Step(host->name);
    const std::uint32_t code = CodeOf([&] { change(host->system); });
    if (code == KVR_OK) {
      results.done.push_back(host->name);
    } else {
      results.failed.push_back({host->name, code});
    }
  }
  return results;
}

AcgResults ChangeAcg(const std::string &doing, const Library &library,
                     const std::function<void()> &change) {
  AcgResults results;
  std::vector<const Host *> kept;
  try {
    Progress(doing).During(change);
  } catch (const kvrapi::Error &error) {
    results.code = error.Code();
    for (const kvrapi::FailedHost &failed : error.FailedHosts()) {
      kept.push_back(library.Find(failed.system));
      results.failed.push_back({failed.name, error.Code()});
    }
  }
  for (const Host &host : library.Hosts()) {
    const bool failed = std::find(kept.begin(), kept.end(), &host) != kept.end();
    if (host.inAcg && !failed) results.done.push_back(host.name);
  }
  return results;
}

Outcome ChangeHosts(const Library &library, const std::vector<std::string> &names,
                    const Wording &wording, const Change &change) {
  const HostResults results = ChangeEach(wording.doing, library.HostsNamed(names), change);
  Outcome outcome{Json()};
  outcome.result = {{"done", results.done}};
  outcome.draw = [didSo = wording.didSo](const Json &result, const Screen &) {
    return Line("{}: {}.", didSo, Shown(result.at("done")));
  };
  if (results.failed.empty()) return outcome;
  Failure failure = PartialFailure(wording.doing, results, NamingFailed(wording.command, results));
  if (results.done.empty()) {
    failure.status = StatusOf(failure.code);
    throw failure;
  }
  outcome.failure = failure;
  return outcome;
}

void AddMscChange(CLI::App &family, Commands &commands, const Description &description,
                  const Wording &spoken, void (kvrapi::Session::*change)(const kvrapi::System &),
                  const std::string &sentence) {
  const auto names = std::make_shared<std::vector<std::string>>();
  const auto run = [names, spoken, change, sentence, &consent = commands.consent] {
    const Library library;
    Wording wording = spoken;
    library.RequireAllHosts(wording.doing);
    std::vector<const Host *> hosts = library.HostsNamed(*names);
    if (!sentence.empty()) {
      // What the library refuses whatever is answered is not asked for.
      std::erase_if(hosts, [](const Host *host) { return !host->inAcg || host->holdsSlot; });
      const std::string word = wording.command.back();
      if (!hosts.empty()) {
        consent.Require(fmt::format(fmt::runtime(sentence), Shown(NamesOf(hosts))), word);
      }
      if (consent.yes) wording.command.emplace_back("--yes");
    }
    return ChangeHosts(library, *names, wording,
                       [&](const kvrapi::System &system) { (library.Session().*change)(system); });
  };
  AddCommand(family, description, commands, run)
      ->add_option("HOST", *names, "The hosts, by their 8-bit or UTF-16 names")
      ->required();
}

void AddRetry(Failure &failure, const std::vector<std::string> &command) {
  failure.retry += fmt::format(" To retry: `{}`.", CommandText(command));
}

std::vector<std::string> NamingFailed(std::vector<std::string> command,
                                      const HostResults &results) {
  std::vector<std::string> open;
  for (const HostFailure &failed : results.failed) {
    if (!IsSettled(failed)) open.push_back(failed.host);
  }
  return Naming(std::move(command), open);
}

Failure PartialFailure(const std::string &doing, const HostResults &results,
                       const std::vector<std::string> &retry) {
  const auto &failed = results.failed;
  Json names = Json::array();
  for (const HostFailure &one : failed)
    names.push_back(one.host);
  const std::size_t total = results.done.size() + failed.size();
  const std::string share =
      results.done.empty() ? "" : fmt::format(" ({} of {} hosts)", failed.size(), total);
  const auto open = std::find_if_not(failed.begin(), failed.end(), IsSettled);
  const bool settled = open == failed.end();
  Failure failure(doing, (settled ? failed.front() : *open).code, Shown(names) + share);
  failure.status = ExitStatus::Partial;
  failure.failedHosts = failed;
  if (!settled) AddRetry(failure, retry);
  return failure;
}

Json WithThisHost(Json done, bool here) {
  if (here) done.push_back("this host");
  return done;
}

void AddLocalFailure(Outcome &outcome, const std::vector<std::string> &retry) {
  Failure failure("Storing this host's table", KVR_ERR_LOCAL_WRITE_FAILED);
  if (outcome.failure) {
    outcome.notes.push_back(failure.message);
    return;
  }
  failure.status = ExitStatus::Partial;
  AddRetry(failure, retry);
  outcome.failure = failure;
}

}  // namespace kvrctl
