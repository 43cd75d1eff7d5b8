# Completion of yxstcmp for fish: the script, the code file, then the options not yet given.

function __yxstcmp_has_words --argument-names count
    test (count (commandline -opc)) -ge $count
end

# The words of -a are offered as they are: an option stands alone and needs no "-" typed before.
function __yxstcmp_option --argument-names option description
    complete -c yxstcmp -f -a $option -d $description \
        -n "__yxstcmp_has_words 3; and not contains -- $option (commandline -opc)[4..]"
end

# A script is no output: it would be lost.
function __yxstcmp_outputs
    __fish_complete_path (commandline -ct) | string match -riv '\.st(\t|$)'
end

complete -c yxstcmp -f
complete -c yxstcmp -n "not __yxstcmp_has_words 2" -a "(__fish_complete_suffix .st)"
complete -c yxstcmp -n "__yxstcmp_has_words 2; and not __yxstcmp_has_words 3" \
    -a "(__yxstcmp_outputs)"

__yxstcmp_option -l "write the listing"
__yxstcmp_option -s "show the code and all messages on standard output"
__yxstcmp_option -i "show the source lines in the listing"
__yxstcmp_option -c "accepted, without effect"
__yxstcmp_option -m "show the messages in the listing"
__yxstcmp_option -n "number the code lines of the listing"
__yxstcmp_option -r "write the result file"
__yxstcmp_option -e "write the error file"
