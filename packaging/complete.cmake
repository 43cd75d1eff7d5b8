# Completes the installed tree to what a Debian package holds. Run by cpack before it packs.

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH source)
set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
set(docs ${tree}/usr/share/doc/yxstcmp)

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The date of all that is packed, so that one tree gives one package: that of the last commit, or,
# without a repository, that of the changelog.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND git -C ${source} log -1 --format=%ct
        OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(NOT date)
        file(TIMESTAMP ${source}/CHANGELOG.md date %s UTC)
    endif()
    set(ENV{SOURCE_DATE_EPOCH} ${date})
endif()

run(${source}/scripts/manual ${docs}/html)
run(python3 -B ${source}/packaging/changelog.py ${CPACK_PACKAGE_VERSION}
    ${CPACK_PACKAGE_CONTACT} ${docs}/changelog)
file(GLOB manual_pages ${tree}/usr/share/man/man1/*.1)
run(gzip -9n ${docs}/changelog ${manual_pages})
file(MAKE_DIRECTORY ${tree}/usr/share/doc-base)
file(COPY_FILE ${source}/packaging/doc-base ${tree}/usr/share/doc-base/yxstcmp)
file(MAKE_DIRECTORY ${tree}/usr/share/lintian/overrides)
file(COPY_FILE ${source}/packaging/lintian-overrides ${tree}/usr/share/lintian/overrides/yxstcmp)

# Debian has names of its own for these.
file(RENAME ${docs}/LICENSE ${docs}/copyright)
file(RENAME ${tree}/usr/share/zsh/site-functions ${tree}/usr/share/zsh/vendor-completions)

# The search of the manual and the library of charts are the work of others.
file(READ ${docs}/html/lunr.copyright licence)
file(APPEND ${docs}/copyright "\n\nhtml/lunr.min.js, which searches the manual, is Lunr:\n\n${licence}")
file(READ /usr/share/doc/libjs-dygraphs/copyright licence)
file(APPEND ${docs}/copyright
    "\n\nDygraphs, which draws charts, is part of yxst and of the pages that it writes:\n\n${licence}")
set(vsix ${tree}/usr/share/yxstcmp/yxst.vsix)
if(EXISTS ${vsix})
    file(ARCHIVE_EXTRACT INPUT ${vsix} DESTINATION ${tree}/notices
        PATTERNS extension/ThirdPartyNotices.txt)
    file(READ ${tree}/notices/extension/ThirdPartyNotices.txt licences)
    file(REMOVE_RECURSE ${tree}/notices)
    file(APPEND ${docs}/copyright "\n\nyxst.vsix: ${licences}")
endif()

run(chmod -R u=rwX,go=rX ${tree})
run(find ${tree} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +)
