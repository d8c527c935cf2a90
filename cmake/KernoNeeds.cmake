# What is looked for on the building machine. What is missing is noted, and told of in one message with all
# that is missing, each with what it is for and the Debian package that has it.

set(KERNO_MISSING "")
set(KERNO_MISSING_PACKAGES "")

# kerno_missing(NAME PURPOSE [PACKAGE]) notes that NAME is not here.
macro(kerno_missing name purpose)
  if(${ARGC} GREATER 2)
    list(APPEND KERNO_MISSING "  ${name}: ${purpose} (Debian: ${ARGV2})")
    list(APPEND KERNO_MISSING_PACKAGES "${ARGV2}")
  else()
    list(APPEND KERNO_MISSING "  ${name}: ${purpose}")
  endif()
endmacro()

# kerno_need_module(NAME MODULE PURPOSE PACKAGE) makes the target PkgConfig::NAME. MODULE is pkg-config's name, with
# the least version that will do: "harfbuzz>=4.0".
macro(kerno_need_module name module purpose package)
  if(PKG_CONFIG_FOUND)
    pkg_check_modules(${name} QUIET IMPORTED_TARGET GLOBAL ${module})
  endif()
  if(NOT ${name}_FOUND)
    kerno_missing("${module}" "${purpose}" ${package})
  endif()
endmacro()

# kerno_end_if_missing() ends the configuration when anything is missing.
function(kerno_end_if_missing)
  if(NOT KERNO_MISSING)
    return()
  endif()
  list(REMOVE_DUPLICATES KERNO_MISSING_PACKAGES)
  list(JOIN KERNO_MISSING "\n" lines)
  list(JOIN KERNO_MISSING_PACKAGES " " packages)
  if(packages)
    string(APPEND lines "\nOn Debian and Ubuntu:\n  apt-get install ${packages}")
  endif()
  message(FATAL_ERROR "Kerno cannot be built, something is missing or too old:\n${lines}")
endfunction()

# kerno_choice(CHOICE) makes ON, OFF or AUTO of what was given in any case, or as another boolean of CMake's.
function(kerno_choice choice)
  string(TOUPPER "${${choice}}" value)
  if(value MATCHES "^(1|ON|YES|TRUE|Y)$")
    set(${choice} ON PARENT_SCOPE)
  elseif(value MATCHES "^(0|OFF|NO|FALSE|N|)$")
    set(${choice} OFF PARENT_SCOPE)
  elseif(value STREQUAL "AUTO")
    set(${choice} AUTO PARENT_SCOPE)
  else()
    message(FATAL_ERROR "${choice} is \"${${choice}}\", and may be ON, OFF or AUTO")
  endif()
endfunction()

# kerno_lacks(CHOICE NAME PURPOSE PACKAGE) notes that CHOICE, an option that is ON, OFF or AUTO, needs NAME, which is
# not here: left to itself it goes without, asked for it is an error.
macro(kerno_lacks choice name purpose package)
  if("${${choice}}" STREQUAL "AUTO")
    list(APPEND ${choice}_LACKS "${name} (Debian: ${package})")
  else()
    kerno_missing("${name}" "${purpose}" "${package}")
  endif()
endmacro()

# kerno_settle(CHOICE WHAT) makes AUTO ON, or OFF where something lacks, and says so.
macro(kerno_settle choice what)
  if(${choice}_LACKS)
    list(JOIN ${choice}_LACKS ", " lacking)
    message(STATUS "Without ${what}, not found: ${lacking}. ${choice}=ON makes that an error")
    set(${choice} OFF)
  elseif(${choice})
    set(${choice} ON)
  endif()
endmacro()
