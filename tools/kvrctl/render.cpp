#include "render.h"

#include <cstdio>

#include "progress.h"

namespace kvrctl {
namespace {

constexpr int kSchema = 1;

Json ErrorJson(const Failure &failure) {
  Json failedHosts = Json::array();
  for (const HostFailure &failed : failure.failedHosts) {
    failedHosts.push_back(
        {{"host", failed.host}, {"code", failed.code}, {"name", kvrapi::TextOf(failed.code).name}});
  }
  return {{"code", failure.code == 0 ? Json() : Json(failure.code)},
          {"name", failure.name},
          {"message", failure.message},
          {"hint", failure.hint + failure.retry},
          {"failed_hosts", failedHosts}};
}

void Write(std::FILE *stream, const std::string &text) {
  std::fputs(text.c_str(), stream);
}

void WriteJson(const std::string &command, const Outcome &outcome) {
  Json object = {{"schema", kSchema}, {"command", command.empty() ? Json() : Json(command)}};
  object.update(OutcomeJson(outcome));
  Write(stdout, object.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n');
}

void WriteText(const Outcome &outcome) {
  Write(stdout, ResultText(outcome, OutputScreen()));
  if (!outcome.failure) return;
  std::fflush(stdout);
  Write(stderr, Painted("kvrctl:", kAlarmStyle, ErrorScreen()) + ' ' +
                    FailureText(ErrorJson(*outcome.failure)));
}

}  // namespace

Json OutcomeJson(const Outcome &outcome) {
  Json object = {{"ok", !outcome.failure}};
  if (!outcome.result.is_null()) object["result"] = outcome.result;
  if (!outcome.notes.empty()) object["notes"] = outcome.notes;
  if (outcome.failure) object["error"] = ErrorJson(*outcome.failure);
  return object;
}

std::string ResultText(const Outcome &outcome, const Screen &screen) {
  std::string text;
  if (outcome.draw && !outcome.result.is_null()) text = outcome.draw(outcome.result, screen);
  for (const std::string &note : outcome.notes)
    text += Line("{}", note);
  return text;
}

std::string FailureText(const Json &error) {
  std::string text = Line("{}", Shown(error.at("message")));
  const Json &failedHosts = error.at("failed_hosts");
  for (const Json &failed : failedHosts) {
    if (failedHosts.size() == 1) break;  // the sentence tells of it
    const kvrapi::CodeText &why = kvrapi::TextOf(failed.at("code").get<std::uint32_t>());
    text += Line("  {}: {} ({} {})", Shown(failed.at("host")), why.meaning, why.code, why.name);
  }
  return text + Line("  {}", Shown(error.at("hint")));
}

void WriteBeforehand(const std::string &text) {
  Progress::Clear();
  Write(stdout, text);
  std::fflush(stdout);
}

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
  return StatusOf(outcome);
}

ExitStatus Render(Form form, const std::string &command, const Failure &failure) {
  return Render(form, command, Outcome{Json(), {}, {}, failure});
}

}  // namespace kvrctl
