# Removes the files that the last installation listed in MANIFEST, and the directories of this project
# that are empty then. With DESTDIR set, from the staged tree. What users added stays.
if(NOT EXISTS "${MANIFEST}")
  message(FATAL_ERROR "Nothing was installed from here: there is no ${MANIFEST}")
endif()

file(STRINGS "${MANIFEST}" files)
# The one directory that is installed empty is in no manifest.
set(directories /etc/tarnwick.conf.d)
foreach(file IN LISTS files)
  message(STATUS "Removing $ENV{DESTDIR}${file}")
  file(REMOVE "$ENV{DESTDIR}${file}")
  cmake_path(GET file PARENT_PATH directory)
  while(directory MATCHES "/(tarnwick|tarnwick-config|tarnwick/logging|TarnwickParser)$")
    list(APPEND directories ${directory})
    cmake_path(GET directory PARENT_PATH directory)
  endwhile()
endforeach()

# The inner ones first.
list(REMOVE_DUPLICATES directories)
list(SORT directories ORDER DESCENDING)
foreach(directory IN LISTS directories)
  file(GLOB content "$ENV{DESTDIR}${directory}/*" "$ENV{DESTDIR}${directory}/.*")
  if(NOT content)
    file(REMOVE_RECURSE "$ENV{DESTDIR}${directory}")
  endif()
endforeach()
file(REMOVE "${MANIFEST}")
