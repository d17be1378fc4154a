# What is installed, and where: the tool, the library, and what programs need to link it.
include(CMakePackageConfigHelpers)

install(TARGETS tarnwick-parse-config tarnwick-config COMPONENT tool)
# Where the tool looks by itself, whatever the prefix.
install(DIRECTORY DESTINATION /etc/tarnwick.conf.d COMPONENT tool)

# Where Vim looks for files of other packages.
install(DIRECTORY vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles COMPONENT tool)

# What the JSON of each command of tarnwick-config looks like.
install(DIRECTORY schema/ DESTINATION ${CMAKE_INSTALL_DATADIR}/tarnwick-config COMPONENT tool
  FILES_MATCHING PATTERN *.schema.json)

install(TARGETS tarnwick-parser tarnwick-parser-static EXPORT TarnwickParser
  LIBRARY COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
foreach(header IN LISTS TARNWICK_PUBLIC_HEADERS)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES src/${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarnwick/${folder} COMPONENT development)
endforeach()

set(TARNWICK_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/TarnwickParser)
install(EXPORT TarnwickParser NAMESPACE Tarnwick:: FILE TarnwickParserTargets.cmake
  DESTINATION ${TARNWICK_PACKAGE_DIR} COMPONENT development)
write_basic_package_version_file(TarnwickParserConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/TarnwickParserConfig.cmake
    ${PROJECT_BINARY_DIR}/TarnwickParserConfigVersion.cmake
  DESTINATION ${TARNWICK_PACKAGE_DIR} COMPONENT development)

# The directories are told from where the file lies, since `cmake --install` may have another prefix
# than this one. Absolute ones stay as they are.
cmake_path(SET pkgconfig_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${pkgconfig_dir}
  OUTPUT_VARIABLE way_to_prefix)
set(TARNWICK_PC_PREFIX "\${pcfiledir}/${way_to_prefix}")
cmake_path(APPEND TARNWICK_PC_LIBDIR "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND TARNWICK_PC_INCLUDEDIR "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
configure_file(cmake/tarnwick-parser.pc.in tarnwick-parser.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarnwick-parser.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# Not for a project that this tree is a part of: it has files of its own to remove.
if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -D MANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt
            -P ${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake
    COMMENT "Removing what was installed last"
    VERBATIM)
endif()
