# Writes the lines of pages as rows of text constants:
#
#     cmake "-DPAGES=FILE;FILE..." -DOUTPUT=FILE -P pages.cmake
#
# The text is changed as a whole: lists of CMake do not keep what stands in brackets together.
set(rows "")
foreach(page IN LISTS PAGES)
    file(READ "${page}" text)
    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "\"" "\\\"" text "${text}")
    string(REGEX REPLACE "\n$" "" text "${text}")
    string(REPLACE "\n" "\",\n\"" text "${text}")
    string(APPEND rows "\"${text}\",\n")
endforeach()
file(WRITE "${OUTPUT}" "${rows}")
