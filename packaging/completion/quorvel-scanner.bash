# Completion of quorvel-scanner for bash.

_quorvel_scanner() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local kind=${COMP_WORDS[1]} kinds='serial keyboard' options
  COMPREPLY=()
  case $previous in
  --file | --link | --socket)
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
    return
    ;;
  --line)
    mapfile -t COMPREPLY < <(compgen -W 'framed raw cooked' -- "$current")
    return
    ;;
  --suffix | --rate | --byte-delay | --burst) return ;;
  esac
  options='--file --escapes --suffix --rate --byte-delay --burst --help'
  if ((COMP_CWORD == 1)); then
    options="$kinds help --help --version"
  else
    case $kind in
    serial) options+=' --link --line --no-wait' ;;
    keyboard) options+=' --socket' ;;
    help) options=$kinds ;;
    esac
  fi
  mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
}

complete -F _quorvel_scanner quorvel-scanner
