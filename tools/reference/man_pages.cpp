// The manual pages, in the language of roff's man macros.
#include <cctype>

#include <fmt/format.h>

#include "pages.h"

namespace reference {
namespace {

// A character as roff takes it for nothing but itself.
std::string Escaped(char32_t character) {
  switch (character) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '"':
      return "\\(dq";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    case U'…':  // no terminal of plain ASCII has it
      return "...";
    default:
      return character < 0x80 ? std::string(1, static_cast<char>(character))
                              : fmt::format("\\[u{:04X}]", static_cast<std::uint32_t>(character));
  }
}

// The number of bytes that continue a character of UTF-8 behind its first one.
std::size_t BytesBehind(unsigned char first) {
  return first < 0xC0 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
}

// UTF-8 as text of roff: no character of it is a command or turns into another.
std::string Plain(const std::string &utf8) {
  std::string text = utf8.starts_with('.') || utf8.starts_with('\'') ? "\\&" : "";
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto first = static_cast<unsigned char>(utf8[i]);
    const std::size_t behind = BytesBehind(first);
    char32_t character = behind == 0 ? first : first & (0x3FU >> behind);
    for (std::size_t n = 0; n < behind && i + 1 < utf8.size(); ++n)
      character = (character << 6) | (static_cast<unsigned char>(utf8[++i]) & 0x3FU);
    text += Escaped(character);
  }
  return text;
}

std::string Bold(const std::string &text) {
  return "\\fB" + Plain(text) + "\\fR";
}

// Text in which words between back quotes are typed as they are: these come out bold.
std::string Prose(const std::string &text) {
  std::string out;
  bool typed = false;
  for (std::size_t at = 0; at <= text.size(); typed = !typed) {
    const std::size_t end = std::min(text.find('`', at), text.size());
    const std::string part = text.substr(at, end - at);
    if (!part.empty()) out += typed ? Bold(part) : Plain(part);
    at = end + 1;
  }
  return out;
}

// A text without blanks that may go on in another line behind each comma.
std::string Breakable(const std::string &text) {
  return Replaced(text, ",", ",\\:");
}

std::string Entry(const std::string &label, const std::string &meaning) {
  return fmt::format(".TP\n{}\n{}\n", Bold(label), Prose(meaning));
}

std::string Entries(const Json &items) {
  std::string text;
  for (const Json &item : items)
    text += Entry(LabelOf(item), MeaningOf(item));
  return text;
}

std::string CommandText(const Json &command) {
  std::string text =
      fmt::format(".SS {}\n{}\n.PP\n{}\n", Plain(WordsOf(command)), Bold(command.at("usage")),
                  Prose(command.at("summary").get<std::string>() + '.'));
  if (command.at("details") != "") text += Prose(command.at("details")) + '\n';
  text += Plain(EffectOf(command)) + '\n';
  text += Entries(command.at("positionals")) + Entries(command.at("options"));
  text += ".PP\nResult in JSON: " + Breakable(Plain(command.at("result"))) + '\n';
  if (command.at("example") != "") {
    text += ".PP\nExample: " + Bold("kvrctl " + command.at("example").get<std::string>()) + '\n';
  }
  return text;
}

std::string Meanings(const Json &list, const char *key) {
  std::string text;
  for (const Json &one : list) {
    const Json &name = one.at(key);
    text += Entry(name.is_string() ? name.get<std::string>() : name.dump(),
                  one.at("meaning").get<std::string>() + '.');
  }
  return text;
}

// A summary behind the dash of NAME: no sentence of its own.
std::string AsPhrase(std::string summary) {
  if (summary.ends_with('.')) summary.pop_back();
  summary.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(summary.front())));
  return summary;
}

// The head of a page up to the text of its synopsis; without a date, which would change by itself.
std::string Begin(const Json &program, const std::string &name, const std::string &summary) {
  std::string title = name;
  for (char &c : title)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return fmt::format(
      ".TH {} 1 \"\" \"{} {}\" \"User Commands\"\n.ad l\n.nh\n.SH NAME\n{} \\- {}\n.SH SYNOPSIS\n",
      Plain(title), program.at("program").get<std::string>(),
      program.at("version").get<std::string>(), Plain(name), Plain(AsPhrase(summary)));
}

std::string PageName(const Json &program, const std::string &family) {
  return program.at("program").get<std::string>() + (family.empty() ? "" : '-' + family);
}

// The other pages; the program's own page is about no family.
std::string SeeAlso(const Json &program, const std::string &family) {
  std::string text = ".SH SEE ALSO\n";
  std::string between;
  std::vector<std::string> others = {""};
  for (const Json &one : program.at("families"))
    others.push_back(one.at("word"));
  for (const std::string &other : others) {
    if (other == family) continue;
    text += between + Bold(PageName(program, other)) + "(1)";
    between = ",\n";
  }
  return text + '\n';
}

Page FamilyPage(const Json &program, const Json &family) {
  const std::string word = family.at("word");
  const std::string name = PageName(program, word);
  std::string text = Begin(program, name, family.at("summary"));
  std::string between;
  std::string commands;
  for (const Json &command : CommandsBelow(program, word)) {
    text += between + Bold(command.at("usage")) + '\n';
    between = ".br\n";
    commands += CommandText(command);
  }
  text += fmt::format(
      ".SH DESCRIPTION\n{}.\nOptions of every command, exit statuses and the environment are in\n"
      "{}(1).\n.SH COMMANDS\n",
      Prose(family.at("summary")), Bold(PageName(program, "")));
  return {"man/" + name + ".1", text + commands + SeeAlso(program, word)};
}

Page ProgramPage(const Json &program) {
  const std::string name = program.at("program");
  std::string text = Begin(program, name, program.at("summary"));
  text += fmt::format("{} [\\fIoption\\fR...] \\fIcommand\\fR ...\n.SH DESCRIPTION\n{}\n",
                      Bold(name), Prose(program.at("summary")));
  text +=
      "Each run is one process that plays one host.\nThe commands of these families have pages "
      "of their own:\n";
  for (const Json &family : program.at("families")) {
    text += fmt::format(".TP\n{}(1)\n{}.\n", Bold(PageName(program, family.at("word"))),
                        Prose(family.at("summary")));
  }
  text += ".SH OPTIONS\nThey may stand before or behind the command.\n";
  text += Entries(program.at("options")) + ".SH COMMANDS\n";
  for (const Json &command : CommandsBelow(program, ""))
    text += CommandText(command);
  text += ".SH EXIT STATUS\n" + Meanings(program.at("exit_statuses"), "status");
  text += ".SH FAILURES\nThose that the library has no code for, by their names in JSON:\n" +
          Meanings(program.at("failures"), "name");
  text += ".SH ENVIRONMENT\n" + Meanings(program.at("environment"), "name");
  return {"man/" + name + ".1", text + SeeAlso(program, "")};
}

}  // namespace

std::vector<Page> ManPages(const Json &program) {
  std::vector<Page> pages = {ProgramPage(program)};
  for (const Json &family : program.at("families"))
    pages.push_back(FamilyPage(program, family));
  return pages;
}

}  // namespace reference
