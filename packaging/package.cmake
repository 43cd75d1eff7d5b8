# What is installed beside the compiler, and the Debian package, which cpack makes in the build
# folder.

install(FILES packaging/yxstcmp.1 packaging/yxst.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

set(completions packaging/completions)
foreach(program yxstcmp yxst)
    install(FILES ${completions}/${program}.bash RENAME ${program}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${completions}/_${program}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
    install(FILES ${completions}/${program}.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endforeach()

install(FILES packaging/README.md LICENSE tests/desk/facts.schema.json
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR})

# Where the editors look without any setting.
foreach(folder vim/vimfiles nvim/site)
    install(DIRECTORY editors/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder})
endforeach()
install(FILES editors/kate/yxst.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/org.kde.syntax-highlighting/syntax)

# npm fetches the libraries of the extension for VS Code, so it is built only on demand.
option(YXST_EXTENSION "Build and install the extension for VS Code" OFF)
if(YXST_EXTENSION)
    set(vsix "${PROJECT_BINARY_DIR}/yxst.vsix")
    file(GLOB_RECURSE extension_sources CONFIGURE_DEPENDS editors/vscode/*)
    list(FILTER extension_sources EXCLUDE REGEX "/(node_modules|out)/")
    add_custom_command(OUTPUT "${vsix}"
        COMMAND python3 -B "${PROJECT_SOURCE_DIR}/packaging/vsix.py" "${vsix}"
            "${PROJECT_BINARY_DIR}/extension"
        DEPENDS packaging/vsix.py LICENSE ${extension_sources}
        COMMENT "Building the extension for VS Code"
        VERBATIM)
    add_custom_target(yxst_extension ALL DEPENDS "${vsix}")
    install(FILES "${vsix}" DESTINATION ${CMAKE_INSTALL_DATADIR}/yxstcmp)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The yxstcmp developers <yxstcmp@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "compiler for Structured Text scripts")
set(CPACK_PACKAGE_DESCRIPTION
    "yxstcmp turns scripts in a dialect of Structured Text into code for a small
stack machine, the script engine of a supervisory control system. On request
it writes a listing, a result file and an error file beside the code.
yxst shows all errors of scripts at once and explains them. Vim, Neovim and
Kate colour scripts; an extension for VS Code is beside.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/complete.cmake)
include(CPack)
