# bash completion for cadrova. The command itself says what can follow.

_cadrova() {
  local current=${COMP_WORDS[COMP_CWORD]} line=$COMP_LINE words=() word last
  # bash also splits words at characters such as "=" and ":", and in <(COMMAND). Join their parts.
  for word in "${COMP_WORDS[@]::COMP_CWORD+1}"; do
    if ((${#words[@]})) && [[ $line != [[:blank:]]* || ${words[-1]} == [\<\>]\(*[!\)] ]]; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
    line=${line#*"$word"}
  done
  [[ $current == *[!=:]* ]] || current=
  mapfile -t COMPREPLY < <("${1/#~\//$HOME/}" __complete "${words[@]:1}" 2>/dev/null)
  ((${#COMPREPLY[@]})) || return
  last=${COMPREPLY[-1]}
  unset 'COMPREPLY[-1]'
  case $last in
    :files) compopt -o default ;;
    :programs) compopt -o default -o filenames; mapfile -t COMPREPLY < <(compgen -c -- "$current") ;;
    :words)
      ((${#COMPREPLY[@]})) || return
      [[ ${COMPREPLY[0]} != *[/.] ]] || compopt -o nospace
      # bash replaces only what follows the last "=" or ":".
      COMPREPLY=("${COMPREPLY[@]#"${words[-1]%"$current"}"}")
      if [[ $current == [\"\']* ]]; then
        compopt -o filenames
      else
        mapfile -t COMPREPLY < <(printf '%q\n' "${COMPREPLY[@]}")
        COMPREPLY=("${COMPREPLY[@]//\\,/,}")
      fi
      ;;
  esac
}
complete -F _cadrova cadrova
