// A run in which every write stays in memory: the command is carried out for real, on a simulated
// network that keeps what is written to itself and tells of it.
#pragma once

#include <filesystem>

#include "command.h"

namespace kvrctl {

// Lasts for the whole run; there is one at most. It must begin before the library is first called.
class DryRun {
 public:
  DryRun();
  DryRun(const DryRun &) = delete;
  DryRun &operator=(const DryRun &) = delete;
  ~DryRun();

  // Where a dry run has begun: returns when the network that the library has opened keeps its
  // writes in memory. Throws Failure where it does not, as with adapter libraries of a vendor.
  static void RequireOverlay();

  // The outcome of the command with the tables that it would have written.
  [[nodiscard]] Outcome Reported(Outcome outcome) const;

 private:
  std::filesystem::path report_;  // where the simulated network tells of writes
};

}  // namespace kvrctl
