# Completion of tessaron for fish.

set -l commands run check info diff map convert format lsp
set -l topics statements numbers crcs hashes signatures formats kinds
set -l kinds no-end unknown-name duplicate-name outside wiped empty-image empty-digest \
    call-failed unused-variable crc-parameter word-size cropped unwritten \
    truncated-value expression-order number-pair variable-in-word variable-dollar \
    symbol-unused execution-address length-corrected swallowed no-effect end-as-length \
    conflict overlap start-address tolerated \
    value-size whole-image text-size number-range empty-area digest-self \
    digest-stale format-ending empty-output double-area repeated-option in-place \
    unused-image bare-word unknown-text leading-zero backslash-path typographic-quote \
    wide-gap verify signature key-readable
# Always errors.
set -l fixed syntax cannot-open cannot-write short-read short-write out-of-memory \
    record-checksum record-line differs record-digit record-length record-type \
    record-address after-end record-count wrong-format same-file key missing-parameter
set -l formats IntelHex MotorolaS RawBinary Elf Uf2 TiTxt Vmem DfuSe
set -l none "not __fish_seen_subcommand_from $commands"
set -l any '__fish_seen_subcommand_from run check info diff map convert format'
set -l run '__fish_seen_subcommand_from run'
set -l check '__fish_seen_subcommand_from check'
set -l script '__fish_seen_subcommand_from run check'
set -l info '__fish_seen_subcommand_from info'
set -l diff '__fish_seen_subcommand_from diff'
set -l map '__fish_seen_subcommand_from map'
set -l convert '__fish_seen_subcommand_from convert'
set -l format '__fish_seen_subcommand_from format'
set -l files '__fish_seen_subcommand_from info diff map convert'

complete -c tessaron -s h -l help -d 'Print the help and exit'
complete -c tessaron -n $none -l version -d 'Print the version and exit'
complete -c tessaron -n $none -f -a run -d 'Run a script'
complete -c tessaron -n $none -f -a check -d 'Run a script in memory'
complete -c tessaron -n $none -f -a info -d 'Print what is in files'
complete -c tessaron -n $none -f -a diff -d 'Print where two files differ'
complete -c tessaron -n $none -f -a map -d 'Draw the address space'
complete -c tessaron -n $none -f -a convert -d 'Convert a file'
complete -c tessaron -n $none -f -a format -d 'Format scripts'
complete -c tessaron -n $none -f -a lsp -d 'Serve an editor'
complete -c tessaron -n $none -f -a help -d 'List what the language has'
complete -c tessaron -n '__fish_seen_subcommand_from help' -f -a "$topics $commands help $kinds $fixed"

