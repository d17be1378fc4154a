# The names that completions and manual pages list, read from the rows of the sources that define
# them. Such a file is a template that `configure_file` fills (@ONLY) from these variables:
#
#     GROUPS              all groups, with blanks between them
#     KEYS_OF_EACH_GROUP  one branch of a shell "case" for each group; bash and zsh read it alike
#     VOCABULARY          the groups with their keys, for a manual page in scdoc(5)
#     NAMES               every key as GROUP/KEY, with blanks between them
#     COMMANDS            the commands of tarnwick-config, with blanks between them
#     IDS                 its kinds of fault, the same
#
# Another list of names is one more call of `read_rows` and a variable beside these. Nothing is
# compiled or run, so it is the same in a build for another machine.

# Stores the rows of `#define MACRO(ROW)` in `file` as a list: of each what stands between its
# parentheses. A change of the file is noticed by the next build.
function(read_rows variable file macro)
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(READ ${file} text)
  string(REGEX MATCH "#define ${macro}\\(ROW\\)[^#]*" definition "${text}")
  string(REGEX MATCHALL "ROW\\([^)]+, [^)]+\\)" rows "${definition}")
  list(TRANSFORM rows REPLACE "^ROW\\((.*)\\)$" "\\1")
  if(NOT rows)
    message(FATAL_ERROR "${file} has no rows of ${macro}")
  endif()
  set(${variable} ${rows} PARENT_SCOPE)
endfunction()

# Stores the words with blanks and, so that no line is longer than `width`, line feeds between them.
function(wrap_words variable width)
  set(text "")
  set(line "")
  foreach(word IN LISTS ARGN)
    string(LENGTH "${line} ${word}" length)
    if(line STREQUAL "")
      set(line ${word})
    elseif(length GREATER width)
      string(APPEND text "${line}\n")
      set(line ${word})
    else()
      string(APPEND line " ${word}")
    endif()
  endforeach()
  set(${variable} "${text}${line}" PARENT_SCOPE)
endfunction()

set(vocabulary_rows ${PROJECT_SOURCE_DIR}/src/vocabulary_names.h)
read_rows(group_rows ${vocabulary_rows} TARNWICK_GROUPS)
foreach(group_row IN LISTS group_rows)
  string(REGEX REPLACE ", .*" "" group ${group_row})
  string(REGEX REPLACE ".*, " "" list_of_keys ${group_row})
  read_rows(keys ${vocabulary_rows} ${list_of_keys})
  list(TRANSFORM keys REPLACE ", .*" "")

  list(APPEND GROUPS ${group})
  list(TRANSFORM keys PREPEND ${group}/ OUTPUT_VARIABLE names)
  list(APPEND NAMES ${names})
  list(JOIN keys " " words)
  string(APPEND KEYS_OF_EACH_GROUP "\n        ${group}) keys=(${words}) ;;")
  # Literal lines, since filled text would get hyphens inside the names.
  wrap_words(lines 66 ${keys})
  string(APPEND VOCABULARY "\n\n*${group}*\n\n```\n${lines}\n```")
endforeach()
list(JOIN GROUPS " " GROUPS)
list(JOIN NAMES " " NAMES)
string(STRIP "${KEYS_OF_EACH_GROUP}" KEYS_OF_EACH_GROUP)
string(STRIP "${VOCABULARY}" VOCABULARY)

# Stores the first text of every row of the type `row` in `file`, with blanks between them.
function(read_first_texts variable file row)
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(READ ${file} text)
  string(REGEX MATCHALL "${row}{[^\"\n]*\"[^\"\n]+\"" rows "${text}")
  list(TRANSFORM rows REPLACE ".*\"(.*)\"" "\\1")
  if(NOT rows)
    message(FATAL_ERROR "${file} has no rows of ${row}")
  endif()
  list(JOIN rows " " rows)
  set(${variable} ${rows} PARENT_SCOPE)
endfunction()

read_first_texts(COMMANDS ${PROJECT_SOURCE_DIR}/tools/config/commands.cpp Command)
read_first_texts(IDS ${PROJECT_SOURCE_DIR}/tools/config/check/rules.cpp Rule)
