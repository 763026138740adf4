# Bash completion for cfql. Names in the store are data: nothing here expands them, and they are offered in quotes.

# Splits LINE into words as the shell does, but expands nothing. Sets the caller's variables:
#   words    the finished words
#   current  the word that LINE ends in, without its quotes
#   quote    the quote that is still open: ', ", $' or nothing
#   head     the part of current that readline keeps; completions are appended to it
#   closed   not empty when current has a quote that was closed again
_cfql_split() {
    local line=$1 char next i raw=''
    words=() current='' quote='' head='' closed=''
    for ((i = 0; i < ${#line}; i++)); do
        char=${line:i:1} next=${line:i+1:1}
        case "$quote|$char" in
            "'|'" | '"|"' | "\$'|'") _cfql_close ;;
            "\$'|\\") raw+=$char$next i=$((i + 1)) ;;
            "\$'|"*) raw+=$char ;;
            "\"|\\") if [[ $next == [\"\\\$\`] ]]; then current+=$next i=$((i + 1)); else current+=$char; fi ;;
            "'|"* | '"|'*) current+=$char ;;
            "|\\") current+=$next i=$((i + 1)) ;;
            "|'" | '|"') quote=$char head=$current ;;
            '|$') if [[ $next == "'" ]]; then quote="\$'" i=$((i + 1)); else current+=$char; fi ;;
            '|'[[:space:]]) if [[ -n $current$closed ]]; then words+=("$current") current='' head='' closed=''; fi ;;
            *)
                current+=$char
                if [[ $COMP_WORDBREAKS == *"$char"* ]]; then head=$current; fi
                ;;
        esac
    done
}

# Ends a quote of _cfql_split; only $' holds escapes.
_cfql_close() {
    if [[ -n $raw ]]; then printf -v raw '%b' "${raw//\\\'/\'}"; fi
    current+=$raw raw='' quote='' closed=yes
}

# Adds the values of one column of "cfql list -- WORDS..." to candidates.
_cfql_column() {
    local column=$1 name
    shift
    while IFS= read -r name; do
        printf -v name '%b' "$name"
        if [[ -n $ended || $name != -* ]]; then candidates+=("$name"); fi
    done < <(cfql "${store[@]}" list -- "$@" 2>/dev/null | cut -f"$column" | LC_ALL=C sort -u)
}

# Adds the words that may follow COMMAND WORDS... to candidates.
_cfql_words() {
    local command=$1
    shift
    case $command:$# in
        get:0 | set:0 | unset:0 | list:0)
            candidates=(interface bss radio supported-rate system)
            _cfql_column 1
            ;;
        get:1 | set:1 | unset:1) if [[ $1 == system ]]; then _cfql_column 3 system; else _cfql_column 2 "$1"; fi ;;
        list:1) _cfql_column 2 "$1" ;;
        preview:0) _cfql_column 2 interface ;;
        get:2 | set:2 | unset:2) [[ $1 == system ]] || _cfql_column 3 "$@" ;;
    esac
}

_cfql_options() {
    candidates=(--help --version --store)
    case $1 in
        get) candidates+=(--nth --reveal) ;;
        set | unset) candidates+=(--nth) ;;
        list | watch) candidates+=(--reveal) ;;
        import) candidates+=(--replace --allow-empty) ;;
        export) candidates+=(--output --salvage --reveal) ;;
        preview) candidates+=(--json --complete --offline --reveal) ;;
        lint) candidates+=(--offline --defaults) ;;
        doctor) candidates+=(--as --host --community --user --module) ;;
    esac
}

# Sets quoted to NAME as it is typed inside the open quote, or outside any. Fails for a name that cannot be typed there.
_cfql_quoted() {
    local plain
    printf -v plain '%q' "$1"
    case $quote in
        '') quoted=$plain ;;
        "'") quoted=${1//\'/\'\\\'\'} ;;
        '"')
            quoted=${1//\\/\\\\} quoted=${quoted//\"/\\\"} quoted=${quoted//\$/\\\$} quoted=${quoted//\`/\\\`}
            quoted=${quoted//\!/\"\\!\"}
            ;;
        *) return 1 ;;
    esac
    # readline closes the quote, but not after a character that looks like it.
    if [[ -n $quote && $quoted == *"$quote" ]]; then quoted+=$quote; fi
    [[ -z $quote || $plain != "\$'"* ]]
}

_cfql_offer() {
    local name quoted
    for name in "${candidates[@]}"; do
        [[ -n $name && $name == "$current"* ]] || continue
        if _cfql_quoted "${name:${#head}}"; then COMPREPLY+=("$quoted"); fi
    done
}

_cfql() {
    local words current quote head closed candidates=() store=() plain=() i ended=''
    COMPREPLY=()
    _cfql_split "${COMP_LINE:0:COMP_POINT}"
    for ((i = 1; i < ${#words[@]}; i++)); do
        case $ended${words[i]} in
            --store | --nth | --output | --as | --host | --community | --user | --module)
                if ((i + 1 == ${#words[@]})); then
                    if [[ ${words[i]} == --as ]]; then
                        mapfile -t candidates < <(compgen -u)
                        _cfql_offer
                    fi
                    [[ ${words[i]} != --@(store|output|module) ]] || compopt -o default
                    return
                fi
                i=$((i + 1))
                [[ ${words[i - 1]} != --store ]] || store=(--store "${words[i]}")
                ;;
            --store=*) store=("${words[i]}") ;;
            --) ended=yes ;;
            -*) ;;
            *) plain+=("${words[i]}") ;;
        esac
    done
    [[ -z $closed ]] || return
    if [[ $current == -* && -z $ended ]]; then
        _cfql_options "${plain[0]}"
    elif ((${#plain[@]} == 0)); then
        candidates=(init get set unset list import export check preview lint watch doctor)
    elif [[ ${plain[0]} == import ]]; then
        compopt -o default
    else
        _cfql_words "${plain[@]}"
    fi
    _cfql_offer
}

complete -F _cfql cfql
