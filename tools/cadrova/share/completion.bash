# bash completion for cadrova

_cadrova() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words= position=0 i
  local families="default region carrier carrier-region sim"
  COMPREPLY=()
  case $previous in
    --data | --fleet | --html | -o) mapfile -t COMPREPLY < <(compgen -f -- "$word"); return ;;
    --disable)
      words="kind-conflict sim-float unknown-map similar-map misspelt-key not-in-default"
      words+=" redundant-value empty-file unused-allow"
      mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
      return
      ;;
    --region | --carrier | --regions | --carriers | --sim) return ;;
    --format)
      words="text json"
      case $command in
        matrix) words+=" csv" ;;
        diff) words+=" markdown" ;;
        check) words+=" sarif" ;;
      esac
      mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
      return
      ;;
    --family) mapfile -t COMPREPLY < <(compgen -W "$families" -- "$word"); return ;;
  esac
  # The position of this word among the arguments of the command, without options and their values.
  for ((i = 2; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      --) [[ $command != trace ]] || break ;;
      --data | --fleet | --html | --revision | --region | --carrier | --regions | --carriers | --family | --sim | \
        --format | --disable | -o) ((++i)) ;;
      -*) ;;
      *) ((++position)) ;;
    esac
  done
  case $command in
    explain | get | matrix)
      case $position in
        0) words=$families ;;
        1) words="bool int float string string-array int-array map-array" ;;
      esac
      [[ $word != -* ]] || words="--data --fleet --region --carrier --sim --format --json --help"
      [[ $word != -* || $command != explain ]] || words+=" --steps"
      [[ $word != -* || $command != matrix ]] ||
        words="--data --fleet --regions --carriers --format --json --csv --html --revision --help"
      ;;
    list) words="--data --format --json --help" ;;
    diff | check)
      if [[ $word != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
      fi
      words="--fleet --regions --carriers --format --json --help"
      [[ $command == check ]] && words+=" --strict --disable" || words+=" --family --exit-zero"
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
    help) words="explain get list matrix diff check trace help --help" ;;
  esac
  ((COMP_CWORD > 1)) || words="explain get list matrix diff check trace help --help --version"
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o filenames -F _cadrova cadrova
