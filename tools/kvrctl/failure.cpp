#include "failure.h"

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "result_text.h"

namespace kvrctl {
ExitStatus StatusOf(std::uint32_t code) {
  if (code == KVR_ERR_NO_LOCAL_ADAPTER) return ExitStatus::NothingToTalkTo;
  if (code == KVR_ERR_SERVERS_FAILED) return ExitStatus::Partial;
  return ExitStatus::Refused;
}

Failure::Failure(const std::string &doing, std::uint32_t resultCode, const std::string &forWhom)
    : Failure(StatusOf(resultCode), TextOf(resultCode).name,
              fmt::format("{} failed{}{}: {} ({} {}).", doing, forWhom.empty() ? "" : " for ",
                          forWhom, TextOf(resultCode).meaning, resultCode, TextOf(resultCode).name),
              TextOf(resultCode).hint) {
  code = resultCode;
}

void Require(const std::string &doing, std::uint32_t code) {
  if (code != KVR_OK) throw Failure(doing, code);
}

}  // namespace kvrctl
