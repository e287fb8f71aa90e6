#include "show.h"

#include <utility>

#include "columns.h"

namespace kvrctl {
namespace {

Cell CellOf(const Fact &fact, const Json &object) {
  const Json &value = object.at(fact.key);
  return {Shown(value), fact.tone == nullptr ? Style() : fact.tone(value)};
}

}  // namespace

std::string Shown(const Json &value) {
  if (value.is_null()) return "-";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (!value.is_array()) return value.dump();
  std::string list;
  for (const Json &item : value)
    list += (list.empty() ? "" : ", ") + Shown(item);
  return list.empty() ? "-" : list;
}

std::string ShownList(const Json &list) {
  return list.empty() ? "none" : Shown(list);
}

Style WarningIfTrue(const Json &value) {
  return value == true ? kWarningStyle : Style();
}

Style WarningIfFalse(const Json &value) {
  return value == false ? kWarningStyle : Style();
}

Drawing AsTable(std::vector<Fact> columns, std::string none) {
  return [columns = std::move(columns), none = std::move(none)](
             const Json &objects, const Screen &screen) -> std::string {
    if (objects.empty()) return none + '\n';
    std::vector<std::string> labels;
    for (const Fact &column : columns)
      labels.emplace_back(column.label);
    std::vector<Row> rows;
    for (const Json &object : objects) {
      Row &row = rows.emplace_back();
      for (const Fact &column : columns)
        row.push_back(CellOf(column, object));
    }
    return Columns(labels, rows, screen);
  };
}

Drawing AsSheet(std::vector<Fact> lines) {
  return [lines = std::move(lines)](const Json &object, const Screen &screen) {
    std::vector<Row> rows;
    for (const Fact &line : lines)
      rows.push_back({{line.label, kLabelStyle}, CellOf(line, object)});
    return Columns({}, rows, screen);
  };
}

}  // namespace kvrctl
