// What is inconsistent among the hosts and their tables, and the way out of each.
//
// The rules read one survey and nothing else. Each theme has a file of its own.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "findings_view.h"
#include "survey.h"

namespace kvrctl {

struct Finding {
  std::string code;  // a word for scripts, as "SLOT_HELD_TWICE"
  std::vector<std::string> hosts;
  std::vector<std::uint32_t> slots;
  std::string found;  // a sentence: the facts
  std::string means;  // a sentence: what they lead to
  std::string next;   // sentences: the next step
  bool wrong = true;  // false: worth knowing, but it can't be judged
};

using Findings = std::vector<Finding>;

// Everything found, what is wrong first.
Findings Diagnose(const Survey &survey);

// The themes, each adding what it finds.
void CheckRoles(const View &view, Findings &findings);     // MSCs, backups, slots held
void CheckPools(const View &view, Findings &findings);     // slots given out, and whose they are
void CheckSameness(const View &view, Findings &findings);  // what all members must share
void CheckDamage(const View &view, Findings &findings);    // tables that no library wrote so
void CheckReach(const View &view, Findings &findings);     // hosts and adapters that don't answer

}  // namespace kvrctl
