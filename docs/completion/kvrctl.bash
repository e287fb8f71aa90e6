# Completion of kvrctl 0.1.0 for bash, made from `kvrctl help --json`.

# What may follow the words of $1: below, the words that go on from there; or options, arguments
# (the kinds of those taken by place) and more (1 where the last one is taken again and again).
_kvrctl_command() {
  below='' options='-h --help --version --fabric --host --output --trace' arguments=() more=0
  case $1 in
    '') below='fabric acg group backup table status slots hosts tree create destroy handover takeover can-remove can-handover switch-access renew-keys sync doctor batch help' ;;
    'fabric') below='new show set' ;;
    'acg') below='add remove' ;;
    'group') below='create delete add-server remove-server rename set-reserve set-client list show available' ;;
    'backup') below='add remove list' ;;
    'table') below='dump diff' ;;
    'fabric new')
      options='--hosts --seed -h --help --version --fabric --host --output --trace' arguments=('folders') more=0
      ;;
    'fabric show')
      options='-h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'fabric set')
      options='--up --down -h --help --version --fabric --host --output --trace' arguments=('described-hosts') more=0
      ;;
    'status')
      options='-h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'slots')
      options='-h --help --version --fabric --host --output --trace' arguments=('groups') more=0
      ;;
    'hosts')
      options='-h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'tree')
      options='-h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'create')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'destroy')
      options='--dry-run --yes -h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'acg add')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=('hosts') more=1
      ;;
    'acg remove')
      options='--dry-run --yes -h --help --version --fabric --host --output --trace' arguments=('hosts') more=1
      ;;
    'group create')
      options='--dry-run --client --reserve --server -h --help --version --fabric --host --output --trace' arguments=('groups') more=0
      ;;
    'group delete')
      options='--dry-run --yes --force -h --help --version --fabric --host --output --trace' arguments=('groups') more=0
      ;;
    'group add-server')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=('groups' 'hosts') more=1
      ;;
    'group remove-server')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=('groups' 'hosts') more=1
      ;;
    'group rename')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=('groups' '') more=0
      ;;
    'group set-reserve')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=('groups' '') more=0
      ;;
    'group set-client')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=('groups' 'hosts') more=0
      ;;
    'group list')
      options='-h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'group show')
      options='-h --help --version --fabric --host --output --trace' arguments=('groups') more=0
      ;;
    'group available')
      options='-h --help --version --fabric --host --output --trace' arguments=('groups') more=0
      ;;
    'backup add')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=('hosts') more=1
      ;;
    'backup remove')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=('hosts') more=1
      ;;
    'backup list')
      options='-h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'handover')
      options='--dry-run --yes -h --help --version --fabric --host --output --trace' arguments=('hosts') more=0
      ;;
    'takeover')
      options='--dry-run --yes -h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'can-remove')
      options='-h --help --version --fabric --host --output --trace' arguments=('hosts') more=0
      ;;
    'can-handover')
      options='-h --help --version --fabric --host --output --trace' arguments=('hosts') more=0
      ;;
    'switch-access')
      options='--dry-run --again -h --help --version --fabric --host --output --trace' arguments=('on off') more=0
      ;;
    'renew-keys')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'sync')
      options='--dry-run -h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'doctor')
      options='-x --only-wrong -h --help --version --fabric --host --output --trace' arguments=() more=0
      ;;
    'table dump')
      options='--all --keys -h --help --version --fabric --host --output --trace' arguments=('hosts') more=0
      ;;
    'table diff')
      options='--all -h --help --version --fabric --host --output --trace' arguments=('hosts' 'hosts') more=0
      ;;
    'batch')
      options='--dry-run --yes --keep-going --from -h --help --version --fabric --host --output --trace' arguments=('files') more=0
      ;;
    'help')
      options='--json -h --help --version --fabric --host --output --trace' arguments=('commands') more=1
      ;;
  esac
}

# The kind of the value that option $2 of the command $1 takes; many is 1 where several may
# follow.
_kvrctl_option() {
  takes='' many=0
  case "$1 $2" in
    'fabric new'' --hosts') takes=' ' many=0 ;;
    'fabric new'' --seed') takes=' ' many=0 ;;
    'group create'' --client') takes='hosts' many=0 ;;
    'group create'' --reserve') takes=' ' many=0 ;;
    'group create'' --server') takes='hosts' many=1 ;;
    'batch'' --from') takes=' ' many=0 ;;
    *' --fabric') takes='folders' many=0 ;;
    *' --host') takes='described-hosts' many=0 ;;
    *' --output') takes='text json' many=0 ;;
  esac
}

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
