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

inline constexpr char kExitStatusHelp[] =
    "Exit status: 0 done; 1 a difference or something unhealthy was found; 2 usage, or a name "
    "that\n"
    "is not there or not unique; 3 refused by the library; 4 done in part, the hosts that failed "
    "are\n"
    "listed; 5 nothing to talk to: no adapter, no fabric, or a fabric description that is refused.";

}  // namespace kvrctl
