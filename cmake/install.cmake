# What `cmake --install` puts where, and the Debian package made of it. The host finds the plugin in ../lib/waveform seen
# from its own folder and the child programs in that folder, so that the installed tree can stand anywhere.
include(GNUInstallDirs)

set(WAVEFORM_PACKAGE waveform-otdr) # plain "waveform" is a word that others use too
set(programs waveform wfgather wfevfind otdrinfo otdrreport)
set(private lib/waveform)

# Programs and private libraries. Nothing but the host looks for a library that is not the system's.
set_target_properties(waveform PROPERTIES INSTALL_RPATH "$ORIGIN/../${private}")
set_target_properties(waveform_plugin PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS ${programs} RUNTIME DESTINATION bin)
install(TARGETS launcher waveform_plugin LIBRARY DESTINATION ${private})

# Desktop
set(data ${PROJECT_SOURCE_DIR}/data)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable)
install(FILES ${data}/desktop/waveform.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${data}/icons/waveform.svg DESTINATION ${icons}/apps)
install(FILES ${data}/icons/application-x-otdr-sor.svg DESTINATION ${icons}/mimetypes)
install(FILES ${data}/mime/waveform-otdr.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES ${data}/metainfo/org.waveform_otdr.waveform.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# Shell: one file completes all programs; bash looks for it under the name of the one that is typed.
foreach(program IN LISTS programs)
    install(FILES ${data}/completion/waveform RENAME ${program}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endforeach()

# Pages: a manual page for each program out of its --help, the changelog, and what Debian wants to know. Compressed
# without name and time, so that the same sources make the same bytes.
set(made ${PROJECT_BINARY_DIR}/install)
file(MAKE_DIRECTORY ${made})
foreach(program IN LISTS programs)
    set(page ${made}/${program}.1)
    add_custom_command(OUTPUT ${page}.gz
        COMMAND ${CMAKE_COMMAND} -D PROGRAM=$<TARGET_FILE:${program}> -D OUT=${page} "-DOTHERS=${programs}"
                -P ${PROJECT_SOURCE_DIR}/cmake/manpage.cmake
        COMMAND gzip -9nf ${page}
        DEPENDS ${program} ${PROJECT_SOURCE_DIR}/cmake/manpage.cmake
        VERBATIM)
    list(APPEND pages ${page}.gz)
endforeach()

set(doc ${CMAKE_INSTALL_DATADIR}/doc/${WAVEFORM_PACKAGE})
set(WAVEFORM_CONTACT "Waveform developers <developers@waveform.example>"
    CACHE STRING "Who answers for a package built here: Name <address>")
string(TIMESTAMP today "%a, %d %b %Y 00:00:00 +0000" UTC) # the date in SOURCE_DATE_EPOCH where that is set
configure_file(${data}/debian/changelog.in ${made}/changelog.Debian @ONLY)
set(changelogs ${made}/changelog.gz ${made}/changelog.Debian.gz)
add_custom_command(OUTPUT ${changelogs}
    COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md > ${made}/changelog.gz
    COMMAND gzip -9nc ${made}/changelog.Debian > ${made}/changelog.Debian.gz
    DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${made}/changelog.Debian)

add_custom_target(waveform_pages ALL DEPENDS ${pages} ${changelogs})
install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${changelogs} ${data}/debian/copyright ${PROJECT_SOURCE_DIR}/docs/report-templates.md DESTINATION ${doc})
install(DIRECTORY ${data}/fibres DESTINATION ${doc}/examples FILES_MATCHING PATTERN "*.json" PATTERN "README.md")
install(FILES ${data}/report/report.html DESTINATION ${doc}/examples/report)

# The package: `cmake --build <directory> --target package`
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${WAVEFORM_PACKAGE})
set(CPACK_PACKAGE_CONTACT ${WAVEFORM_CONTACT})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "OTDR workstation for traces of optical fibres")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Acquires reflectograms, shows them, finds their events, measures between two
markers, compares up to four traces and keeps them with a report. Without a
measurement card it measures a simulated fibre or replays a trace file.
.
Besides the window there are programs for scripts: otdrinfo tells what trace
files say, wfevfind finds events, otdrreport writes reports.")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
# The chart's font and the desktop's usual one: without the second, widgets take whatever the first brings along.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-liberation, fonts-dejavu-core")
# Qt's own words, such as those of its file dialog, in other languages than English.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "hicolor-icon-theme, qttranslations5-l10n, shared-mime-info")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS bash-completion)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
