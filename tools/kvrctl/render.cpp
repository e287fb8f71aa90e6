#include "render.h"

#include <cstdio>

#include "result_text.h"

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

void Write(std::FILE *stream, const std::string &text) {
  std::fputs(text.c_str(), stream);
}

void WriteJson(const std::string &command, const Outcome &outcome) {
  Json object = {{"schema", kSchema},
                 {"command", command.empty() ? Json() : Json(command)},
                 {"ok", !outcome.failure}};
  if (!outcome.result.is_null()) object["result"] = outcome.result;
  if (!outcome.notes.empty()) object["notes"] = outcome.notes;
  if (outcome.failure) object["error"] = ErrorJson(*outcome.failure);
  Write(stdout, object.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n');
}

void WriteFailedHosts(const std::vector<HostFailure> &failedHosts) {
  for (const HostFailure &failed : failedHosts) {
    const ResultText &why = TextOf(failed.code);
    Write(stderr, "  " + Line("{}: {} ({} {})", failed.host, why.meaning, failed.code, why.name));
  }
}

void WriteText(const Outcome &outcome) {
  Write(stdout, outcome.text);
  for (const std::string &note : outcome.notes)
    Write(stdout, Line("{}", note));
  if (!outcome.failure) return;
  std::fflush(stdout);
  Write(stderr, Line("kvrctl: {}", outcome.failure->message));
  if (outcome.failure->failedHosts.size() > 1) WriteFailedHosts(outcome.failure->failedHosts);
  Write(stderr, "  " + Line("{}", outcome.failure->hint));
}

}  // namespace

ExitStatus Render(Form form, const std::string &command, const Outcome &outcome) {
  if (form == Form::ForPrograms) {
    WriteJson(command, outcome);
  } else {
    WriteText(outcome);
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    Write(stderr,
          "kvrctl: The answer could not be written; give standard output room. What the command "
          "changed stays changed: look with `kvrctl status` or `kvrctl tree` before repeating.\n");
    return ExitStatus::NothingToTalkTo;
  }
  return outcome.failure ? outcome.failure->status : ExitStatus::Done;
}

ExitStatus Render(Form form, const std::string &command, const Failure &failure) {
  return Render(form, command, Outcome{Json(), "", {}, failure});
}

}  // namespace kvrctl
