# Builds for 64-bit Windows with mingw-w64: the variant whose threads are the standard library's, and
# a static runtime, so that no library beside the system's is needed.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KERNO_MINGW x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KERNO_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KERNO_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${KERNO_MINGW}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KERNO_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Wide-character calls only, the interfaces of Windows 10, and as little of the system's headers as
# will do.
add_compile_definitions(UNICODE _UNICODE WINVER=0x0A00 _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000000
                        WIN32_LEAN_AND_MEAN NOMINMAX STRICT __USE_MINGW_ANSI_STDIO=1)
# No time of the build in the programs: the same source gives the same bytes.
add_link_options(-static -Wl,--no-insert-timestamp)

# Programs of the build run under Wine, in a prefix of the build's own.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/run_windows.sh)
# Where those programs find the building machine's files.
set(KERNO_BUILD_ROOT Z:)
