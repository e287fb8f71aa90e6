// `kvrctl table`: one stored table taken apart, or two held against each other. A table in a file
// needs no network.
#include <cstring>
#include <filesystem>
#include <memory>

#include <fmt/format.h>

#include "kvrapi/kvrapi.h"

#include "adapters.h"
#include "columns.h"
#include "command.h"
#include "fabric/platform_files.h"
#include "no_network.h"
#include "survey.h"
#include "table_image.h"

namespace kvrctl {
namespace {

using Table = std::shared_ptr<const SaTable>;

bool IsFile(const std::string &name) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(fabric::PathOf(name), ignored);
}

Table ReadFile(const std::string &name) {
  const auto content = fabric::ReadContent(fabric::PathOf(name), KVR_SA_TABLE_SIZE + 1);
  if (!content) {
    throw Failure(ExitStatus::NothingToTalkTo, "SYSTEM",
                  fmt::format("The file '{}' can't be read.", name),
                  "Check its permissions, and repeat.");
  }
  if (content->size() != KVR_SA_TABLE_SIZE) {
    throw Failure(
        ExitStatus::Usage, "NOT_A_TABLE",
        fmt::format("The file '{}' is no table: it has {} bytes in place of {}.", name,
                    content->size() > KVR_SA_TABLE_SIZE ? "more" : std::to_string(content->size()),
                    KVR_SA_TABLE_SIZE),
        "Name a whole table, as a simulated network keeps it in tables/HOST.satable.");
  }
  auto table = std::make_shared<SaTable>();
  std::memcpy(table.get(), content->data(), sizeof *table);
  return table;
}

// The host that this one sees under a name, by its 8-bit name before its UTF-16 one; null where
// there is none. Throws Failure where there are several.
const System *FindSystem(const std::string &name) {
  std::vector<const System *> exact;
  std::vector<const System *> wide;
  for (const System &system : Systems()) {
    if (system.excluded) continue;
    if (system.name == name) exact.push_back(&system);
    if (system.name != name && system.wideName == name) wide.push_back(&system);
  }
  const auto &found = exact.empty() ? wide : exact;
  if (found.size() < 2) return found.empty() ? nullptr : found.front();
  throw Failure(ExitStatus::Usage, "AMBIGUOUS_HOST",
                fmt::format("{} hosts are called '{}'.", found.size(), name),
                "Name the host by its other name, or give the hosts names that differ.");
}

Table Held(std::unique_ptr<SaTable> table, const std::string &name) {
  if (table != nullptr) return table;
  throw Failure(ExitStatus::Refused, "NO_TABLE", fmt::format("No table of {} could be read.", name),
                "A host outside every configuration holds none; `kvrctl hosts` shows who takes "
                "part. Else check that the host and its adapters are up, and repeat.");
}

// The discovery of the library writes to the backup MSCs; to look at a table it is not needed.
Table ReadNamed(const std::string &name) {
  if (name.empty()) {
    throw Failure(ExitStatus::Usage, "NO_SUCH_TABLE", "An empty name names no table.",
                  "`kvrctl hosts` lists the hosts; a file is named by its path.");
  }
  if (name.find_first_of("/\\") != std::string::npos && IsFile(name)) return ReadFile(name);
  const bool reachable = KVR_Initialize() != KVR_ERR_NO_LOCAL_ADAPTER;
  if (reachable && fabric::Environment("KVR_HOST") == name) return Held(ReadLocalTable(), name);
  if (const System *system = reachable ? FindSystem(name) : nullptr) {
    return Held(ReadTable(*system), name);
  }
  if (IsFile(name)) return ReadFile(name);
  if (!reachable) throw NoLocalAdapter();
  throw Failure(ExitStatus::Usage, "NO_SUCH_TABLE",
                fmt::format("'{}' is neither a host that this one sees nor a file.", name),
                "`kvrctl hosts` lists the hosts; a file is named by its path.");
}

std::string AccessText(const Json &position) {
  std::string text;
  for (const auto &[key, label] : std::initializer_list<std::pair<const char *, const char *>>{
           {"serves", "serves"},
           {"self", "self"},
           {"msc", "MSC"},
           {"backup_msc", "backup MSC"},
           {"child", "child"},
           {"delegated", "delegated"},
           {"reserved", "reserved"},
           {"switch_access", "switch access"}}) {
    if (position.at(key).get<bool>()) text += (text.empty() ? "" : ", ") + std::string(label);
  }
  return text.empty() ? "-" : text;
}

// What the position holds beside what every table holds there.
std::string OddText(const Json &position) {
  std::string text;
  const auto add = [&](const char *label, const Json &value) {
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", label, Shown(value));
  };
  if (position.at("slot_index") != position.at("position"))
    add("number", position.at("slot_index"));
  for (const auto *key : {"unknown_serve_bits", "unknown_role_bits"}) {
    if (position.at(key) != 0) add(key, position.at(key));
  }
  if (position.at("reserved_words") != Json({0, 0, 0, 0})) {
    add("reserved words", position.at("reserved_words"));
  }
  if (position.at("key_length") != KVR_KEY_LENGTH) add("key length", position.at("key_length"));
  return text.empty() ? "-" : text;
}

std::string DrawPositions(const Json &positions, const Screen &screen) {
  if (positions.empty()) return "No position is in use.\n";
  const bool keys = positions.front().contains("key");
  std::vector<std::string> labels = {"POSITION", "ACCESS", "ALSO"};
  if (keys) labels.emplace_back("KEY");
  std::vector<Row> rows;
  for (const Json &position : positions) {
    Row &row = rows.emplace_back();
    row = {{Shown(position.at("position"))}, {AccessText(position)}, {OddText(position)}};
    if (keys) row.push_back({Shown(position.at("key"))});
  }
  return Columns(labels, rows, screen);
}

std::string NameText(const Json &names, const char *name, const char *ended) {
  return Shown(names.at(name)) + (names.at(ended).get<bool>() ? "" : " (without an end)");
}

std::string DrawTable(const Json &table, const Screen &screen) {
  const Json &names = table.at("names");
  const std::vector<Row> head = {{{"source"}, {Shown(table.at("source"))}},
                                 {{"fingerprint"}, {Shown(table.at("fingerprint"))}},
                                 {{"format"}, {Shown(table.at("format").at("id"))}},
                                 {{"revision"}, {Shown(table.at("format").at("revision"))}},
                                 {{"configuration"}, {Shown(table.at("config_id"))}},
                                 {{"name"}, {NameText(names, "ascii", "ascii_ended")}},
                                 {{"UTF-16 name"}, {NameText(names, "wide", "wide_ended")}},
                                 {{"keys"}, {Shown(table.at("keys").at("fingerprint"))}}};
  return Columns({}, head, screen) + '\n' + DrawPositions(table.at("positions"), screen);
}

Outcome Dump(const std::string &name, const Detail &detail) {
  Json table = {{"source", name}};
  table.update(Decoded(*ReadNamed(name), detail));
  return {table, DrawTable};
}

std::string DrawDifferences(const Json &result, const Screen &screen) {
  const std::string heading =
      Line("A is {}, B is {}.", Shown(result.at("a")), Shown(result.at("b")));
  return heading + AsTable({{"field", "FIELD"}, {"a", "A"}, {"b", "B"}},
                           "The tables are equal byte by byte.")(result.at("differences"), screen);
}

Outcome Diff(const std::string &a, const std::string &b, bool all) {
  const Table one = ReadNamed(a);
  const Json differences = Differences(*one, *ReadNamed(b), all);
  Outcome outcome = {
      {{"a", a}, {"b", b}, {"equal", differences.empty()}, {"differences", differences}},
      DrawDifferences};
  outcome.unhealthy = !differences.empty();
  return outcome;
}

void AddDump(CLI::App &table, Commands &commands) {
  struct Request {
    std::string table;
    Detail detail;
  };
  const auto asked = std::make_shared<Request>();
  CLI::App *dump = AddCommand(
      table,
      {"dump", "Show a stored table field by field",
       R"({"source","fingerprint","format":{"id","revision"},"config_id","names":{"ascii","wide",)"
       R"("ascii_ended","wide_ended"},"keys":{"fingerprint"},"positions":[{"position","serves",)"
       R"("self","msc","backup_msc","child","delegated","reserved","switch_access",)"
       R"("unknown_serve_bits","unknown_role_bits","slot_index","reserved_words":[…],)"
       R"("key_length"}]}, with `--all` or `--keys` also "key" in each position)"},
      commands, [asked] { return Dump(asked->table, asked->detail); });
  dump->add_option("HOST|FILE", asked->table, "A host's name, this host's too, or a table's file")
      ->required();
  dump->add_flag("--all", asked->detail.all, "Every position, with the fingerprint of its key");
  dump->add_flag("--keys", asked->detail.keys, "The keys themselves, in hexadecimal");
}

void AddDiff(CLI::App &table, Commands &commands) {
  struct Request {
    std::string a, b;
    bool all = false;
  };
  const auto asked = std::make_shared<Request>();
  CLI::App *diff = AddCommand(table,
                              {"diff", "Show the fields in which two stored tables differ",
                               R"({"a","b","equal","differences":[{"field","a","b"}]})"},
                              commands, [asked] { return Diff(asked->a, asked->b, asked->all); });
  diff->add_option("A", asked->a, "A host's name, this host's too, or a table's file")->required();
  diff->add_option("B", asked->b, "As A")->required();
  diff->add_flag("--all", asked->all, "The keys of the positions one by one too");
}

}  // namespace

void AddTableCommands(CLI::App &app, Commands &commands) {
  CLI::App *table = AddFamily(app, "table", "Look into stored tables");
  AddDump(*table, commands);
  AddDiff(*table, commands);
}

}  // namespace kvrctl
