# kerno_windows_resources(TARGET FILE.rc): version information out of the project's version, the icon
# out of its drawings, and the resource compiler's settings. The file is one of the target's sources.
set(KERNO_RESOURCES ${CMAKE_BINARY_DIR}/resources)
configure_file(${PROJECT_SOURCE_DIR}/src/platform/win32/version.h.in
               ${KERNO_RESOURCES}/kerno_version.h @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/src/platform/win32/kerno.manifest.in
               ${KERNO_RESOURCES}/kerno.manifest @ONLY)
set(drawings "")
foreach(size IN ITEMS 16x16 24x24 32x32 48x48 64x64 256x256)
  list(APPEND drawings ${PROJECT_SOURCE_DIR}/packaging/icons/${size}/kerno.png)
endforeach()
add_custom_command(
  OUTPUT ${KERNO_RESOURCES}/kerno.ico
  COMMAND ${KERNO_MAGICK} ${drawings} -define png:exclude-chunks=date,time
          ${KERNO_RESOURCES}/kerno.ico
  DEPENDS ${drawings})
add_custom_target(kerno_icon DEPENDS ${KERNO_RESOURCES}/kerno.ico)

function(kerno_windows_resources target file)
  add_dependencies(${target} kerno_icon)
  target_include_directories(${target} PRIVATE ${KERNO_RESOURCES})
  set_source_files_properties(
    ${file} PROPERTIES COMPILE_OPTIONS "-c;65001"
    OBJECT_DEPENDS "${KERNO_RESOURCES}/kerno.ico;${PROJECT_SOURCE_DIR}/src/platform/win32/version.rc;${KERNO_RESOURCES}/kerno.manifest")
endfunction()
