# Writes the commit of the sources as a text constant, if it has changed:
#
#     cmake -DSOURCES=FOLDER -DOUTPUT=FILE -P commit.cmake
#
# Sources that are in no repository have none.

cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND git -C "${SOURCES}" rev-parse --short=12 HEAD
    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT commit)
    set(commit "unknown")
endif()
file(CONFIGURE OUTPUT "${OUTPUT}" CONTENT "\"@commit@\"\n" @ONLY)
