// `kvrctl doctor`: what is inconsistent among the hosts and their tables, and the way out.
#include <algorithm>
#include <memory>

#include "columns.h"
#include "command.h"
#include "findings.h"
#include "library.h"
#include "survey.h"

namespace kvrctl {
namespace {

Json JsonOf(const Finding &finding, std::size_t number) {
  return {{"number", number},       {"code", finding.code},   {"wrong", finding.wrong},
          {"hosts", finding.hosts}, {"slots", finding.slots}, {"found", finding.found},
          {"means", finding.means}, {"next", finding.next}};
}

std::string DrawFinding(const Json &finding, const Screen &screen) {
  std::vector<Row> rows = {{{"hosts"}, {ShownList(finding.at("hosts"))}}};
  if (!finding.at("slots").empty()) rows.push_back({{"slots"}, {Shown(finding.at("slots"))}});
  for (const char *key : {"found", "means", "next"})
    rows.push_back({{key}, {Shown(finding.at(key))}});
  return Line("{}. {}{}", Shown(finding.at("number")), Shown(finding.at("code")),
              finding.at("wrong").get<bool>() ? "" : " (can't be judged)") +
         Columns({}, rows, screen) + '\n';
}

std::string DrawDoctor(const Json &result, const Screen &screen) {
  std::string text;
  for (const Json &finding : result.at("findings"))
    text += DrawFinding(finding, screen);
  const auto tables = result.at("tables").get<std::size_t>();
  const std::string read = fmt::format("{} {} read", tables, tables == 1 ? "table" : "tables");
  if (result.at("healthy").get<bool>()) return text + Line("Nothing is wrong; {}.", read);
  const auto &findings = result.at("findings");
  const auto wrong = std::count_if(findings.begin(), findings.end(), [](const Json &finding) {
    return finding.at("wrong").get<bool>();
  });
  return text + Line("{} {} wrong; {}.", wrong, wrong == 1 ? "thing is" : "things are", read);
}

Outcome Diagnosis(bool onlyWrong) {
  const Library library;
  const Survey survey = TakeSurvey(library);
  const auto tables = std::count_if(survey.hosts.begin(), survey.hosts.end(),
                                    [](const auto &host) { return host.table != nullptr; });
  bool healthy = true;
  Json listed = Json::array();
  for (const Finding &finding : Diagnose(survey)) {
    healthy = healthy && !finding.wrong;
    if (finding.wrong || !onlyWrong) listed.push_back(JsonOf(finding, listed.size() + 1));
  }
  Outcome outcome = {{{"healthy", healthy}, {"tables", tables}, {"findings", listed}}, DrawDoctor};
  outcome.unhealthy = !healthy;
  return outcome;
}

}  // namespace

void AddDoctorCommand(CLI::App &app, Commands &commands) {
  const auto onlyWrong = std::make_shared<bool>(false);
  AddCommand(app,
             {"doctor", "Read every table, and tell what is inconsistent and the way out",
              R"({"healthy","tables","findings":[{"number","code","wrong","hosts":[…],)"
              R"("slots":[…],"found","means","next"}]})"},
             commands, [onlyWrong] { return Diagnosis(*onlyWrong); })
      ->add_flag("-x,--only-wrong", *onlyWrong, "Leave out what can't be judged");
}

}  // namespace kvrctl
