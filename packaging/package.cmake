# What is installed beside the compiler, and the Debian package, which cpack makes in the build
# folder.

install(FILES packaging/yxstcmp.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/completions/yxstcmp.bash RENAME yxstcmp
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES packaging/completions/_yxstcmp
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES packaging/completions/yxstcmp.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(FILES README.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.st")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The yxstcmp developers <yxstcmp@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "compiler for Structured Text scripts")
set(CPACK_PACKAGE_DESCRIPTION
    "yxstcmp turns scripts in a dialect of Structured Text into code for a small
stack machine, the script engine of a supervisory control system. On request
it writes a listing, a result file and an error file beside the code.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/complete.cmake)
include(CPack)
