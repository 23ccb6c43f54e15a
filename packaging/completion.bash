# Completion of glasspane and glasspaned in bash.

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
