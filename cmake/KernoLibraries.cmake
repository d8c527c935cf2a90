# Libraries that core rooms use: on Linux those of the system, for Windows the same version, built from
# its source package, which tools/setup.sh has fetched.

if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(polyclipping REQUIRED IMPORTED_TARGET GLOBAL polyclipping)
  add_library(kerno_polyclipping INTERFACE)
  target_link_libraries(kerno_polyclipping INTERFACE PkgConfig::polyclipping)
  pkg_check_modules(harfbuzz REQUIRED IMPORTED_TARGET GLOBAL harfbuzz)
  add_library(kerno_harfbuzz INTERFACE)
  target_link_libraries(kerno_harfbuzz INTERFACE PkgConfig::harfbuzz)
  pkg_check_modules(fribidi REQUIRED IMPORTED_TARGET GLOBAL fribidi)
  add_library(kerno_fribidi INTERFACE)
  target_link_libraries(kerno_fribidi INTERFACE PkgConfig::fribidi)
  return()
endif()

set(cache_folder "$ENV{XDG_CACHE_HOME}")
if(NOT cache_folder)
  set(cache_folder "$ENV{HOME}/.cache")
endif()
set(KERNO_SOURCES "${cache_folder}/kerno-sources"
    CACHE PATH "Where tools/setup.sh has put the sources of libraries")

# kerno_source(VARIABLE PACKAGE FILE) finds a file of a source package and sets VARIABLE to its folder.
function(kerno_source variable package file)
  file(GLOB found ${KERNO_SOURCES}/${package}/${file})
  if(NOT found)
    message(FATAL_ERROR "${KERNO_SOURCES}/${package} has no ${file}: run \"tools/setup.sh windows\"")
  endif()
  get_filename_component(folder ${found} DIRECTORY)
  set(${variable} ${folder} PARENT_SCOPE)
endfunction()

kerno_source(polyclipping_source libpolyclipping cpp/clipper.cpp)
add_library(kerno_polyclipping STATIC ${polyclipping_source}/clipper.cpp)
target_compile_options(kerno_polyclipping PRIVATE -ffp-contract=off)
# Found as <polyclipping/...>, as an installed one is.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/libraries)
file(CREATE_LINK ${polyclipping_source} ${PROJECT_BINARY_DIR}/libraries/polyclipping SYMBOLIC)
target_include_directories(kerno_polyclipping SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/libraries)

# All of HarfBuzz is in reach of one source file.
kerno_source(harfbuzz_source harfbuzz src/harfbuzz.cc)
add_library(kerno_harfbuzz STATIC ${harfbuzz_source}/harfbuzz.cc)
# The same on both systems whatever the build: warnings and speed of the library are not ours.
target_compile_options(kerno_harfbuzz PRIVATE -O2 -g0 -w -ffp-contract=off)
target_include_directories(kerno_harfbuzz SYSTEM INTERFACE ${harfbuzz_source})

# Its tables are in the package, made, and it does without the header that its configure would write.
kerno_source(fribidi_source fribidi lib/fribidi-bidi.c)
set(fribidi_files "")
foreach(file IN ITEMS fribidi-bidi fribidi-bidi-types fribidi-brackets fribidi-run)
  list(APPEND fribidi_files ${fribidi_source}/${file}.c)
endforeach()
add_library(kerno_fribidi STATIC ${fribidi_files})
target_compile_options(kerno_fribidi PRIVATE -O2 -g0 -w)
target_compile_definitions(kerno_fribidi PUBLIC FRIBIDI_LIB_STATIC DONT_HAVE_FRIBIDI_CONFIG_H
                           PRIVATE HAVE_STDLIB_H=1 HAVE_STRING_H=1 HAVE_STRINGIZE=1)
target_include_directories(kerno_fribidi SYSTEM PUBLIC ${fribidi_source})
