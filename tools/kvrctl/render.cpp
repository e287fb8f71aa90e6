#include "render.h"

#include <cstdio>

#include <fmt/format.h>

#include "result_text.h"
#include "text.h"

namespace kvrctl {
namespace {

constexpr int kSchema = 1;

Json ErrorJson(const Failure &failure) {
  Json failedHosts = Json::array();
  for (const HostFailure &failed : failure.failedHosts) {
    failedHosts.push_back(
        {{"host", failed.host}, {"code", failed.code}, {"name", TextOf(failed.code).name}});
  }
  return {{"code", failure.code == 0 ? Json() : Json(failure.code)},
          {"name", failure.name},
          {"message", failure.message},
          {"hint", failure.hint},
          {"failed_hosts", failedHosts}};
}

void WriteJson(const std::string &command, const Outcome &outcome) {
  Json object = {{"schema", kSchema},
                 {"command", command.empty() ? Json() : Json(command)},
                 {"ok", !outcome.failure}};
  if (!outcome.result.is_null()) object["result"] = outcome.result;
  if (!outcome.notes.empty()) object["notes"] = outcome.notes;
  if (outcome.failure) object["error"] = ErrorJson(*outcome.failure);
  fmt::print("{}\n", object.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void WriteFailedHosts(const std::vector<HostFailure> &failedHosts) {
  for (const HostFailure &failed : failedHosts) {
    const ResultText &why = TextOf(failed.code);
    fmt::print(stderr, "  {}: {} ({} {})\n", Printable(failed.host), why.meaning, failed.code,
               why.name);
  }
}

void WriteText(const Outcome &outcome) {
  fmt::print("{}", outcome.text);
  for (const std::string &note : outcome.notes)
    fmt::print("{}\n", Printable(note));
  if (!outcome.failure) return;
  std::fflush(stdout);
  fmt::print(stderr, "kvrctl: {}\n", Printable(outcome.failure->message));
  if (outcome.failure->failedHosts.size() > 1) WriteFailedHosts(outcome.failure->failedHosts);
  fmt::print(stderr, "  {}\n", Printable(outcome.failure->hint));
}

}  // namespace

ExitStatus Render(Form form, const std::string &command, const Outcome &outcome) {
  if (form == Form::ForPrograms) {
    WriteJson(command, outcome);
  } else {
    WriteText(outcome);
  }
  return outcome.failure ? outcome.failure->status : ExitStatus::Done;
}

ExitStatus Render(Form form, const std::string &command, const Failure &failure) {
  return Render(form, command, Outcome{Json(), "", {}, failure});
}

}  // namespace kvrctl
