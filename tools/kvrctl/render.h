// The two forms in which every command answers: text for people, one JSON object for programs.
#pragma once

#include <string>

#include "command.h"

namespace kvrctl {

enum class Form { ForPeople, ForPrograms };

// Writes an outcome: for people, the result on standard output and a failure on standard error; for
// programs, one object on standard output. Returns the exit status; NothingToTalkTo where standard
// output took no answer.
ExitStatus Render(Form form, const std::string &command, const Outcome &outcome);

// Writes a failure without a result, as above.
ExitStatus Render(Form form, const std::string &command, const Failure &failure);

}  // namespace kvrctl
