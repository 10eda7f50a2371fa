# Completion of tessaron for fish.

set -l commands run check
set -l none "not __fish_seen_subcommand_from $commands"
set -l any "__fish_seen_subcommand_from $commands"
set -l run '__fish_seen_subcommand_from run'
set -l check '__fish_seen_subcommand_from check'

complete -c tessaron -s h -l help -d 'Print the help and exit'
complete -c tessaron -n $none -l version -d 'Print the version and exit'
complete -c tessaron -n $none -f -a run -d 'Run a script'
complete -c tessaron -n $none -f -a check -d 'Run a script in memory'

complete -c tessaron -n $any -s D -l define -x -d 'A text replacement, NAME=VALUE'
complete -c tessaron -n $any -l symbol -x -d 'The address of a symbol, NAME=FILE:SYMBOL'
complete -c tessaron -n $any -s C -l directory -x -a '(__fish_complete_directories)' -d 'Work in this folder'
complete -c tessaron -n $any -l keep-going -d 'Go on after a statement that failed'
complete -c tessaron -n $any -s q -l quiet -d 'Print errors only'
complete -c tessaron -n $any -l diagnostics -x -a 'text json' -d 'The form of the diagnostics'
complete -c tessaron -n $any -l color -x -a 'auto always never' -d 'Color the diagnostics'
complete -c tessaron -n $any -l error -x -d 'Count these diagnostics as errors'
complete -c tessaron -n $any -l warn -x -d 'Count these diagnostics as warnings'
complete -c tessaron -n $any -l ignore -x -d 'Drop these diagnostics'
complete -c tessaron -n $any -l werror -d 'Count all warnings as errors'
complete -c tessaron -n $run -l depfile -r -d 'Write the files that the run read'
complete -c tessaron -n $check -l against-disk -d 'Compare the files on disk'
