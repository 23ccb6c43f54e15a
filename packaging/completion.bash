# Completion of glasspane, glasspaned and glasspane-client in bash.

_glasspane() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  case $previous in
    --host) mapfile -t COMPREPLY < <(compgen -W "auto x11 builtin" -- "$word"); return ;;
    --port) mapfile -t COMPREPLY < <(compgen -W "7272 0" -- "$word"); return ;;
    --bind) mapfile -t COMPREPLY < <(compgen -W "127.0.0.1 0.0.0.0" -- "$word"); return ;;
    --display)
      mapfile -t COMPREPLY < <(compgen -W "$(cd /tmp/.X11-unix 2>/dev/null && printf ':%s ' X* | tr -d X)" -- "$word")
      return ;;
  esac
  local options="--help --version --host --port --bind --display"
  [ "$1" != glasspane ] || options+=" --minimized"
  mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
}
complete -F _glasspane glasspane glasspaned

_glasspane_client() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  if [ "$COMP_CWORD" -eq 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W "discover info menus source snapshot record pipe watch bench serve --help --version" -- "$word")
    return
  fi
  case $previous in
    -o|--output) mapfile -t COMPREPLY < <(compgen -f -- "$word"); return ;;
    --quality)
      [ "${COMP_WORDS[1]}" = snapshot ] || mapfile -t COMPREPLY < <(compgen -W "low normal high" -- "$word")
      return ;;
    --format) mapfile -t COMPREPLY < <(compgen -W "nut raw" -- "$word"); return ;;
    --pixels) mapfile -t COMPREPLY < <(compgen -W "bgr0 yuv420p" -- "$word"); return ;;
    --listen) mapfile -t COMPREPLY < <(compgen -W "127.0.0.1:8090 0.0.0.0:8090" -- "$word"); return ;;
  esac
  # The options are those that the command itself tells.
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$("$1" "${COMP_WORDS[1]}" --help 2>/dev/null |
                                             sed -nE 's/^  (-[a-z],)?(--?[a-z-]+).*/\2/p')" -- "$word")
  elif [ "$COMP_CWORD" -eq 2 ]; then
    mapfile -t COMPREPLY < <(compgen -A hostname -- "$word")
  fi
}
complete -F _glasspane_client glasspane-client
