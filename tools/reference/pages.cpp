#include "pages.h"

#include <fmt/format.h>

namespace reference {

std::string Joined(const Json &list, const std::string &between) {
  return fmt::format("{}", fmt::join(list.get<std::vector<std::string>>(), between));
}

std::string WordsOf(const Json &command) {
  return Joined(command.at("words"), " ");
}

std::vector<Json> CommandsBelow(const Json &program, const std::string &family) {
  std::vector<Json> commands;
  for (const Json &command : program.at("commands")) {
    const Json &words = command.at("words");
    if ((words.size() == 1 ? "" : words.front().get<std::string>()) == family) {
      commands.push_back(command);
    }
  }
  return commands;
}

std::vector<std::string> WordsBelow(const Json &program, const std::string &family) {
  std::vector<std::string> words;
  if (family.empty()) {
    for (const Json &one : program.at("families"))
      words.push_back(one.at("word"));
  }
  for (const Json &command : CommandsBelow(program, family))
    words.push_back(command.at("words").back());
  return words;
}

std::string LabelOf(const Json &item) {
  std::string label;
  if (item.contains("names")) {
    label = Joined(item.at("names"), ", ");
    if (!item.at("value").is_null()) label += ' ' + item.at("value").get<std::string>();
  } else {
    label = item.at("choices").empty() ? item.at("name").get<std::string>()
                                       : Joined(item.at("choices"), "|");
  }
  return item.at("repeated") ? label + "..." : label;
}

std::string MeaningOf(const Json &item) {
  std::string meaning = item.at("description");
  if (item.value("required", false) && item.contains("names")) meaning += "; must be given";
  const Json standard = item.value("default", Json());
  if (!standard.is_null())
    meaning += fmt::format("; {} where not given", standard.get<std::string>());
  return meaning + '.';
}

std::string EffectOf(const Json &command) {
  const std::string effect = command.at("effect");
  std::string text = effect == "reads" ? "Changes no table by itself."
                     : effect == "changes"
                         ? "Changes tables of hosts."
                         : "Changes tables of hosts, and asks before it takes something away.";
  if (!command.at("batch")) text += " Has no place in a batch.";
  return text;
}

std::string Replaced(std::string text, const std::string &searched, const std::string &by) {
  for (std::size_t at = 0; (at = text.find(searched, at)) != std::string::npos; at += by.size())
    text.replace(at, searched.size(), by);
  return text;
}

}  // namespace reference
