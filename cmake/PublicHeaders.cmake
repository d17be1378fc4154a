# The headers that programs include as <tarnwick/...>, and all that is installed of src/. The
# reference is made from the same list, by scripts/build-docs: one header a line.
set(TARNWICK_PUBLIC_HEADERS
  api.h
  config_parser.h
  config_value.h
  config_writer.h
  diagnostic.h
  generator_helpers.h
  load_event.h
  logging/log_record.h
  logging/logger_config.h
  parser_types.h
  template_text.h
  vocabulary.h
  vocabulary_names.h)

# The folder <tarnwick/...> of the tree has these headers alone, as the installed one has. It is
# made anew, so that a header that left the list leaves the folder.
file(REMOVE_RECURSE ${PROJECT_BINARY_DIR}/include)
foreach(header IN LISTS TARNWICK_PUBLIC_HEADERS)
  set(link ${PROJECT_BINARY_DIR}/include/tarnwick/${header})
  cmake_path(GET link PARENT_PATH folder)
  file(MAKE_DIRECTORY ${folder})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${header} ${link} SYMBOLIC)
endforeach()
