// Whether a change that sweeps or destroys may go on.
#pragma once

#include <string>

namespace kvrctl {

struct Consent {
  bool yes = false;     // --yes: given beforehand
  bool dryRun = false;  // --dry-run: nothing is written, so none is needed

  // True when there is a terminal to ask on.
  static bool CanAsk();

  // Returns where the change may go on. On a terminal it is asked for: sentence says what would
  // happen, and word is what has to be typed. Throws Failure where another answer came, and where
  // there is no terminal to ask on.
  void Require(const std::string &sentence, const std::string &word) const;
};

}  // namespace kvrctl
