# Writes the page of a chart, with style, script and Dygraphs put in, as the bytes of an array:
#
#     cmake -DFOLDER=FOLDER -DDYGRAPHS=FOLDER -DLICENCE=FILE -DOUTPUT=FILE -P chart.cmake
#
# FOLDER holds chart.html, chart.css and chart.js.
cmake_minimum_required(VERSION 3.25)

file(READ "${FOLDER}/chart.html" page)
file(READ "${FOLDER}/chart.css" style)
file(READ "${FOLDER}/chart.js" script)
file(READ "${DYGRAPHS}/dygraph.min.css" dygraphs_style)
file(READ "${DYGRAPHS}/dygraph.min.js" dygraphs)
file(READ "${LICENCE}" licence)

# A page that fetches nothing names no other file; a comment holds no "--".
string(REGEX REPLACE "/[/*]# sourceMappingURL=[^\n]*" "" dygraphs "${dygraphs}")
string(REGEX REPLACE "/[/*]# sourceMappingURL=[^\n]*" "" dygraphs_style "${dygraphs_style}")
string(REPLACE "--" "- -" licence "${licence}")

string(REPLACE "@LICENCE@" "${licence}" page "${page}")
string(REPLACE "@STYLE@" "${style}" page "${page}")
string(REPLACE "@SCRIPT@" "${script}" page "${page}")
string(REPLACE "@DYGRAPHS_STYLE@" "${dygraphs_style}" page "${page}")
string(REPLACE "@DYGRAPHS@" "${dygraphs}" page "${page}")
file(WRITE "${OUTPUT}.html" "${page}")
file(READ "${OUTPUT}.html" bytes HEX)
string(REGEX REPLACE "(..)" "0x\\1,\n" bytes "${bytes}")
file(WRITE "${OUTPUT}" "${bytes}\n")
