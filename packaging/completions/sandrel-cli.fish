# fish completion for sandrel-cli
set -l files ShowNewFiles ShowChangedFiles ShowAllFiles
set -l registry ShowNewRegistry ShowChangedRegistry ShowDeletedRegistry ShowAllRegistry
set -l ini ShowNewIniFiles ShowChangedIniFiles ShowDeletedIniFiles ShowAllIniFiles

complete -c sandrel-cli -l machine -x -a '(__fish_complete_directories)' -d 'Folder of the machine to look at'
complete -c sandrel-cli -l home -x -a '(__fish_complete_directories)' -d 'Folder of the snapshots'
complete -c sandrel-cli -l help -d 'Show the help'
complete -c sandrel-cli -n __fish_use_subcommand -l version -d 'Show the version'

complete -c sandrel-cli -f -n __fish_use_subcommand -a before -d 'Take the Before snapshot'
complete -c sandrel-cli -f -n __fish_use_subcommand -a after -d 'Take the After snapshot and write the analysis'
complete -c sandrel-cli -f -n __fish_use_subcommand -a watch -d 'Take both snapshots round a command'
complete -c sandrel-cli -f -n __fish_use_subcommand -a replace -d 'Make the After snapshot the new Before snapshot'
complete -c sandrel-cli -f -n __fish_use_subcommand -a status -d 'Show the machine and the snapshots that exist'
complete -c sandrel-cli -f -n __fish_use_subcommand -a list -d 'Show a page of an analysis'
complete -c sandrel-cli -f -n __fish_use_subcommand -a export -d 'Write registry values as a registry file'
complete -c sandrel-cli -f -n __fish_use_subcommand -a copy -d 'Copy the new or changed files of the machine'
complete -c sandrel-cli -f -n __fish_use_subcommand -a print -d 'Print a page of an analysis to a PDF file'
complete -c sandrel-cli -f -n __fish_use_subcommand -a settings -d 'Show or change settings'
complete -c sandrel-cli -f -n __fish_use_subcommand -a setup-records -d 'Records of shared DLLs whose usage count moved'

complete -c sandrel-cli -n '__fish_seen_subcommand_from before after watch export print settings' -l yes -d 'Answer every question with yes'
complete -c sandrel-cli -n '__fish_seen_subcommand_from list' -l json -d 'As JSON'
complete -c sandrel-cli -n '__fish_seen_subcommand_from status' -l left-out -d 'And what each snapshot left out'
complete -c sandrel-cli -n '__fish_seen_subcommand_from export' -l match -x -d 'Only rows that hold this text'
complete -c sandrel-cli -n '__fish_seen_subcommand_from list print' -a "ShowStats ShowDeletedFiles $files $registry $ini"
complete -c sandrel-cli -n '__fish_seen_subcommand_from export' -a "$registry"
complete -c sandrel-cli -n '__fish_seen_subcommand_from copy' -a "$files"
complete -c sandrel-cli -f -n '__fish_seen_subcommand_from settings' -a 'Enabled ScanFolders RegScan ExcludeFiles Machine'
complete -c sandrel-cli -f -n '__fish_seen_subcommand_from setup-records' -a note -d 'Note the usage counts of the listed DLLs'
complete -c sandrel-cli -n '__fish_seen_subcommand_from setup-records' -a apply -d 'Add the records of those that moved'
complete -c sandrel-cli -n '__fish_seen_subcommand_from note' -l before -d 'Before the installation'
complete -c sandrel-cli -n '__fish_seen_subcommand_from note' -l after -d 'After the installation'
