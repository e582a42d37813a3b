# bash completion for sandrel-cli

# The settings that matter to scans, and what is stored: "section<tab>key" a line.
_sandrel_cli_settings() {
  local key
  for key in DiskScan VersionInfo SizeInfo AttributeInfo HiddenFolders RegScan RemoteRegistry FileExclude; do
    printf 'Enabled\t%s\n' "$key"
  done
  for key in CLASSES_ROOT CURRENT_CONFIG CURRENT_USER LOCAL_MACHINE USERS; do
    printf 'RegScan\tHKEY_%s\n' "$key"
  done
  printf '%s\t%s\n' RegScan RemoteName ScanFolders 1 ExcludeFiles 1 Machine Folder
  sandrel-cli settings 2>/dev/null | cut -f 1,2
}

# Offers the lines of standard input that begin with the word; blanks in them are escaped.
_sandrel_cli_offer() {
  local line
  local -l begin=$cur small
  begin=${begin//[\"\'\\]/}
  while IFS= read -r line; do
    small=$line
    [[ $small == "$begin"* ]] && COMPREPLY+=("$(printf '%q' "$line")")
  done < <(sort -u)
}

_sandrel_cli() {
  local cur prev words cword
  _init_completion || return
  local commands='before after watch replace status list export copy print settings setup-records'
  local pages='ShowStats' kind
  for kind in New Changed Deleted All; do
    pages+=" Show${kind}Files Show${kind}Registry Show${kind}IniFiles"
  done

  # The words so far without the options: the command and its arguments.
  local -a given=()
  local i
  for ((i = 1; i < cword; i++)); do
    case ${words[i]} in
      --)
        if [[ ${given[0]-} == watch ]]; then
          _command_offset $((i + 1))
          return
        fi ;;
      --machine | --home | --match) ((i++)) ;;
      -*) ;;
      *) given+=("${words[i]}") ;;
    esac
  done
  local command=${given[0]-} place=${#given[@]}

  case $prev in
    --machine | --home)
      _filedir -d
      return ;;
    --match) return ;;
  esac
  if [[ $cur == -* ]]; then
    local options='--machine --home --help'
    case $command in
      '') options+=' --version' ;;
      before | after | watch | print | settings) options+=' --yes' ;;
      list) options+=' --json' ;;
      status) options+=' --left-out' ;;
      export) options+=' --match --yes' ;;
      setup-records) [[ ${given[1]-} == note ]] && options+=' --before --after' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
    return
  fi
  case $command:$place in
    :0) mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$cur") ;;
    after:1 | watch:1 | list:1 | export:1 | copy:1 | print:1 | setup-records:2)
      if [[ $command == setup-records && ${given[1]} != apply ]]; then return; fi
      _filedir mdb ;;
    export:2) _filedir reg ;;
    print:2) _filedir pdf ;;
    copy:2) _filedir -d ;;
    list:2 | print:3) _sandrel_cli_offer < <(tr ' ' '\n' <<<"$pages") ;;
    export:3) _sandrel_cli_offer < <(tr ' ' '\n' <<<"$pages" | grep Registry) ;;
    copy:3) _sandrel_cli_offer < <(tr ' ' '\n' <<<"$pages" | grep -E '(New|Changed|All)Files') ;;
    settings:1) _sandrel_cli_offer < <(_sandrel_cli_settings | cut -f 1) ;;
    settings:2)
      _sandrel_cli_offer < <(_sandrel_cli_settings |
        awk -F '\t' -v section="${given[1]//[\"\'\\]/}" 'tolower($1) == tolower(section) { print $2 }') ;;
    setup-records:1) mapfile -t COMPREPLY < <(compgen -W 'note apply' -- "$cur") ;;
  esac
} &&
  complete -F _sandrel_cli sandrel-cli
