# What an installation consists of, and the Debian package made of it.

# The bundle is installed as the build made it: whatever was added to it comes along.
install(TARGETS brindle_host DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS brindle_plugin DESTINATION ${CMAKE_INSTALL_LIBDIR}/lv2/brindle.lv2)
install(DIRECTORY ${BRINDLE_BUNDLE}/ DESTINATION ${CMAKE_INSTALL_LIBDIR}/lv2/brindle.lv2
        PATTERN *.so EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/org.freedesktop.LinuxAudio.Plugins.BrindleConsoleEQ.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
# Debian wants its documents compressed.
function(brindle_pack document packed)
    file(ARCHIVE_CREATE OUTPUT ${PROJECT_BINARY_DIR}/${packed} PATHS ${PROJECT_SOURCE_DIR}/${document}
         FORMAT raw COMPRESSION GZip COMPRESSION_LEVEL 9)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${document})
endfunction()
brindle_pack(CHANGELOG.md changelog.gz)
brindle_pack(packaging/brindle.1 brindle.1.gz)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright ${PROJECT_BINARY_DIR}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${PROJECT_SOURCE_DIR}/packaging/brindle.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME brindle)
install(FILES ${PROJECT_BINARY_DIR}/brindle.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME brindle)
set(CPACK_PACKAGE_VENDOR "Brindle Audio")
set(CPACK_PACKAGE_CONTACT "Brindle Audio <maintainers@brindle-audio.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "console-style parametric equaliser as an LV2 plugin")
set(CPACK_PACKAGE_DESCRIPTION
    "Eight bands of thirteen filter types, two steep filter sections, trim, meters\n\
and a spectrum analyser, mono and stereo, with an OpenGL editor. The program\n\
brindle opens the editor and renders files without a workstation.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PROVIDES lv2-plugin)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "ardour | qtractor | lv2-host")
include(CPack)
