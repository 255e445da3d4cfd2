# Completion in bash of quillmere, quillmere-mpi, quillmere-mesh and quillmere-export. Commands, options
# and their values are those of the programs' own --help, which is asked once per shell.

declare -gA _quillmere_helps

# Puts the help of a program, or of one of its commands, into "help".
_quillmere_ask() {
  local command="$*"
  if [[ -z ${_quillmere_helps[$command]-} ]]; then
    _quillmere_helps[$command]=$("$@" --help 2>/dev/null </dev/null)
  fi
  help=${_quillmere_helps[$command]}
}

# Puts every option into "options", and what stands behind it in the help, as FILE or
# TEXT:{png,svg}, into "values".
_quillmere_read_options() {
  local line name listed=""
  local form='^ +((-[a-zA-Z],)?(--?[a-z][a-z-]*))( ([^ ]+))?'
  while IFS= read -r line; do
    [[ $line == Options:* ]] && listed=yes
    [[ -n $listed && $line =~ $form ]] || continue
    for name in ${BASH_REMATCH[1]//,/ }; do
      options+=("$name")
      values[$name]=${BASH_REMATCH[5]}
    done
  done <<<"$help"
}

# Puts the commands of a program into "commands".
_quillmere_read_commands() {
  local line listed=""
  while IFS= read -r line; do
    [[ $line == Subcommands:* ]] && listed=yes
    [[ -n $listed && $line =~ ^\ \ ([a-z]+)($|\ ) ]] && commands+=("${BASH_REMATCH[1]}")
  done <<<"$help"
}

_quillmere_offer_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
  [[ ${COMPREPLY[0]-} == *[=:.] ]] && compopt -o nospace 2>/dev/null
}

_quillmere_offer_files() {
  mapfile -t COMPREPLY < <(compgen -f -- "$1")
  compopt -o filenames 2>/dev/null
}

# The value of an option, or what follows the name in it, as the kind of a boundary does.
_quillmere_offer_value() {
  local option=$1 form=$2 current=$3
  case $form in
    *"{"*"}"*)
      form=${form#*\{}
      form=${form%%\}*}
      _quillmere_offer_words "${form//,/ }" "$current"
      ;;
    NAME=KIND)
      [[ $current == *=* ]] || return
      _quillmere_offer_kind "${current#*=}"
      ;;
    FILE | DATA_FILE | NAME | \[NAME=\]VALUE) _quillmere_offer_files "${current#*=}" ;;
    *) [[ $option == -o || $option == --output ]] && _quillmere_offer_files "$current" ;;
  esac
}

_quillmere_offer_kind() {
  case $1 in
    hydrograph:* | limnigraph:*) _quillmere_offer_files "${1#*:}" ;;
    *) _quillmere_offer_words "wall transmissive discharge: level: hydrograph: limnigraph:" "$1" ;;
  esac
}

# What quillmere-mesh set changes: the words before "=" in its help.
_quillmere_offer_key() {
  local line keys="" word
  if [[ $1 == boundary.*=* ]]; then
    _quillmere_offer_kind "${1#*=}"
    return
  fi
  while IFS= read -r line; do
    [[ $line == "  KEY=VALUE "* ]] || continue
    for word in $line; do
      [[ $word =~ ^([a-z-]+\.|[a-z-]+=) ]] && keys+=" ${BASH_REMATCH[1]}"
    done
  done <<<"$help"
  [[ $1 == *=* ]] || _quillmere_offer_words "$keys" "$1"
}

_quillmere_complete() {
  # Blanks alone part the words: readline parts them at "=" and ":" as well.
  local line=${COMP_LINE:0:COMP_POINT} words current previous help
  local -a options=() commands=()
  local -A values=()
  COMPREPLY=()
  read -ra words <<<"$line"
  [[ $line == *[[:blank:]] ]] && words+=("")
  current=${words[-1]}
  previous=${words[-2]-}
  local -a command=("${1%-mpi}")
  if [[ ${1##*/} == quillmere-@(mesh|export) ]]; then
    _quillmere_ask "$1"
    _quillmere_read_commands
    [[ ${#words[@]} -gt 2 && " ${commands[*]} " == *" ${words[1]} "* ]] && command+=("${words[1]}")
  fi
  _quillmere_ask "${command[@]}"
  _quillmere_read_options

  if [[ -n ${values[$previous]-} ]]; then
    _quillmere_offer_value "$previous" "${values[$previous]}" "$current"
  elif [[ $current == -* ]]; then
    _quillmere_offer_words "${options[*]}" "$current"
  elif [[ ${#commands[@]} -gt 0 && ${#command[@]} -eq 1 ]]; then
    _quillmere_offer_words "${commands[*]}" "$current"
  elif [[ ${command[1]-} == set && ${#words[@]} -gt 3 ]]; then
    _quillmere_offer_key "$current"
  else
    _quillmere_offer_files "$current"
  fi
}

complete -F _quillmere_complete quillmere quillmere-mpi quillmere-mesh quillmere-export
