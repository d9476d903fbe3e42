# Completion of quorvel-host for bash.

_quorvel_host_devices() {
  # The members of one JSON object a line; names have no escapes but those of a quote and backslash.
  "${COMP_WORDS[0]}" list --json 2>/dev/null | sed -n "$1"
}

_quorvel_host() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local commands='info form listen list doctor demo test help' command='' word
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    [[ " $commands " == *" $word "* ]] && command=$word && break
  done
  case $previous in
  --library)
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
    return
    ;;
  --port)
    mapfile -t COMPREPLY < <(compgen -W "$(_quorvel_host_devices \
      's/.*"kind":"serial".*"file":"\([^"]*\)".*/\1/p')" -- "$current")
    return
    ;;
  --keyboard)
    # A name may have blanks: each is one answer, quoted for the shell.
    local name
    while IFS= read -r name; do
      [[ $name == "$current"* ]] && COMPREPLY+=("$(printf '%q' "$name")")
    done < <(_quorvel_host_devices 's/.*"kind":"keyboard","name":"\([^"]*\)".*/\1/p')
    return
    ;;
  --class)
    mapfile -t COMPREPLY < <(compgen -W 'InputDevice CardReaderDevice' -- "$current")
    return
    ;;
  --set)
    mapfile -t COMPREPLY < <(compgen -S = -W 'Speed Suffix OutputDataType EquipmentType COMEncoding
      GSSymbolKey DataBits StopBit TimeoutCOM Timeout Prefix IgnoreKeyboardState' -- "$current")
    compopt -o nospace 2>/dev/null
    return
    ;;
  esac
  local options='--help'
  case $command in
  '') options="--library --help --version $commands" ;;
  form) options='--all --xml --help' ;;
  listen) options='--port --keyboard --set --class --count --json --window --help' ;;
  list | demo) options='--json --help' ;;
  doctor) options='--port --keyboard --seconds --set --json --help' ;;
  help) options=${commands% help} ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
}

complete -F _quorvel_host quorvel-host quorvel-host32
