// The reference in Markdown.
#include <fmt/format.h>

#include "pages.h"

namespace reference {
namespace {

std::string Cell(const std::string &text) {
  return Replaced(Replaced(text, "|", "\\|"), "<", "&lt;");
}

std::string Code(const std::string &text) {
  return '`' + text + '`';
}

std::string Row(const std::string &left, const std::string &right) {
  return fmt::format("| {} | {} |\n", left, right);
}

std::string Head(const std::string &left, const std::string &right) {
  return Row(left, right) + "|---|---|\n";
}

// The rows of arguments and options.
std::string Taken(const Json &items) {
  std::string rows;
  for (const Json &item : items)
    rows += Row(Cell(Code(LabelOf(item))), Cell(MeaningOf(item)));
  return rows;
}

std::string CommandText(const Json &command) {
  const std::string details = command.at("details");
  const std::string example = command.at("example");
  std::string text =
      fmt::format("### {}\n\n```\n{}\n```\n\n{}.", WordsOf(command),
                  command.at("usage").get<std::string>(), command.at("summary").get<std::string>());
  text += (details.empty() ? "" : ' ' + details) + ' ' + EffectOf(command) + "\n\n";
  const std::string rows = Taken(command.at("positionals")) + Taken(command.at("options"));
  if (!rows.empty()) text += Head("argument", "meaning") + rows + '\n';
  text += fmt::format("Result in JSON: `{}`\n\n", command.at("result").get<std::string>());
  if (!example.empty()) text += fmt::format("Example: `kvrctl {}`\n\n", example);
  return text;
}

// The anchor that a heading gets.
std::string LinkTo(const Json &command) {
  const std::string words = WordsOf(command);
  return fmt::format("[{}](#{})", words, Replaced(words, " ", "-"));
}

std::string Overview(const Json &program) {
  std::string text = Head("command", "what it does");
  const auto add = [&](const std::string &family) {
    for (const Json &command : CommandsBelow(program, family))
      text += Row(LinkTo(command), Cell(command.at("summary")));
  };
  add("");
  for (const Json &family : program.at("families"))
    add(family.at("word"));
  return text + '\n';
}

std::string Meanings(const Json &list, const char *key, const char *label) {
  std::string text = Head(label, "meaning");
  for (const Json &one : list) {
    const Json &name = one.at(key);
    text += Row(name.is_string() ? Code(name) : name.dump(), Cell(one.at("meaning")));
  }
  return text + '\n';
}

}  // namespace

Page MarkdownReference(const Json &program) {
  const std::string name = program.at("program");
  std::string text = fmt::format(
      "# {0}: the commands\n\n{1} The guide is [{0}.md]({0}.md); this page is made from `{0} help "
      "--json` of version {2}, and {0} tells the same with `{0} help COMMAND`.\n\n```\n{0} "
      "[OPTION...] COMMAND ...\n```\n\n## Options of every command\n\nThey may stand before or "
      "behind the command.\n\n",
      name, program.at("summary").get<std::string>(), program.at("version").get<std::string>());
  text += Head("option", "meaning") + Taken(program.at("options")) + "\n## Commands\n\n" +
          Overview(program);
  for (const Json &command : CommandsBelow(program, ""))
    text += CommandText(command);
  for (const Json &family : program.at("families")) {
    const std::string word = family.at("word");
    text += fmt::format("## {} {}\n\n{}.\n\n", name, word, family.at("summary").get<std::string>());
    for (const Json &command : CommandsBelow(program, word))
      text += CommandText(command);
  }
  text += "## Exit status\n\n" + Meanings(program.at("exit_statuses"), "status", "status") +
          "## Failures that the library has no code for\n\nIn JSON `code` is null then, and `name` "
          "is one of these.\n\n" +
          Meanings(program.at("failures"), "name", "name") + "## Environment\n\n" +
          Meanings(program.at("environment"), "name", "variable");
  text.pop_back();
  return {name + "-reference.md", text};
}

}  // namespace reference
