# Completion of yxst for fish. Subcommands, options and values are those that its help names.

# The first word after the program that is no option; nothing if there is none.
function __yxst_subcommand
    string match -v -- "-*" (commandline -opc)[2..] | head -n 1
end

function __yxst_help
    set program (commandline -opc)[1]
    $program $argv --help 2>/dev/null </dev/null
end

function __yxst_subcommands
    __yxst_help | sed -nE '/^Subcommands:/,$s/^  ([a-z][a-z-]*) +(.*)/\1\t\2/p'
end

function __yxst_options
    __yxst_help (__yxst_subcommand) |
        sed -nE 's/^  (-[a-zA-Z],)?(--[a-z][a-z-]*)( [A-Z][^ ]*)? +(.*)/\2\t\4/p'
end

# The values of the option that stands before, or of the one with "=" that is being typed, when its
# description lists them at its end, such as "a, b or c".
function __yxst_values
    set option (commandline -opc)[-1]
    set begin ""
    if string match -q -- "--*=*" (commandline -ct)
        set option (string split -m 1 = -- (commandline -ct))[1]
        set begin "$option="
    end
    string match -q -- "--*" $option; or return
    for value in (__yxst_help (__yxst_subcommand) |
            sed -nE "/^  (-[a-zA-Z],)?$option /p" |
            grep -oE '([a-z]+, )+[a-z]+ or [a-z]+$' | sed -E 's/, | or /\n/g')
        echo $begin$value
    end
end

function __yxst_messages
    set program (commandline -opc)[1]
    $program explain 2>/dev/null | sed -nE '/^[a-z-]+$/p' | sort -u
end

function __yxst_has_values
    test -n "$(__yxst_values)"
end

# Whether a word is due that is neither an option nor a value, for one of these subcommands, for
# the others with "--others", or for none yet.
function __yxst_word_for
    set subcommand (__yxst_subcommand)
    if __yxst_has_values
        return 1
    else if test "$argv[1]" = --others
        test -n "$subcommand"; and not contains -- $subcommand $argv
    else if test (count $argv) -eq 0
        test -z "$subcommand"
    else
        contains -- "$subcommand" $argv
    end
end

complete -c yxst -f
complete -c yxst -n __yxst_has_values -a "(__yxst_values)"
complete -c yxst -n "string match -q -- '-*' (commandline -ct)" -a "(__yxst_options)"
complete -c yxst -n __yxst_word_for -a "(__yxst_subcommands)"
complete -c yxst -n "__yxst_word_for explain" -a "(__yxst_messages)"
complete -c yxst -n "__yxst_word_for check facts fmt" -a "(__fish_complete_suffix .st)"
complete -c yxst -n "__yxst_word_for test; and not contains -- --new (commandline -opc)" \
    -a "(__fish_complete_suffix .test)"
complete -c yxst -n "__yxst_word_for test; and contains -- --new (commandline -opc)" \
    -a "(__fish_complete_suffix .st)"
complete -c yxst -n "__yxst_word_for --others explain check facts fmt lsp test" -F
