// The two forms in which every command answers: text for people, one JSON object for programs.
#pragma once

#include <string>

#include "command.h"

namespace kvrctl {

enum class Form { ForPeople, ForPrograms };

// What the object for programs says of an outcome: "ok", and what there is of "result", "notes" and
// "error".
Json OutcomeJson(const Outcome &outcome);

// An outcome's result and notes for people, in whole lines.
std::string ResultText(const Outcome &outcome, const Screen &screen);

// The "error" of an outcome for people: the sentence, the hosts that failed where they are several,
// the way out.
std::string FailureText(const Json &error);

// Writes a part of a text for people before the command's end.
void WriteBeforehand(const std::string &text);

// Writes an outcome: for people, the result on standard output and a failure on standard error; for
// programs, one object on standard output. Returns the exit status; NothingToTalkTo where standard
// output took no answer.
ExitStatus Render(Form form, const std::string &command, const Outcome &outcome);

// Writes a failure without a result, as above.
ExitStatus Render(Form form, const std::string &command, const Failure &failure);

}  // namespace kvrctl
