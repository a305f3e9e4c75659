# Completes the command line of kiln in bash.
_kiln() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
  case $before in
    -e | --execute | -D | --define) return ;;
    -j | --cores) mapfile -t COMPREPLY < <(compgen -W "$(seq -s ' ' "$(nproc)")" -- "$word"); return ;;
    -C | --directory)
      mapfile -t COMPREPLY < <(compgen -d -- "$word")
      compopt -o filenames
      return
      ;;
  esac
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '--execute --interactive --quiet --batch --strict --define
      --directory --cores --plain --help --version' -- "$word")
  else
    mapfile -t COMPREPLY < <(compgen -f -X '!*.kiln' -- "$word"; compgen -d -- "$word")
    ((${#COMPREPLY[@]})) || mapfile -t COMPREPLY < <(compgen -f -- "$word")
    compopt -o filenames
  fi
}
complete -F _kiln kiln
