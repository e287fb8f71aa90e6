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

constexpr char kStandardInput[] = "-";
constexpr char kBlanks[] = " \t\r";
constexpr std::uint32_t kMostLines = 1000000000;

struct BatchRequest {
  std::string file;
  std::uint32_t from = 1;
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
  if (file == kStandardInput) {
    return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
  }
  if (auto content = fabric::ReadContent(fabric::PathOf(file))) return *content;
  throw Failure(ExitStatus::Usage, "NO_SUCH_FILE",
                fmt::format("The file '{}' cannot be read.", Printable(file)),
                "Name a file of commands, one a line, or - for standard input.");
}

// What may stand in a shell but not here.
void RequireFit(const Step &step, const BatchRequest &request, const Consent &consent) {
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
  if (asks && (request.file == kStandardInput || !Consent::CanAsk())) {
    throw LineRefused(step,
                      {ExitStatus::Usage, "CONFIRMATION_NEEDED",
                       "it needs a confirmation, and there is no terminal to give it on.",
                       "Put --yes behind that command, or give it to the batch for all of them."});
  }
}

// Reads a line's command before the first is run, so that a slip of the pen stops nothing halfway;
// none where the line holds no command.
std::optional<Step> ReadStep(std::size_t number, const std::string &text,
                             const BatchRequest &request, const Consent &consent) {
  Step step{number, text, std::make_unique<CommandLine>(CommandLine::Place::Batch)};
  try {
    std::vector<std::string> words = SplitWords(text);
    if (words.empty()) return std::nullopt;
    if (words.front() == "kvrctl") words.erase(words.begin());
    step.line->Read(words);
  } catch (const CLI::Success &) {
    throw LineRefused(step, {ExitStatus::Usage, "USAGE", "help has no place in a batch.",
                             "Ask for it by itself: `kvrctl --help`."});
  } catch (const Failure &refusal) {
    throw LineRefused(step, refusal);
  }
  RequireFit(step, request, consent);
  step.line->commands.consent.yes |= consent.yes;
  step.line->commands.consent.dryRun = consent.dryRun;
  return step;
}

std::string Trimmed(const std::string &text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<Step> ReadSteps(const BatchRequest &request, const Consent &consent) {
  std::vector<Step> steps;
  std::istringstream lines(ReadAll(request.file));
  std::size_t number = 0;
  for (std::string text; std::getline(lines, text);) {
    if (++number < request.from) continue;
    auto step = ReadStep(number, Trimmed(text), request, consent);
    if (step) steps.push_back(std::move(*step));
  }
  if (request.from > 1 && request.from > number) {
    throw Failure(
        ExitStatus::Usage, "USAGE",
        fmt::format("There is no line {} in the file, which has {}.", request.from, number),
        "Give --from the number of one of its lines.");
  }
  return steps;
}

// A line with its answer, for people.
std::string DrawStep(const Json &line, const Drawing &drawing, const Screen &screen) {
  std::string answer;
  if (line.contains("result") && drawing) answer = drawing(line.at("result"), Inset(screen));
  for (const Json &note : line.value("notes", Json::array()))
    answer += Line("{}", Shown(note));
  if (line.contains("error")) answer += FailureText(line.at("error"));
  return Line("{}: {}", Shown(line.at("line")), Shown(line.at("text"))) + Indented(answer);
}

std::string DrawSummary(const Json &result) {
  return Line("Commands done: {}; failed: {}; not run: {}.", Shown(result.at("done")),
              Shown(result.at("failed")), Shown(result.at("not_run")));
}

// Where a batch that stopped is gone on with: at the line that failed, or behind it where what is
// left of that line has a command of its own.
std::string WayOn(const BatchRequest &request, const Consent &consent,
                  const std::vector<Step> &steps, std::size_t failed, bool behind) {
  if (behind && failed + 1 == steps.size()) return "";
  std::vector<std::string> command = {"kvrctl", "batch"};
  if (consent.yes) command.emplace_back("--yes");
  command.insert(command.end(),
                 {"--from", std::to_string(steps[failed + (behind ? 1 : 0)].number)});
  return fmt::format(" To go on {}: `{}`.", behind ? "behind that line" : "from there",
                     CommandText(Naming(std::move(command), {request.file})));
}

// A step's place among the steps and what it failed in.
struct FirstFailure {
  std::size_t step;
  Failure failure;
};

// The batch fails as its first failure does, or in part where something was done.
Failure BatchFailure(const BatchRequest &request, const Consent &consent,
                     const std::vector<Step> &steps, const FirstFailure &first, bool anyDone) {
  Failure failure = first.failure;
  failure.message =
      fmt::format("Line {} failed: {}", steps[first.step].number, first.failure.message);
  if (anyDone) failure.status = ExitStatus::Partial;
  if (!request.keepGoing && request.file != kStandardInput) {
    failure.retry += WayOn(request, consent, steps, first.step, !failure.retry.empty());
  }
  return failure;
}

// What the lines answered.
struct Answers {
  Json lines = Json::array();
  std::vector<Drawing> drawings;
  std::optional<FirstFailure> first;
  std::size_t failed = 0;
  bool unhealthy = false;
};

void RunStep(const Step &step, std::size_t place, Answers &answers, const Listener &listener) {
  const Outcome done = Run(step.line->commands.chosen);
  Json record = {
      {"line", step.number}, {"text", step.text}, {"command", step.line->commands.chosen.name}};
  record.update(OutcomeJson(done));
  if (listener) listener(DrawStep(record, done.draw, OutputScreen()));
  answers.lines.push_back(std::move(record));
  answers.drawings.push_back(done.draw);
  answers.unhealthy |= done.unhealthy;
  if (!done.failure) return;
  ++answers.failed;
  if (!answers.first) answers.first = {place, *done.failure};
}

// Where there is a listener, it hears each line's answer when it is given, so that what was done is
// known however the run ends.
Outcome RunSteps(const BatchRequest &request, const std::vector<Step> &steps,
                 const Commands &commands) {
  Progress progress("Running the batch", steps.size());
  Answers answers;
  for (std::size_t place = 0; place < steps.size(); ++place) {
    progress.Step(steps[place].text);
    RunStep(steps[place], place, answers, commands.listener);
    if (answers.failed > 0 && !request.keepGoing) break;
  }
  const std::size_t done = answers.lines.size() - answers.failed;
  Outcome outcome = {{{"done", done},
                      {"failed", answers.failed},
                      {"not_run", steps.size() - answers.lines.size()},
                      {"lines", answers.lines}}};
  outcome.draw = [drawings = answers.drawings, told = commands.listener != nullptr](
                     const Json &result, const Screen &screen) {
    std::string text;
    for (std::size_t i = 0; i < drawings.size() && !told; ++i)
      text += DrawStep(result.at("lines")[i], drawings[i], screen);
    return text + DrawSummary(result);
  };
  outcome.unhealthy = answers.unhealthy;
  if (answers.first) {
    outcome.failure = BatchFailure(request, commands.consent, steps, *answers.first, done > 0);
  }
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
  CLI::App *batch = AddCommand(app, description, commands, [asked, &commands] {
    return RunSteps(*asked, ReadSteps(*asked, commands.consent), commands);
  });
  batch->add_option("FILE", asked->file, "The file, or - for standard input")->required();
  batch->add_flag("--keep-going", asked->keepGoing, "Go on past a command that fails");
  batch->add_option("--from", asked->from, "The number of the line to begin with")
      ->check(CLI::Range(std::uint32_t{1}, kMostLines))
      ->capture_default_str();
}

}  // namespace kvrctl
