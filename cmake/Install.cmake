# What is installed, and where: the tool, the shared library, and what programs need to link it.
include(CMakePackageConfigHelpers)

install(TARGETS tarnwick-parse-config tarnwick-config COMPONENT tool)
# Where the tool looks by itself, whatever the prefix.
install(DIRECTORY DESTINATION /etc/tarnwick.conf.d COMPONENT tool)

# Where Vim looks for files of other packages.
install(DIRECTORY vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles COMPONENT tool)

install(TARGETS tarnwick-parser-shared EXPORT TarnwickParser
  LIBRARY COMPONENT library NAMELINK_COMPONENT development)
install(FILES
    src/api.h
    src/config_parser.h
    src/config_value.h
    src/config_writer.h
    src/diagnostic.h
    src/generator_helpers.h
    src/load_event.h
    src/parser_types.h
    src/template_text.h
    src/vocabulary.h
    src/vocabulary_names.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarnwick COMPONENT development)
install(FILES
    src/logging/log_record.h
    src/logging/logger_config.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarnwick/logging COMPONENT development)

set(TARNWICK_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/TarnwickParser)
install(EXPORT TarnwickParser NAMESPACE Tarnwick:: FILE TarnwickParserConfig.cmake
  DESTINATION ${TARNWICK_PACKAGE_DIR} COMPONENT development)
write_basic_package_version_file(TarnwickParserConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TarnwickParserConfigVersion.cmake
  DESTINATION ${TARNWICK_PACKAGE_DIR} COMPONENT development)

configure_file(cmake/tarnwick-parser.pc.in tarnwick-parser.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarnwick-parser.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
