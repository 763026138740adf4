# Completion of cfql for bash.

# The values of one column of "cfql list WORDS...", each once.
_cfql_column() {
    local column=$1
    shift
    cfql list "$@" 2>/dev/null | cut -f"$column" | sort -u
}

# The words that may stand at POSITION behind COMMAND; the words before are in WORDS.
_cfql_words() {
    local command=$1 position=$2
    shift 2
    case $command:$position in
        get:0 | set:0 | unset:0 | list:0)
            echo interface bss radio supported-rate system
            _cfql_column 1
            ;;
        get:1 | set:1 | unset:1)
            if [[ $1 == system ]]; then _cfql_column 3 system; else _cfql_column 2 "$1"; fi
            ;;
        list:1) _cfql_column 2 "$1" ;;
        get:2 | set:2 | unset:2) [[ $1 == system ]] || _cfql_column 3 "$1" ;;
    esac
}

_cfql() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' word i plain=() candidates
    COMPREPLY=()
    if [[ $previous == --store ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
    fi
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        case $word in
            --store | --nth) ((i++)) ;;
            -*) ;;
            *) if [[ -z $command ]]; then command=$word; else plain+=("$word"); fi ;;
        esac
    done
    candidates='--help --version --store'
    if [[ -z $command ]]; then
        candidates+=' init get set unset list import export check lint watch'
    elif [[ $current == -* ]]; then
        case $command in
            get) candidates+=' --nth --reveal' ;;
            set | unset) candidates+=' --nth' ;;
            list | export | watch) candidates+=' --reveal' ;;
            import) candidates+=' --replace' ;;
            lint) candidates+=' --offline --defaults' ;;
        esac
    elif [[ $command == import ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
    else
        candidates=$(_cfql_words "$command" "${#plain[@]}" "${plain[@]}")
    fi
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$current")
}

complete -F _cfql cfql
