// How a run of kvrctl ends: the one list of exit statuses, for scripts that look at nothing else.
#pragma once

namespace kvrctl {

enum class ExitStatus : int {
  Done = 0,            // everything asked was done
  Unhealthy = 1,       // done, and a difference or something unhealthy was found
  Usage = 2,           // the command line is wrong, or names what isn't there or isn't unique
  Refused = 3,         // the library refused; nothing was changed unless the message says so
  Partial = 4,         // done in part: the hosts that failed are listed
  NothingToTalkTo = 5  // no adapter, no fabric, or a fabric description that cannot be used
};

// What users are told of each.
struct StatusMeaning {
  ExitStatus status;
  const char *meaning;
};

inline constexpr StatusMeaning kStatusMeanings[] = {
    {ExitStatus::Done, "done"},
    {ExitStatus::Unhealthy, "a difference or something unhealthy was found"},
    {ExitStatus::Usage,
     "the command line is wrong, or names what is not there or not unique; nothing was changed"},
    {ExitStatus::Refused, "refused by the library, or not confirmed"},
    {ExitStatus::Partial, "done in part: the hosts that failed are listed, the others are done"},
    {ExitStatus::NothingToTalkTo,
     "nothing to talk to: no adapter, no fabric or one that is refused; or no room for the answer"},
};

}  // namespace kvrctl
