#compdef sandrel-cli

_sandrel-cli() {
  local curcontext=$curcontext state line
  local -a commands pages registry files options
  commands=(
    'before:take the Before snapshot'
    'after:take the After snapshot and write the analysis'
    'watch:take both snapshots round a command and write the analysis'
    'replace:make the After snapshot the new Before snapshot'
    'status:show the machine and the snapshots that exist'
    'list:show a page of an analysis'
    'export:write registry values as a registry file'
    'copy:copy the new or changed files of the machine'
    'print:print a page of an analysis to a PDF file'
    'settings:show or change settings'
    'setup-records:records of shared DLLs whose usage count moved'
  )
  files=(Show{New,Changed,All}Files)
  registry=(Show{New,Changed,Deleted,All}Registry)
  pages=(ShowStats $registry Show{New,Changed,Deleted,All}{Files,IniFiles})
  options=(
    '--machine[folder of the machine to look at]:folder:_files -/'
    '--home[folder of the snapshots]:folder:_files -/'
    '(- *)--help[show the help]'
  )
  local yes='--yes[answer every question with yes]'
  local analysis=':analysis:_files -g "*.mdb"'

  _arguments -C $options '(- *)--version[show the version]' ':command:->command' '*::argument:->argument'
  case $state in
    command) _describe command commands ;;
    argument)
      case $words[1] in
        before) _arguments $options $yes ;;
        after) _arguments $options $yes $analysis ;;
        watch) _arguments $options $yes $analysis '*::program:_normal' ;;
        status) _arguments $options '--left-out[and what each snapshot left out]' ;;
        list) _arguments $options '--json[as JSON]' $analysis ":page:($pages)" ;;
        export)
          _arguments $options $yes '--match[only rows that hold this text]:text:' $analysis \
            ':registry file:_files -g "*.reg"' ":page:($registry)" ;;
        copy) _arguments $options $analysis ':folder:_files -/' ":page:($files)" ;;
        print) _arguments $options $yes $analysis ':PDF file:_files -g "*.pdf"' ":page:($pages)" ;;
        settings)
          _arguments $options $yes ':section:(Enabled ScanFolders RegScan ExcludeFiles Machine)' ':key:' ':text:' ;;
        setup-records)
          if [[ $words[2] == apply && CURRENT -gt 2 ]]; then
            _arguments $options ':what:' $analysis
          else
            _arguments $options '--before[before the installation]' '--after[after the installation]' \
              ':what:(note apply)'
          fi ;;
        *) _arguments $options ;;
      esac ;;
  esac
}

_sandrel-cli "$@"
