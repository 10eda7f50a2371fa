# Completion of tessaron for bash.

# Prints the words that may follow the words "$@", of which the last is to be completed.
_tessaron_words() {
    local IFS=$' \t\n' current=${!#} count=$# command='' i
    local previous=${*:count-1:1}
    # Bash makes "=" a word of its own.
    if [[ $current == = ]]; then
        current=''
    elif [[ $previous == = ]]; then
        previous=${*:count-2:1}
    fi
    for ((i = 2; i < count; ++i)); do
        case ${!i} in run | check | info | diff | map | convert | format | lsp | help) command=${!i} && break ;; esac
    done
    local kinds='no-end unknown-name duplicate-name outside wiped empty-image empty-digest call-failed
        unused-variable crc-parameter word-size cropped unwritten truncated-value
        expression-order number-pair variable-in-word variable-dollar symbol-unused
        execution-address length-corrected swallowed no-effect end-as-length conflict overlap
        start-address tolerated
        value-size whole-image text-size number-range empty-area digest-self digest-stale
        format-ending empty-output double-area repeated-option in-place unused-image bare-word
        unknown-text leading-zero backslash-path typographic-quote
        wide-gap verify signature key-readable'
    # Always errors.
    local fixed='syntax cannot-open cannot-write short-read short-write out-of-memory record-checksum
        record-line differs record-digit record-length record-type record-address after-end
        record-count wrong-format same-file key missing-parameter'
    case $command:$previous in
        diff:--ignore) return ;;
        *:--error | *:--warn | *:--ignore) compgen -W "$kinds" -- "$current"; return ;;
    esac
    case $previous in
        --diagnostics) compgen -W 'text json sarif github' -- "$current"; return ;;
        --color) compgen -W 'auto always never' -- "$current"; return ;;
        -C | --directory) compgen -d -- "$current"; return ;;
        -D | --define | --symbol | --width | --context | --max-lines | \
            --crop | --fill | --offset | --format | --lane | --interleave | --fill-gaps | \
            --align | --sections | --skip-sections | \
            --family) return ;;
        --from)
            compgen -W 'IntelHex MotorolaS RawBinary Elf Uf2 TiTxt Vmem DfuSe' -- "$current"
            return ;;
        --swap-bytes) compgen -W '2 4 8' -- "$current"; return ;;
        --unit-in | --unit-out) compgen -W '2 4' -- "$current"; return ;;
    esac
    local common='--help --directory --quiet --diagnostics --color --error --warn'
    local script="$common --define --symbol --elf --passphrase-file --print-script --keep-going \
        --ignore --werror --manifest --provenance --sbom --checksums --sign-manifest"
    case $command:$current in
        :-*) compgen -W '--help --version' -- "$current" ;;
        :*) compgen -W 'run check info diff map convert format lsp help' -- "$current" ;;
        run:-*) compgen -W "$script --depfile --map --report" -- "$current" ;;
        check:-*) compgen -W "$script --against-disk" -- "$current" ;;
        info:-*) compgen -W "$common --json --symbols --elf --from --family --width" -- "$current" ;;
        diff:-*)
            compgen -W "$common --json --ignore --context --max-lines --elf --from --family \
                --width" -- "$current" ;;
        map:-*) compgen -W "$common --svg --ascii --elf --from --family --width" -- "$current" ;;
        convert:-*)
            compgen -W "$common --crop --fill --offset --from --format --lane --interleave --with \
                --swap-bytes --unit-in --unit-out --fill-gaps --align --sections --skip-sections \
                --family --elf-template --print-script" \
                -- "$current" ;;
        format:-*) compgen -W "$common --define --check" -- "$current" ;;
        lsp:-*) compgen -W '--help --stdio' -- "$current" ;;
        lsp:*) ;;
        help:-*) compgen -W '--help' -- "$current" ;;
        help:*)
            compgen -W 'statements numbers crcs hashes signatures formats kinds
                run check info diff map convert format lsp help'" $kinds $fixed" -- "$current" ;;
        *) compgen -f -- "$current" ;;
    esac
}

_tessaron() {
    local IFS=$'\n'
    COMPREPLY=($(_tessaron_words "${COMP_WORDS[@]:0:COMP_CWORD+1}"))
}

complete -o filenames -F _tessaron tessaron