complete -c tessaron -n $any -s C -l directory -x -a '(__fish_complete_directories)' -d 'Work in this folder'
complete -c tessaron -n $any -s q -l quiet -d 'Print errors only'
complete -c tessaron -n $any -l diagnostics -x -a 'text json sarif github' -d 'The form of the diagnostics'
complete -c tessaron -n $any -l color -x -a 'auto always never' -d 'Color the output'
complete -c tessaron -n $any -l error -x -a "$kinds" -d 'Count these diagnostics as errors'
complete -c tessaron -n $any -l warn -x -a "$kinds" -d 'Count these diagnostics as warnings'
complete -c tessaron -n $script -s D -l define -x -d 'A text replacement, NAME=VALUE'
complete -c tessaron -n $script -l elf -r -d 'Name what is at addresses'
complete -c tessaron -n $script -l passphrase-file -r -d 'The passphrase of encrypted keys'
complete -c tessaron -n $script -l symbol -x -d 'The address of a symbol, NAME=FILE:SYMBOL'
complete -c tessaron -n $script -l passphrase-file -r -d 'Has the passphrase of encrypted keys'
complete -c tessaron -n $script -l print-script -d 'Print the prepared script'
complete -c tessaron -n $script -l keep-going -d 'Go on after a statement that failed'
complete -c tessaron -n $script -l ignore -x -a "$kinds" -d 'Drop these diagnostics'
complete -c tessaron -n $script -l werror -d 'Count all warnings as errors'
complete -c tessaron -n $run -l depfile -r -d 'Write the files that the run read'
complete -c tessaron -n $run -l manifest -r -d 'Write what went in and came out'
complete -c tessaron -n $run -l provenance -r -d 'Write SLSA provenance'
complete -c tessaron -n $run -l sbom -r -d 'Write a CycloneDX bill of materials'
complete -c tessaron -n $run -l checksums -r -d 'Write a list for sha256sum -c'
complete -c tessaron -n $run -l sign-manifest -r -d 'Sign it and the three others with this key'
complete -c tessaron -n $run -l map -r -d 'Write a map of the images'
complete -c tessaron -n $run -l report -r -d 'Write a page for a browser'
complete -c tessaron -n $check -l against-disk -d 'Compare the files on disk'
complete -c tessaron -n $check -l manifest -r -d 'Compare with what a run has listed'
complete -c tessaron -n $check -l provenance -r -d 'Compare SLSA provenance'
complete -c tessaron -n $check -l sbom -r -d 'Compare a CycloneDX bill of materials'
complete -c tessaron -n $check -l checksums -r -d 'Compare a list for sha256sum -c'
complete -c tessaron -n $check -l sign-manifest -r -d 'Verify the signatures by this key'
complete -c tessaron -n $info -l json -d 'Print a JSON array'
complete -c tessaron -n $info -l elf -r -d 'Name what is at addresses'
complete -c tessaron -n $info -l symbols -d 'List the symbols of ELF files'
complete -c tessaron -n $info -l width -x -d 'Columns to use'
complete -c tessaron -n $diff -l json -d 'Print a JSON object'
complete -c tessaron -n $diff -l ignore -x -d 'Leave out an area, START,LENGTH'
complete -c tessaron -n $diff -l context -x -d 'Rows around a changed range'
complete -c tessaron -n $diff -l elf -r -d 'Name what is at addresses'
complete -c tessaron -n $diff -l max-lines -x -d 'Lines to print'
complete -c tessaron -n $diff -l width -x -d 'Columns to use'
complete -c tessaron -n $map -l svg -r -d 'Write a picture'
complete -c tessaron -n $map -l ascii -d 'Draw without block characters'
complete -c tessaron -n $map -l elf -r -d 'Name what is at addresses'
complete -c tessaron -n $map -l width -x -d 'Columns to use'
complete -c tessaron -n $convert -l crop -x -d 'Keep only this area, START,LENGTH'
complete -c tessaron -n $convert -l fill -x -d 'Lay bytes into the gaps'
complete -c tessaron -n $convert -l offset -x -d 'Add to all addresses'
complete -c tessaron -n $files -l from -x -a "$formats" -d 'The format of the input'
complete -c tessaron -n $files -l family -x -d 'The devices whose blocks of a UF2 file count'
complete -c tessaron -n $convert -l format -x -d 'A format of WRITE_FILE'
complete -c tessaron -n $convert -l lane -x -d 'Take one chip of a bus, LANE,LANES,WIDTH'
complete -c tessaron -n $convert -l interleave -x -d 'Make a bus of its chips'
complete -c tessaron -n $convert -l with -r -d 'A further chip'
complete -c tessaron -n $convert -l swap-bytes -x -a '2 4 8' -d 'Reverse the bytes of each word'
complete -c tessaron -n $convert -l unit-in -x -a '2 4' -d 'Addresses of the input count words'
complete -c tessaron -n $convert -l unit-out -x -a '2 4' -d 'Addresses of the output count words'
complete -c tessaron -n $convert -l fill-gaps -x -d 'Fill gaps of up to this length'
complete -c tessaron -n $convert -l align -x -d 'Let data begin and end at multiples'
complete -c tessaron -n $convert -l sections -x -d 'Read only these sections of an ELF file'
complete -c tessaron -n $convert -l skip-sections -x -d 'Leave out these sections'
complete -c tessaron -n $convert -l elf-template -r -d 'The ELF file to copy'
complete -c tessaron -n $convert -l print-script -d 'Print the script'
complete -c tessaron -n $format -l check -d 'List the scripts that are not formatted'
complete -c tessaron -n $format -s D -l define -x -d 'A text replacement, NAME=VALUE'
complete -c tessaron -n '__fish_seen_subcommand_from lsp' -f -l stdio -d 'What it does anyway'
