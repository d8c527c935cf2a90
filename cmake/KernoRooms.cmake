# How every room of the house is built: language level, warnings, sanitizers, and which rooms it may use.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# The rooms go into programs and into a shared library alike; what is not shown by name stays within.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

# For those who build again and again, in a clone; a package is built once, out of a tarball.
set(in_clone OFF)
if(EXISTS ${PROJECT_SOURCE_DIR}/.git)
  set(in_clone ON)
endif()
option(KERNO_CCACHE "Use ccache where it is installed" ${in_clone})
find_program(CCACHE ccache)
if(KERNO_CCACHE AND CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(kerno_options INTERFACE)
target_compile_options(kerno_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                               -Wnon-virtual-dtor)
if(KERNO_WARNINGS_AS_ERRORS)
  target_compile_options(kerno_options INTERFACE -Werror)
endif()
# GCC 12 sees overlapping copies where an optimised "literal" + string has none (its bug 105651);
# clang does not know that warning.
target_compile_options(kerno_options INTERFACE -Wno-unknown-warning-option -Wno-restrict)
# The same sums must come out on every platform and processor: no fused multiply-add.
target_compile_options(kerno_options INTERFACE -ffp-contract=off)
if(KERNO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(KERNO_SANITIZE_THREADS)
  if(KERNO_SANITIZE)
    message(FATAL_ERROR "KERNO_SANITIZE and KERNO_SANITIZE_THREADS exclude each other: take two build folders")
  endif()
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()

if(KERNO_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "KERNO_FUZZ=ON needs Clang, the compiler is ${CMAKE_CXX_COMPILER_ID}:"
                        " -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ in a new build folder")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# kerno_room(NAME DEPENDS room... SOURCES file...) makes the library kerno_NAME out of one folder of src/.
# A room without sources yet is a header-only library.
function(kerno_room name)
  cmake_parse_arguments(ROOM "" "" "DEPENDS;SOURCES;LIBRARIES" ${ARGN})
  list(TRANSFORM ROOM_DEPENDS PREPEND kerno_)
  if(ROOM_SOURCES)
    add_library(kerno_${name} STATIC ${ROOM_SOURCES})
    target_include_directories(kerno_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(kerno_${name} PUBLIC ${ROOM_DEPENDS} PRIVATE kerno_options ${ROOM_LIBRARIES})
  else()
    add_library(kerno_${name} INTERFACE)
    target_include_directories(kerno_${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(kerno_${name} INTERFACE ${ROOM_DEPENDS})
  endif()
endfunction()

# kerno_header_only(TARGET FOLDER) lets a cross-built program use a library of headers only: those of
# the building machine will do, alone.
function(kerno_header_only target folder)
  set(place ${PROJECT_BINARY_DIR}/header_only)
  file(MAKE_DIRECTORY ${place})
  file(CREATE_LINK /usr/include/${folder} ${place}/${folder} SYMBOLIC)
  target_include_directories(${target} SYSTEM PRIVATE ${place})
endfunction()

# kerno_test_fonts(TEST...) shows to tests the faces that the set-up installs and no others. Wine's
# server keeps the faces of the first program that it runs, so every test of Windows programs needs it.
function(kerno_test_fonts)
  set_property(TEST ${ARGN} PROPERTY ENVIRONMENT_MODIFICATION
               "FONTCONFIG_FILE=set:${PROJECT_SOURCE_DIR}/tests/fonts.conf")
endfunction()

# kerno_test(NAME ROOMS room... SOURCES file...) makes the GoogleTest program NAME_tests and one CTest entry.
# The program finds its data through KERNO_TEST_DATA.
function(kerno_test name)
  cmake_parse_arguments(TEST "" "" "ROOMS;SOURCES;LIBRARIES" ${ARGN})
  list(TRANSFORM TEST_ROOMS PREPEND kerno_)
  add_executable(${name}_tests ${TEST_SOURCES})
  target_compile_definitions(${name}_tests PRIVATE
    KERNO_TEST_DATA="${KERNO_BUILD_ROOT}${PROJECT_SOURCE_DIR}/tests/data")
  target_link_libraries(${name}_tests PRIVATE ${TEST_ROOMS} kerno_test_support kerno_options
                        GTest::gtest_main GTest::gmock ${TEST_LIBRARIES})
  add_test(NAME ${name} COMMAND ${name}_tests)
  kerno_test_fonts(${name})
  # Away from the settings of whoever runs the tests.
  set_tests_properties(${name} PROPERTIES ENVIRONMENT
    "XDG_CONFIG_HOME=${PROJECT_BINARY_DIR}/home/config;XDG_CACHE_HOME=${PROJECT_BINARY_DIR}/home/cache")
endfunction()
