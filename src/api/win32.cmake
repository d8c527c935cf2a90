# kerno.dll, with what programs link to it by. It shows the functions of kerno.map, as libkerno.so does.
file(STRINGS kerno.map functions REGEX "^ +kerno_[a-z_]+;$")
list(TRANSFORM functions REPLACE "[ ;]" "")
list(JOIN functions "\n  " functions)
set(definition ${CMAKE_CURRENT_BINARY_DIR}/kerno.def)
file(CONFIGURE OUTPUT ${definition} CONTENT "LIBRARY kerno.dll\nEXPORTS\n  ${functions}\n")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/kerno.map)

add_library(kerno_shared SHARED
  $<TARGET_OBJECTS:kerno_api> ../platform/win32/library_entry.cpp kerno.rc ${definition})
set_target_properties(kerno_shared PROPERTIES OUTPUT_NAME kerno PREFIX "" LINKER_LANGUAGE CXX)
target_link_libraries(kerno_shared PRIVATE kerno_app kerno_options)
target_include_directories(kerno_shared PRIVATE ${PROJECT_SOURCE_DIR}/src INTERFACE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_options(kerno_shared PRIVATE LINKER:-e,KernoEntry)
kerno_windows_resources(kerno_shared kerno.rc)
