# bash completion for cadrova

_cadrova() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words= place=0 i
  COMPREPLY=()
  case $previous in
    --data | -o) mapfile -t COMPREPLY < <(compgen -f -- "$word"); return ;;
    --region | --carrier | --sim) return ;;
  esac
  # Which of the words behind the command this is, options and their values apart.
  for ((i = 2; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      --) [[ $command != trace ]] || break ;;
      --data | --region | --carrier | --sim | -o) ((++i)) ;;
      -*) ;;
      *) ((++place)) ;;
    esac
  done
  case $command in
    explain | get)
      case $place in
        0) words="default region carrier carrier-region sim" ;;
        1) words="bool int float string string-array int-array map-array" ;;
      esac
      [[ $word != -* ]] || words="--data --region --carrier --sim --json --help"
      [[ $word != -* || $command == get ]] || words+=" --steps"
      ;;
    trace)
      if [[ ${COMP_WORDS[i]} == -- && i -lt COMP_CWORD ]]; then
        if ((i + 1 == COMP_CWORD)); then
          mapfile -t COMPREPLY < <(compgen -c -- "$word")
        else
          mapfile -t COMPREPLY < <(compgen -f -- "$word")
        fi
        return
      fi
      words="--steps --summary -o --help --"
      ;;
    help) words="explain get trace help" ;;
  esac
  ((COMP_CWORD > 1)) || words="explain get trace help --help --version"
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o filenames -F _cadrova cadrova
