#include "consent.h"

#include <cstdio>
#include <iostream>

#include <fmt/format.h>

#include "failure.h"
#include "platform.h"
#include "progress.h"
#include "text.h"

namespace kvrctl {
namespace {

// The line typed, without the marks of its end and blanks around it.
std::string ReadAnswer() {
  std::string line;
  std::getline(std::cin, line);
  if (std::cin.eof()) std::fputs("\n", stderr);  // no key has ended the line of the question
  const std::size_t first = line.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return line.substr(first, line.find_last_not_of(" \t\r") - first + 1);
}

}  // namespace

bool Consent::CanAsk() {
  return IsTerminal(stdin) && IsTerminal(stderr);
}

void Consent::Require(const std::string &sentence, const std::string &word) const {
  if (yes || dryRun) return;
  if (!CanAsk()) {
    throw Failure(
        ExitStatus::Usage, "CONFIRMATION_NEEDED",
        fmt::format("{} Nothing was changed, for there is no terminal to confirm it on.", sentence),
        "Repeat the command with --yes, or with --dry-run to see what it would write.");
  }
  Progress::Clear();
  fmt::print(stderr, "{}\nType '{}' to go on: ", Printable(sentence), word);
  std::fflush(stderr);
  if (ReadAnswer() == word) return;
  throw Failure(ExitStatus::Refused, "NOT_CONFIRMED",
                "The change was not confirmed; nothing was changed.",
                fmt::format("Repeat the command and type '{}', or give --yes.", word));
}

}  // namespace kvrctl
