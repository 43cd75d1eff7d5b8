# Completion of yxst for bash. Subcommands, options and values are those that its help names.

_yxst_help() {
    "${COMP_WORDS[0]}" "$@" --help 2>/dev/null </dev/null
}

_yxst_subcommands() {
    _yxst_help | sed -nE '/^Subcommands:/,$s/^  ([a-z][a-z-]*) .*/\1/p'
}

# _yxst_options [SUBCOMMAND]
_yxst_options() {
    _yxst_help "$@" | sed -nE 's/^  (-[a-zA-Z],)?(--[a-z][a-z-]*).*/\2/p'
}

# _yxst_values OPTION [SUBCOMMAND]: what a description lists at its end, such as "a, b or c".
_yxst_values() {
    local option=$1
    shift
    _yxst_help "$@" | sed -nE "/^  (-[a-zA-Z],)?$option /p" |
        grep -oE '([a-z]+, )+[a-z]+ or [a-z]+$' | sed -E 's/, | or /\n/g'
}

_yxst_scripts() {
    compgen -d -- "$1"
    compgen -f -X '!*.[sS][tT]' -- "$1"
}

# Tables of tests, and after --new the scripts that get one.
_yxst_tables() {
    if [[ " ${COMP_WORDS[*]} " == *" --new "* ]]; then
        _yxst_scripts "$1"
    else
        compgen -d -- "$1"
        compgen -f -X '!*.test' -- "$1"
    fi
}

_yxst() {
    local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD-1]} each
    local -a command=() offered=()
    # A value that is given with "=" is a word of its own.
    if [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD-2]}
    elif [[ $word == = ]]; then
        word=
    fi
    for each in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ $each != -* ]]; then
            command=("$each")
            break
        fi
    done

    COMPREPLY=()
    if [[ $option == --?* ]]; then
        mapfile -t offered < <(_yxst_values "$option" "${command[@]}")
    fi
    if (( ${#offered[@]} == 0 )); then
        if [[ $word == -* ]]; then
            mapfile -t offered < <(_yxst_options "${command[@]}")
        elif (( ${#command[@]} == 0 )); then
            mapfile -t offered < <(_yxst_subcommands)
        elif [[ ${command[0]} == explain ]]; then
            mapfile -t offered < <("${COMP_WORDS[0]}" explain 2>/dev/null | sed -nE '/^[a-z-]+$/p' | sort -u)
        elif [[ ${command[0]} == check || ${command[0]} == facts || ${command[0]} == fmt ]]; then
            mapfile -t COMPREPLY < <(_yxst_scripts "$word")
            return
        elif [[ ${command[0]} == test ]]; then
            mapfile -t COMPREPLY < <(_yxst_tables "$word")
            return
        elif [[ ${command[0]} == lsp ]]; then
            return
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return
        fi
    fi
    mapfile -t COMPREPLY < <(compgen -W "${offered[*]}" -- "$word")
}

complete -o filenames -F _yxst yxst
