#include "dry_run.h"

#include <cstdint>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include "fabric/platform_files.h"
#include "platform.h"

namespace kvrctl {
namespace {

const std::filesystem::path *g_report = nullptr;  // of the dry run of this process

constexpr char kOverlayVariable[] = "KVR_OVERLAY";
constexpr char kOverlayMark[] = "overlay";  // the first line of a network that keeps its writes

std::filesystem::path FreshFile() {
  std::random_device random;
  const auto folder = std::filesystem::temp_directory_path();
  return folder / fmt::format("kvrctl-dry-run-{:08x}{:08x}", random(), random());
}

// What a function that writes is told as.
std::string TableOf(const std::string &function) {
  if (function == "TQ_WriteSaTable") return "whole table";
  if (function == "TQ_WriteSaTableHeader") return "header";
  if (function == "TQ_WriteAccessControlTable") return "access table";
  if (function == "TQ_WriteKeyTable") return "keys";
  if (function == "TQ_RemoveSaTable") return "removal";
  return function;
}

// Each table of each host once, in the order of the first write to it.
Json WritesIn(const std::string &report) {
  Json writes = Json::array();
  std::istringstream lines(report);
  std::string function, host;
  std::getline(lines, function);  // the mark
  while (lines >> function && std::getline(lines >> std::ws, host)) {
    bool again = false;
    for (Json &write : writes) {
      if (write["host"] != host || write["table"] != TableOf(function)) continue;
      write["times"] = write["times"].get<std::uint32_t>() + 1;
      again = true;
    }
    if (!again) writes.push_back({{"host", host}, {"table", TableOf(function)}, {"times", 1}});
  }
  return writes;
}

std::string Draw(const Drawing &inner, const Json &result, const Screen &screen) {
  std::string text = "A dry run: nothing was written.\n";
  if (inner && !result.at("result").is_null()) {
    text += "The command would answer:\n" + Indented(inner(result.at("result"), Inset(screen)));
  }
  return text + AsTable({{"host", "WOULD WRITE TO"}, {"table", "TABLE"}, {"times", "TIMES"}},
                        "No table would be written.")(result.at("would_write"), screen);
}

}  // namespace

DryRun::DryRun() : report_(FreshFile()) {
  if (!std::ofstream(report_)) throw std::runtime_error("no room for temporary files");
  const std::u8string name = report_.u8string();
  SetEnvironment(kOverlayVariable, {name.begin(), name.end()});
  g_report = &report_;
}

DryRun::~DryRun() {
  g_report = nullptr;
  std::error_code ignored;
  std::filesystem::remove(report_, ignored);
}

void DryRun::RequireOverlay() {
  if (g_report == nullptr) return;
  const std::string told = fabric::ReadContent(*g_report).value_or("");
  if (told.substr(0, told.find('\n')) == kOverlayMark) return;
  throw Failure(ExitStatus::Refused, "NO_DRY_RUN",
                "A dry run is possible on the simulated network only, which keeps its writes in "
                "memory; the adapter libraries in use would write for real. Nothing was changed.",
                "Try the command on a simulated network first: `kvrctl fabric new` makes one.");
}

Outcome DryRun::Reported(Outcome outcome) const {
  outcome.result = {{"dry_run", true},
                    {"would_write", WritesIn(fabric::ReadContent(report_).value_or(""))},
                    {"result", outcome.result}};
  if (outcome.failure) outcome.failure->retry.clear();  // it would go on for real
  outcome.draw = [inner = outcome.draw](const Json &result, const Screen &screen) {
    return Draw(inner, result, screen);
  };
  return outcome;
}

}  // namespace kvrctl
