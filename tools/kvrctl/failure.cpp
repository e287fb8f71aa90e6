#include "failure.h"

#include <fmt/format.h>

#include "hints.h"

namespace kvrctl {

ExitStatus StatusOf(std::uint32_t code) {
  if (code == KVR_ERR_NO_LOCAL_ADAPTER) return ExitStatus::NothingToTalkTo;
  if (code == KVR_ERR_SERVERS_FAILED) return ExitStatus::Partial;
  return ExitStatus::Refused;
}

Failure::Failure(const std::string &doing, std::uint32_t resultCode, const std::string &forWhom)
    : Failure(StatusOf(resultCode), kvrapi::TextOf(resultCode).name,
              fmt::format("{} failed{}{}: {} ({} {}).", doing, forWhom.empty() ? "" : " for ",
                          forWhom, kvrapi::TextOf(resultCode).meaning, resultCode,
                          kvrapi::TextOf(resultCode).name),
              HintOf(resultCode)) {
  code = resultCode;
}

}  // namespace kvrctl
