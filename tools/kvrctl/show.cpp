#include "show.h"

#include <utility>

namespace kvrctl {

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

Drawing AsTable(std::vector<Fact> columns, std::string none) {
  return [columns = std::move(columns), none = std::move(none)](const Json &rows,
                                                                const Screen &) -> std::string {
    if (rows.empty()) return none + '\n';
    std::vector<std::vector<std::string>> cells(1);
    for (const Fact &column : columns)
      cells.front().emplace_back(column.label);
    for (const Json &row : rows) {
      std::vector<std::string> &line = cells.emplace_back();
      for (const Fact &column : columns)
        line.push_back(Shown(row.at(column.key)));
    }
    return Columns(cells);
  };
}

Drawing AsSheet(std::vector<Fact> lines) {
  return [lines = std::move(lines)](const Json &object, const Screen &) {
    std::vector<std::vector<std::string>> cells;
    for (const Fact &line : lines)
      cells.push_back({line.label, Shown(object.at(line.key))});
    return Columns(cells);
  };
}

}  // namespace kvrctl
