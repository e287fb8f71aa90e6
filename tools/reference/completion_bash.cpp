// The completion for bash: tables of what each command takes, behind functions that read the line.
#include <fmt/format.h>

#include "shell_words.h"

namespace reference {
namespace {

constexpr char kHead[] = R"(# Completion of {0} {1} for bash, made from `{0} help --json`.

)";

constexpr char kFunctions[] = R"bash(
# The words of the line up to the cursor as the shell will read them: what it takes for the end of a
# word while it completes ('=', ':', '@') is a part of it.
_kvrctl_read_words() {
  local rest=$COMP_LINE word i
  words=()
  for ((i = 0; i <= COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if ((i > 0)) && [[ $rest != [[:space:]]* ]]; then
      words[${#words[@]} - 1]+=$word
    else
      words+=("$word")
      rest=${rest#"${rest%%[![:space:]]*}"}
    fi
    rest=${rest#"$word"}
  done
}

# A word without quotes; nothing in it is run.
_kvrctl_plain() {
  local word=$1
  [[ $word == \~/* ]] && word=$HOME${word#\~}
  case $word in
    \'*) word=${word//\'/} ;;
    \"*) word=${word//\"/} ;;
    *) word=${word//\\/} ;;
  esac
  printf '%s' "$word"
}

# The values of a kind, one a line; a kind that has no name is a list of values itself.
_kvrctl_values() {
  case $1 in
    hosts | described-hosts | groups)
      "$(_kvrctl_plain "${words[0]}")" "${network[@]}" complete "$1" </dev/null 2>/dev/null
      ;;
    commands)
      _kvrctl_command "$given"
      printf '%s\n' $below
      ;;
    *) printf '%s\n' $1 ;;
  esac
}

# Reads the words before the one to complete: which command they choose, how many arguments stand
# behind it, and what an option still waits for.
_kvrctl_read_line() {
  local word option ended=0
  for word in "${words[@]:1:${#words[@]}-2}"; do
    if [[ -n $takes && $word != -* ]]; then
      [[ $option == --fabric || $option == --host ]] &&
        network+=("$option" "$(_kvrctl_plain "$word")")
      ((many)) || takes=''
      continue
    fi
    takes=''
    if ((ended)) || [[ $word != -* ]]; then
      if [[ -n $below ]]; then
        command+=${command:+ }$word
        _kvrctl_command "$command"
      else
        given+=${given:+ }$word
        ((++place))
      fi
      continue
    fi
    option=$word
    case $word in
      --) ended=1 ;;
      --fabric=* | --host=*) network+=("$(_kvrctl_plain "$word")") ;;
      *) _kvrctl_option "$command" "$word" ;;
    esac
  done
  ((ended)) && options=''
}

# The kind of what stands at the cursor, in kind; what was typed of it, in cur.
_kvrctl_read_kind() {
  local count=${#arguments[@]}
  if [[ $cur == --*=* ]]; then
    _kvrctl_option "$command" "${cur%%=*}"
    cur=${cur#*=}
    kind=$takes
  elif [[ $cur == -* ]]; then
    kind=$options
  elif [[ -n $takes ]]; then
    kind=$takes
  elif [[ -n $below ]]; then
    kind=$below
  elif ((place < count)); then
    kind=${arguments[place]}
  elif ((more)); then
    kind=${arguments[count - 1]}
  else
    kind=$options
  fi
}

_kvrctl() {
  local below options more takes='' many=0 command='' given='' place=0 kind cur value kept quote=''
  local -a arguments words network=()
  COMPREPLY=()
  _kvrctl_read_words
  cur=${words[${#words[@]} - 1]}
  _kvrctl_command ''
  _kvrctl_read_line
  # What stands before the last end of a word is not typed anew.
  kept=${COMP_WORDS[COMP_CWORD]}
  [[ $kept == [=:] ]] && kept=''
  kept=${cur%"$kept"}
  [[ $cur == --*=* ]] && kept=${kept#*=}
  _kvrctl_read_kind
  if [[ $kind == files || $kind == folders ]]; then
    compopt -o filenames 2>/dev/null
    [[ $kind == files ]] && kind=-f || kind=-d
    while IFS= read -r value; do COMPREPLY+=("$value"); done < <(compgen "$kind" -- "$cur")
    return
  fi
  case $cur in
    [\'\"]*) quote=${cur:0:1} cur=${cur:1} kept='' ;;
  esac
  while IFS= read -r value; do
    [[ -z $value ]] && continue
    [[ -z $quote ]] && printf -v value '%q' "$value"
    [[ $value == "$cur"* ]] && COMPREPLY+=("${value#"$kept"}")
  done < <(_kvrctl_values "$kind")
}

complete -F _kvrctl kvrctl
)bash";

// The names of options, as words in one string.
std::string NamesOf(const Json &options) {
  std::string names;
  for (const Json &option : options)
    names += (names.empty() ? "" : " ") + Joined(option.at("names"), " ");
  return names;
}

std::string CommandEntry(const Json &command, const std::string &globals) {
  std::string arguments;
  std::string more = "0";
  for (const Json &argument : command.at("positionals")) {
    arguments += (arguments.empty() ? "" : " ") + Quoted(KindOf(argument));
    more = argument.at("repeated") ? "1" : "0";
  }
  const std::string own = NamesOf(command.at("options"));
  return fmt::format("    {})\n      options={} arguments=({}) more={}\n      ;;\n",
                     Quoted(WordsOf(command)), Quoted(own + (own.empty() ? "" : " ") + globals),
                     arguments, more);
}

std::string FamilyEntry(const Json &program, const std::string &word) {
  return fmt::format("    {}) below={} ;;\n", Quoted(word),
                     Quoted(fmt::format("{}", fmt::join(WordsBelow(program, word), " "))));
}

std::string CommandTable(const Json &program) {
  const std::string globals = NamesOf(program.at("options"));
  std::string text = fmt::format(
      "# What may follow the words of $1: below, the words that go on from there; or options, "
      "arguments\n# (the kinds of those taken by place) and more (1 where the last one is taken "
      "again "
      "and again).\n_kvrctl_command() {{\n  below='' options={} arguments=() more=0\n  case $1 "
      "in\n",
      Quoted(globals));
  text += FamilyEntry(program, "");
  for (const Json &family : program.at("families"))
    text += FamilyEntry(program, family.at("word"));
  for (const Json &command : program.at("commands"))
    text += CommandEntry(command, globals);
  return text + "  esac\n}\n\n";
}

// The entries of options with values that can be offered; words is a pattern for the command.
std::string OptionEntries(const Json &options, const std::string &words) {
  std::string text;
  for (const Json &option : options) {
    if (option.at("value").is_null()) continue;
    const std::string kind = KindOf(option).empty() ? " " : KindOf(option);
    for (const Json &name : option.at("names")) {
      text += fmt::format("    {}' {}') takes={} many={} ;;\n", words, name.get<std::string>(),
                          Quoted(kind), option.at("repeated") ? 1 : 0);
    }
  }
  return text;
}

std::string OptionTable(const Json &program) {
  std::string text =
      "# The kind of the value that option $2 of the command $1 takes; many is 1 where several "
      "may\n"
      "# follow.\n_kvrctl_option() {\n  takes='' many=0\n  case \"$1 $2\" in\n";
  for (const Json &command : program.at("commands"))
    text += OptionEntries(command.at("options"), Quoted(WordsOf(command)));
  return text + OptionEntries(program.at("options"), "*") + "  esac\n}\n";
}

}  // namespace

Page BashCompletion(const Json &program) {
  const std::string name = program.at("program");
  std::string text = fmt::format(kHead, name, program.at("version").get<std::string>());
  text += CommandTable(program) + OptionTable(program) + kFunctions;
  return {"completion/" + name + ".bash", text};
}

}  // namespace reference
