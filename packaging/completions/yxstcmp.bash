# Completion of yxstcmp for bash: the script, the code file, then the options not yet given.

_yxstcmp() {
    local word=${COMP_WORDS[COMP_CWORD]} given option
    COMPREPLY=()
    case $COMP_CWORD in
        1)
            mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -X '!*.[sS][tT]' -- "$word")
            ;;
        2)
            # A script is no output: it would be lost.
            mapfile -t COMPREPLY < <({
                compgen -d -- "$word"
                compgen -f -X '*.[sS][tT]' -- "$word"
            } | sort -u)
            ;;
        *)
            given=" ${COMP_WORDS[*]:3:COMP_CWORD-3} "
            for option in -l -s -i -c -m -n -r -e; do
                if [[ $given != *" $option "* && $option == "$word"* ]]; then
                    COMPREPLY+=("$option")
                fi
            done
            ;;
    esac
}

complete -o filenames -F _yxstcmp yxstcmp
