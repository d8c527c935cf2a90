# Kerno::kerno is the shared library. Kerno::kerno_static is there where the libraries are that it
# consists of, for projects that have CXX among their languages by then.
include(${CMAKE_CURRENT_LIST_DIR}/KernoTargets.cmake)

find_package(PkgConfig QUIET)
find_package(Threads QUIET)
if(CMAKE_CXX_COMPILER AND PkgConfig_FOUND AND Threads_FOUND AND EXISTS ${CMAKE_CURRENT_LIST_DIR}/KernoStaticTargets.cmake)
  set(kerno_static_is_usable TRUE)
  foreach(module agg:libagg freetype:freetype2 fontconfig:fontconfig harfbuzz:harfbuzz
                 fribidi:fribidi polyclipping:polyclipping)
    string(REPLACE ":" ";" module ${module})
    list(GET module 0 name)
    list(GET module 1 package)
    pkg_check_modules(${name} QUIET IMPORTED_TARGET ${package})
    if(NOT TARGET PkgConfig::${name})
      set(kerno_static_is_usable FALSE)
    endif()
  endforeach()
  if(kerno_static_is_usable)
    include(${CMAKE_CURRENT_LIST_DIR}/KernoStaticTargets.cmake)
  endif()
endif()
