# Completion of the command's options and, behind `vocabulary --type`, of the known types.
_gatotu() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local IFS=$'\n'
  case $previous in
    --format) COMPREPLY=($(compgen -W $'text\njson\ncsv\ntsv' -- "$current")) ;;
    --file | --machines | --plug-in) COMPREPLY=($(compgen -f -- "$current")) ;;
    --machine) COMPREPLY=($(compgen -W live -- "$current") $(compgen -d -- "$current")) ;;
    --type)
      COMPREPLY=($(compgen -W "$(gatotu vocabulary --format tsv 2>/dev/null |
        awk -F '\t' '$1 == "type" { print $2 }')" -- "$current"))
      COMPREPLY=("${COMPREPLY[@]// /\\ }")
      ;;
    *)
      case $current in
        -*) COMPREPLY=($(compgen -W $'--check\n--evidence\n--explain\n--file\n--for\n--format\n--help\n--jobs
--limit-bytes\n--limit-file-bytes\n--machine\n--machines\n--plug-in\n--redact\n--setting\n--time-limit\n--timing
--type\n--user\n--verify\n--version\n--wait-for-directory\n--with-files' -- "$current")) ;;
        *)
          if [ "$COMP_CWORD" -eq 1 ]; then
            COMPREPLY=($(compgen -W $'capture\nvocabulary' -- "$current"))
          elif [ "$previous" = capture ]; then
            COMPREPLY=($(compgen -d -- "$current"))
          fi
          ;;
      esac
      ;;
  esac
}
complete -F _gatotu gatotu
