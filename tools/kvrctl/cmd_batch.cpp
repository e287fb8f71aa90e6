// `kvrctl batch`: many commands in one run, with one discovery.
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>

#include <fmt/format.h>

#include "command.h"
#include "command_line.h"
#include "fabric/platform_files.h"
#include "platform.h"
#include "progress.h"
#include "render.h"
#include "words.h"

namespace kvrctl {
namespace {

struct BatchRequest {
  std::string file;
  std::size_t from = 1;
  bool keepGoing = false;
};

// A line of the file that holds a command.
struct Step {
  std::size_t number;  // of the line, from 1
  std::string text;
  std::unique_ptr<CommandLine> line;
};

Failure LineRefused(const Step &step, const Failure &why) {
  return {ExitStatus::Usage, why.name,
          fmt::format("Nothing was run, for line {} cannot be: {}", step.number, why.message),
          why.hint};
}

std::string ReadAll(const std::string &file) {
  if (file == "-") {
    return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
  }
  if (auto content = fabric::ReadContent(fabric::PathOf(file))) return *content;
  throw Failure(ExitStatus::Usage, "NO_SUCH_FILE",
                fmt::format("The file '{}' cannot be read.", Printable(file)),
                "Name a file of commands, one a line, or - for standard input.");
}

// What may stand in a shell but not here.
void RequireFit(const Step &step, const Consent &consent) {
  const Commands &commands = step.line->commands;
  if (commands.chosen.description->alone) {
    throw LineRefused(step, {ExitStatus::Usage, "USAGE",
                             fmt::format("'{}' has no place in a batch.", commands.chosen.name),
                             "Run it by itself, between batches."});
  }
  if (commands.consent.dryRun && !consent.dryRun) {
    throw LineRefused(step, {ExitStatus::Usage, "USAGE", "a batch is a dry run as a whole.",
                             "Give --dry-run to the batch itself."});
  }
  const bool asks = commands.chosen.description->effect == Effect::Destroys &&
                    !commands.consent.yes && !consent.yes && !consent.dryRun;
  if (asks && !Consent::CanAsk()) {
    throw LineRefused(step,
                      {ExitStatus::Usage, "CONFIRMATION_NEEDED",
                       "it needs a confirmation, and there is no terminal to give it on.",
                       "Put --yes behind that command, or give it to the batch for all of them."});
  }
}

// Reads every line before the first is run, so that a slip of the pen stops nothing halfway.
Step ReadStep(std::size_t number, const std::string &text, const Consent &consent) {
  Step step{number, text, std::make_unique<CommandLine>(CommandLine::Place::Batch)};
  try {
    std::vector<std::string> words = SplitWords(text);
    if (words.front() == "kvrctl") words.erase(words.begin());
    step.line->Read(words);
  } catch (const CLI::Success &) {
    throw LineRefused(step, {ExitStatus::Usage, "USAGE", "help has no place in a batch.",
                             "Ask for it by itself: `kvrctl --help`."});
  } catch (const Failure &refusal) {
    throw LineRefused(step, refusal);
  }
  RequireFit(step, consent);
  step.line->commands.consent.yes |= consent.yes;
  step.line->commands.consent.dryRun = consent.dryRun;
  return step;
}

std::vector<Step> ReadSteps(const BatchRequest &request, const Consent &consent) {
  std::vector<Step> steps;
  std::istringstream lines(ReadAll(request.file));
  std::size_t number = 0;
  for (std::string text; std::getline(lines, text);) {
    if (!text.empty() && text.back() == '\r') text.pop_back();
    if (++number < request.from) continue;
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos || text[first] == '#') continue;
    steps.push_back(ReadStep(number, text.substr(first), consent));
  }
  return steps;
}

std::string DrawSteps(const std::vector<Drawing> &drawings, const Json &result,
                      const Screen &screen) {
  std::string text;
  const Json &lines = result.at("lines");
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Json &line = lines[i];
    text += Line("{}: {}", Shown(line.at("line")), Shown(line.at("text")));
    std::string answer;
    if (line.contains("result") && drawings[i])
      answer = drawings[i](line.at("result"), Inset(screen));
    for (const Json &note : line.value("notes", Json::array()))
      answer += Line("{}", Shown(note));
    if (line.contains("error")) answer += Line("{}", Shown(line.at("error").at("message")));
    text += Indented(answer);
  }
  return text + Line("Commands done: {}; failed: {}; not run: {}.", Shown(result.at("done")),
                     Shown(result.at("failed")), Shown(result.at("not_run")));
}

// The batch fails as its first failure does, or in part where something was done.
Failure BatchFailure(const BatchRequest &request, const Step &step, const Failure &first,
                     const Json &result) {
  Failure failure = first;
  failure.message = fmt::format("Line {} failed: {}", step.number, first.message);
  if (result["done"] != 0) failure.status = ExitStatus::Partial;
  if (!request.keepGoing && request.file != "-") {
    const auto retry =
        Naming({"kvrctl", "batch", "--from", std::to_string(step.number)}, {request.file});
    failure.hint += fmt::format(" To go on from there: `{}`.", CommandText(retry));
  }
  return failure;
}

Outcome RunSteps(const BatchRequest &request, const std::vector<Step> &steps) {
  Progress progress("Running the batch", steps.size());
  Json lines = Json::array();
  std::vector<Drawing> drawings;
  const Step *failedStep = nullptr;
  std::optional<Failure> first;
  std::size_t failed = 0;
  Outcome outcome;
  for (const Step &step : steps) {
    progress.Step(step.text);
    const Outcome done = Run(step.line->commands.chosen);
    Json record = {
        {"line", step.number}, {"text", step.text}, {"command", step.line->commands.chosen.name}};
    record.update(OutcomeJson(done));
    lines.push_back(std::move(record));
    drawings.push_back(done.draw);
    outcome.unhealthy |= done.unhealthy;
    if (!done.failure) continue;
    ++failed;
    if (!first) {
      first = done.failure;
      failedStep = &step;
    }
    if (!request.keepGoing) break;
  }
  outcome.result = {{"done", lines.size() - failed},
                    {"failed", failed},
                    {"not_run", steps.size() - lines.size()},
                    {"lines", lines}};
  outcome.draw = [drawings](const Json &result, const Screen &screen) {
    return DrawSteps(drawings, result, screen);
  };
  if (first) outcome.failure = BatchFailure(request, *failedStep, *first, outcome.result);
  return outcome;
}

}  // namespace

void AddBatchCommand(CLI::App &app, Commands &commands) {
  const auto asked = std::make_shared<BatchRequest>();
  Description description{
      "batch",
      "Run the commands of a file, one a line, with one discovery",
      R"({"done","failed","not_run","lines":[{"line","text","command","ok",…}]})",
      Effect::Destroys,
      true,
      "A line is a command as in a shell, with or without `kvrctl`; a blank one and one that "
      "begins "
      "with # are passed over. Every line is read before the first is run. A failure ends the "
      "batch, "
      "and its hint names the command that goes on from there; --keep-going goes on at once.",
      "batch --dry-run plan.txt"};
  CLI::App *batch = AddCommand(app, description, commands, [asked, &consent = commands.consent] {
    return RunSteps(*asked, ReadSteps(*asked, consent));
  });
  batch->add_option("FILE", asked->file, "The file, or - for standard input")->required();
  batch->add_flag("--keep-going", asked->keepGoing, "Go on past a command that fails");
  batch->add_option("--from", asked->from, "The number of the line to begin with")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
}

}  // namespace kvrctl
