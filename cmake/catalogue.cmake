# yxst_catalogue(TEMPLATE OUT): rows for a table of the catalogue of messages.
#
# The messages stand in no table: their names are found in the headers, the texts that they stand
# for are the compiler's. Each row is the template between braces, in which @constant@ is the name
# of the constant and @id@ the same without "TXT_", in lower case and with hyphens, quoted.
function(yxst_catalogue template out)
    file(GLOB headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/qyx_st_cmp/*.h")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${headers})
    set(rows "")
    foreach(header IN LISTS headers)
        file(READ "${header}" text)
        string(REGEX MATCHALL "QLatin1String TXT_[A-Z0-9_]+" definitions "${text}")
        foreach(definition IN LISTS definitions)
            string(REGEX REPLACE "QLatin1String " "" constant "${definition}")
            string(REGEX REPLACE "^TXT_" "" id "${constant}")
            string(TOLOWER "${id}" id)
            string(REPLACE "_" "-" id "\"${id}\"")
            string(CONFIGURE "${template}" row @ONLY)
            string(APPEND rows "{${row}},\n")
        endforeach()
    endforeach()
    set(${out} "${rows}" PARENT_SCOPE)
endfunction()
