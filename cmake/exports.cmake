# kestrel_export_only(TARGET LIST_FILE): the shared library exports the names of the list and nothing else.
#
# The list has one name a line; lines that begin with "#" are comments. The linker's input is made from it: a
# version script, or on Windows a module definition. A name that nothing defines fails the link on both.
function(kestrel_export_only target list_file)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list_file}")
  file(STRINGS "${list_file}" names REGEX "^[A-Za-z]")
  set(unique ${names})
  list(REMOVE_DUPLICATES unique)
  if(NOT names STREQUAL unique)
    message(FATAL_ERROR "${list_file}: a name stands in the list more than once")
  endif()

  if(WIN32)
    list(JOIN names "\n  " lines)
    set(definition "${CMAKE_CURRENT_BINARY_DIR}/${target}.def")
    file(CONFIGURE OUTPUT "${definition}" CONTENT "EXPORTS\n  ${lines}\n" @ONLY)
    target_sources(${target} PRIVATE "${definition}")
  else()
    list(JOIN names ";\n    " lines)
    set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.version")
    file(CONFIGURE OUTPUT "${script}" CONTENT "{\n  global:\n    ${lines};\n  local:\n    *;\n};\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" LINKER:--no-undefined-version
      LINKER:--no-undefined)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
  endif()
endfunction()
