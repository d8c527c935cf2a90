# Libraries that rooms use: on Linux those of the system, for Windows the same version, built from its source
# package, which tools/setup.sh has fetched.

if(NOT WIN32)
  find_package(PkgConfig QUIET)
  if(NOT PKG_CONFIG_FOUND)
    kerno_missing("pkg-config" "finds the libraries, so they are named here, too" pkg-config)
  endif()
  kerno_need_module(freetype freetype2 "outlines of glyphs" libfreetype-dev)
  kerno_need_module(fontconfig "fontconfig>=2.13" "installed faces" libfontconfig-dev)
  kerno_need_module(harfbuzz "harfbuzz>=4.0" "shapes of scripts" libharfbuzz-dev)
  kerno_need_module(fribidi "fribidi>=1.0" "order of mixed lines" libfribidi-dev)
  kerno_need_module(agg libagg "pixels of previews and bitmaps" libagg-dev)
  kerno_need_module(polyclipping polyclipping "unions of outlines, Clipper 6" libpolyclipping-dev)
  # Its header alone: the library is loaded at its first use.
  kerno_need_module(libcurl libcurl "uploads, its header alone" libcurl4-openssl-dev)
  find_path(KERNO_CLI11_INCLUDE CLI/CLI.hpp)
  if(NOT KERNO_CLI11_INCLUDE)
    kerno_missing("CLI11" "the command line, headers only" libcli11-dev)
  endif()

  add_library(kerno_polyclipping INTERFACE)
  add_library(kerno_harfbuzz INTERFACE)
  add_library(kerno_fribidi INTERFACE)
  if(NOT KERNO_MISSING)
    target_link_libraries(kerno_polyclipping INTERFACE PkgConfig::polyclipping)
    target_link_libraries(kerno_harfbuzz INTERFACE PkgConfig::harfbuzz)
    target_link_libraries(kerno_fribidi INTERFACE PkgConfig::fribidi)
    target_include_directories(kerno_options SYSTEM INTERFACE ${KERNO_CLI11_INCLUDE})
  endif()
  return()
endif()

# Of the building machine: of CLI11 the headers will do, alone (kerno_header_only).
find_program(KERNO_MAGICK NAMES convert magick)
if(NOT KERNO_MAGICK)
  kerno_missing("ImageMagick" "makes the programs' icon" imagemagick)
endif()
if(NOT EXISTS /usr/include/CLI/CLI.hpp)
  kerno_missing("CLI11 in /usr/include" "the command line, headers only" libcli11-dev)
endif()

set(cache_folder "$ENV{XDG_CACHE_HOME}")
if(NOT cache_folder)
  set(cache_folder "$ENV{HOME}/.cache")
endif()
set(KERNO_SOURCES "${cache_folder}/kerno-sources"
    CACHE PATH "Where tools/setup.sh has put the sources of libraries")

# kerno_source(VARIABLE PACKAGE FILE) finds a file of a source package and sets VARIABLE to its folder.
macro(kerno_source variable package file)
  file(GLOB found ${KERNO_SOURCES}/${package}/${file})
  if(found)
    get_filename_component(${variable} ${found} DIRECTORY)
  else()
    kerno_missing("${KERNO_SOURCES}/${package}/${file}" "a library's source, which tools/setup.sh windows fetches")
  endif()
endmacro()
kerno_source(polyclipping_source libpolyclipping cpp/clipper.cpp)
kerno_source(harfbuzz_source harfbuzz src/harfbuzz.cc)
kerno_source(fribidi_source fribidi lib/fribidi-bidi.c)
kerno_end_if_missing()

add_library(kerno_polyclipping STATIC ${polyclipping_source}/clipper.cpp)
target_compile_options(kerno_polyclipping PRIVATE -ffp-contract=off)
# Found as <polyclipping/...>, as an installed one is.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/libraries)
file(CREATE_LINK ${polyclipping_source} ${PROJECT_BINARY_DIR}/libraries/polyclipping SYMBOLIC)
target_include_directories(kerno_polyclipping SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/libraries)

# All of HarfBuzz is in reach of one source file.
add_library(kerno_harfbuzz STATIC ${harfbuzz_source}/harfbuzz.cc)
# The same on both systems whatever the build: warnings and speed of the library are not ours.
target_compile_options(kerno_harfbuzz PRIVATE -O2 -g0 -w -ffp-contract=off)
target_include_directories(kerno_harfbuzz SYSTEM INTERFACE ${harfbuzz_source})

# Its tables are in the package, made, and it does without the header that its configure would write.
set(fribidi_files "")
foreach(file IN ITEMS fribidi-bidi fribidi-bidi-types fribidi-brackets fribidi-run)
  list(APPEND fribidi_files ${fribidi_source}/${file}.c)
endforeach()
add_library(kerno_fribidi STATIC ${fribidi_files})
target_compile_options(kerno_fribidi PRIVATE -O2 -g0 -w)
target_compile_definitions(kerno_fribidi PUBLIC FRIBIDI_LIB_STATIC DONT_HAVE_FRIBIDI_CONFIG_H
                           PRIVATE HAVE_STDLIB_H=1 HAVE_STRING_H=1 HAVE_STRINGIZE=1)
target_include_directories(kerno_fribidi SYSTEM PUBLIC ${fribidi_source})
