// The completion for zsh: one function for each family, in the terms of its _arguments.
#include <fmt/format.h>

#include "shell_words.h"

namespace reference {
namespace {

constexpr char kHead[] = R"(#compdef {0}
# Completion of {0} {1} for zsh, made from `{0} help --json`.

)";

constexpr char kNames[] =
    R"zsh(# The names of the kind in the last argument, asked of the network that the line leads to.
_kvrctl_names() {
  local -a network found
  local -i i
  for ((i = 2; i < $#typed; i++)); do
    case $typed[i] in
      --fabric | --host) network+=($typed[i] ${(Q)typed[i+1]}) ;;
      --fabric=* | --host=*) network+=(${(Q)typed[i]}) ;;
    esac
  done
  found=(${(f)"$(${~typed[1]} $network complete $@[-1] </dev/null 2>/dev/null)"})
  compadd "${@[1,-2]}" -a found
}

)zsh";

// Text inside a specification, where ':' and brackets part it.
std::string InSpec(std::string text) {
  for (const char *special : {"\\", ":", "[", "]"})
    text = Replaced(text, special, std::string("\\") + special);
  return text;
}

// What is done for a value, behind its word.
std::string Action(const Json &item) {
  const std::string kind = KindOf(item);
  if (!item.at("choices").empty()) return '(' + kind + ')';
  if (kind == "files") return "_files";
  if (kind == "folders") return "_files -/";
  if (kind == "commands") return "_kvrctl_commands";
  return kind.empty() ? " " : "_kvrctl_names " + kind;
}

// The names that exclude each other with this one, as "(--up --down)".
std::string Excluded(const Json &alternatives, const std::string &name) {
  for (const Json &set : alternatives) {
    for (const Json &member : set) {
      if (member == name) return '(' + Joined(set, " ") + ')';
    }
  }
  return "";
}

std::string OptionSpecs(const Json &options, const Json &alternatives) {
  std::string text;
  for (const Json &option : options) {
    for (const Json &name : option.at("names")) {
      const bool flag = option.at("value").is_null();
      std::string spec = option.at("repeated") ? "*" : Excluded(alternatives, name);
      spec +=
          name.get<std::string>() + (flag || !name.get<std::string>().starts_with("--") ? "" : "=");
      spec += '[' + InSpec(option.at("description")) + ']';
      if (!flag) spec += ':' + InSpec(option.at("value")) + ':' + Action(option);
      text += " \\\n      " + Quoted(spec);
    }
  }
  return text;
}

std::string ArgumentSpecs(const Json &arguments) {
  std::string text;
  for (const Json &argument : arguments) {
    const std::string spec = (argument.at("repeated")   ? "*:"
                              : argument.at("required") ? ":"
                                                        : "::") +
                             InSpec(argument.at("name")) + ':' + Action(argument);
    text += " \\\n      " + Quoted(spec);
  }
  return text;
}

std::string CommandCase(const Json &command) {
  return fmt::format("    {})\n      _arguments -S $globals{}{} && ret=0\n      ;;\n",
                     command.at("words").back().get<std::string>(),
                     OptionSpecs(command.at("options"), command.at("one_of")),
                     ArgumentSpecs(command.at("positionals")));
}

// The function that completes below a family, or below the program where it is empty: first a word,
// then what that word takes.
std::string WordFunction(const Json &program, const std::string &family) {
  std::string words, cases;
  if (family.empty()) {
    for (const Json &one : program.at("families")) {
      const std::string word = one.at("word");
      words += "\n    " + Quoted(word + ':' + InSpec(one.at("summary")));
      cases += fmt::format("    {0}) _kvrctl_{0} && ret=0 ;;\n", word);
    }
  }
  for (const Json &command : CommandsBelow(program, family)) {
    words += "\n    " + Quoted(command.at("words").back().get<std::string>() + ':' +
                               InSpec(command.at("summary")));
    cases += CommandCase(command);
  }
  return fmt::format(
      "_kvrctl_{}() {{\n  local context state state_descr line ret=1\n  local -A opt_args\n"
      "  local -a below=({}\n  )\n"
      "  _arguments -C -S $globals '1:command:->word' '*::argument:->rest' && ret=0\n"
      "  [[ $state == word ]] && _describe -t commands command below && ret=0\n"
      "  [[ $state == rest ]] && case $words[1] in\n{}  esac\n  return ret\n}}\n\n",
      family.empty() ? "program" : family, words, cases);
}

// The words of a command after "help", which takes them as any argument.
std::string CommandWords(const Json &program) {
  std::string text = "_kvrctl_commands() {\n  case $CURRENT in\n    2) compadd --";
  for (const std::string &word : WordsBelow(program, ""))
    text += ' ' + word;
  text += " ;;\n    3) case $words[2] in\n";
  for (const Json &family : program.at("families")) {
    const std::string word = family.at("word");
    text += fmt::format("      {}) compadd -- {} ;;\n", word,
                        fmt::join(WordsBelow(program, word), " "));
  }
  return text + "    esac ;;\n  esac\n}\n\n";
}

}  // namespace

Page ZshCompletion(const Json &program) {
  const std::string name = program.at("program");
  std::string text = fmt::format(kHead, name, program.at("version").get<std::string>());
  text += kNames + CommandWords(program);
  for (const Json &family : program.at("families"))
    text += WordFunction(program, family.at("word"));
  text += WordFunction(program, "");
  text += "_kvrctl() {\n  local -a typed=(\"${(@)words[1,CURRENT]}\")\n  local -a globals=(" +
          OptionSpecs(program.at("options"), Json::array()) +
          "\n  )\n  _kvrctl_program\n}\n\n_kvrctl \"$@\"\n";
  return {"completion/_" + name, text};
}

}  // namespace reference
