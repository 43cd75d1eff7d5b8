# Writes the lines of pages as rows of text constants:
#
#     cmake "-DPAGES=FILE;FILE..." ["-DSECTIONS=TITLE;TITLE..."] -DOUTPUT=FILE -P pages.cmake
#
# With SECTIONS only the sections of the second level with these titles, which each page has.
# The text is changed as a whole: lists of CMake do not keep what stands in brackets together.

# Leaves of a text the sections that are wanted.
function(keep_sections variable)
    set(kept "")
    foreach(title IN LISTS SECTIONS)
        set(text "${${variable}}\n## ")
        string(FIND "${text}" "\n## ${title}\n" begin)
        if(begin EQUAL -1)
            message(FATAL_ERROR "there is no section \"${title}\"")
        endif()
        math(EXPR begin "${begin} + 1")
        string(SUBSTRING "${text}" ${begin} -1 text)
        string(FIND "${text}" "\n## " end)
        math(EXPR end "${end} + 1")
        string(SUBSTRING "${text}" 0 ${end} section)
        string(APPEND kept "${section}")
    endforeach()
    set(${variable} "${kept}" PARENT_SCOPE)
endfunction()

set(rows "")
foreach(page IN LISTS PAGES)
    file(READ "${page}" text)
    if(DEFINED SECTIONS)
        keep_sections(text)
    endif()
    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "\"" "\\\"" text "${text}")
    string(REGEX REPLACE "\n$" "" text "${text}")
    string(REPLACE "\n" "\",\n\"" text "${text}")
    string(APPEND rows "\"${text}\",\n")
endforeach()
file(WRITE "${OUTPUT}" "${rows}")
