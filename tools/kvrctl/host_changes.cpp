#include "host_changes.h"

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "result_text.h"

namespace kvrctl {

Outcome ChangeHosts(const Library &library, const std::vector<std::string> &names,
                    const Wording &wording,
                    const std::function<std::uint32_t(KVR_SYSTEM)> &change) {
  std::vector<const Host *> hosts;
  for (const std::string &name : names)
    hosts.push_back(&library.HostNamed(name));

  Json done = Json::array();
  std::vector<HostFailure> failed;
  for (const Host *host : hosts) {
    const std::uint32_t code = change(host->handle);
    if (code == KVR_OK) {
      done.push_back(host->name);
    } else {
      failed.push_back({host->name, code});
    }
  }
  const std::string text = Line("{}: {}.", wording.didSo, Shown(done));
  if (failed.empty()) return {{{"done", done}}, text, {}, std::nullopt};
  const std::uint32_t code = failed.front().code;
  Failure failure = PartialFailure(wording.doing, hosts.size(), code, failed);
  if (!done.empty()) return {{{"done", done}}, text, {}, failure};
  failure.status = StatusOf(code);
  throw failure;
}

Failure PartialFailure(const std::string &doing, std::size_t total, std::uint32_t code,
                       const std::vector<HostFailure> &failed) {
  Json names = Json::array();
  for (const HostFailure &one : failed)
    names.push_back(one.host);
  const std::string share =
      failed.size() == total ? "" : fmt::format(" ({} of {} hosts)", failed.size(), total);
  Failure failure(doing, code, Shown(names) + share);
  failure.status = ExitStatus::Partial;
  failure.failedHosts = failed;
  return failure;
}

}  // namespace kvrctl
