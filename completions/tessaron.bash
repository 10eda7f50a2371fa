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
        [[ ${!i} == run || ${!i} == check ]] && command=${!i} && break
    done
    case $previous in
        --diagnostics) compgen -W 'text json' -- "$current"; return ;;
        --color) compgen -W 'auto always never' -- "$current"; return ;;
        -C | --directory) compgen -d -- "$current"; return ;;
        -D | --define | --symbol | --error | --warn | --ignore) return ;;
    esac
    case $command:$current in
        :-*) compgen -W '--help --version' -- "$current" ;;
        :*) compgen -W 'run check' -- "$current" ;;
        run:-*)
            compgen -W '--help --define --symbol --directory --keep-going --quiet --diagnostics --color
                --error --warn --ignore --werror --depfile' -- "$current" ;;
        check:-*)
            compgen -W '--help --define --symbol --directory --keep-going --quiet --diagnostics --color
                --error --warn --ignore --werror --against-disk' -- "$current" ;;
        *) compgen -f -- "$current" ;;
    esac
}

_tessaron() {
    local IFS=$'\n'
    COMPREPLY=($(_tessaron_words "${COMP_WORDS[@]:0:COMP_CWORD+1}"))
}

complete -o filenames -F _tessaron tessaron
