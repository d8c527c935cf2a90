# The same source gives the same programs, byte for byte, wherever and whenever it is built.

# The moment that files tell as that of the program's making: SOURCE_DATE_EPOCH, in a tarball else the time of
# its commit (git fills it in), in a clone else that of the compiler's run.
set(KERNO_BUILD_TIME "")
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/source-date.txt KERNO_SOURCE_DATE LIMIT_COUNT 1)
if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
  set(KERNO_SOURCE_DATE $ENV{SOURCE_DATE_EPOCH})
  if(NOT KERNO_SOURCE_DATE MATCHES "^[0-9]+$")
    message(FATAL_ERROR "SOURCE_DATE_EPOCH: \"${KERNO_SOURCE_DATE}\" is not a number of seconds since 1970")
  endif()
endif()
if(KERNO_SOURCE_DATE MATCHES "^[0-9]+$")
  set(ENV{SOURCE_DATE_EPOCH} ${KERNO_SOURCE_DATE})
  string(TIMESTAMP KERNO_BUILD_TIME "%b %d %Y %H:%M:%S" UTC)
  # As compilers write __DATE__.
  string(REGEX REPLACE "^(...) 0" "\\1  " KERNO_BUILD_TIME "${KERNO_BUILD_TIME}")
endif()

# Names of folders stay out of programs and of what debuggers read; where one works on the source they help.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")
endif()
# No times and owners in archives.
foreach(language IN ITEMS C CXX)
  set(CMAKE_${language}_ARCHIVE_CREATE "<CMAKE_AR> qcD <TARGET> <LINK_FLAGS> <OBJECTS>")
  set(CMAKE_${language}_ARCHIVE_APPEND "<CMAKE_AR> qD <TARGET> <LINK_FLAGS> <OBJECTS>")
  set(CMAKE_${language}_ARCHIVE_FINISH "<CMAKE_RANLIB> -D <TARGET>")
endforeach()
# No times of pictures.
set(CMAKE_AUTORCC_OPTIONS --format-version 1)
