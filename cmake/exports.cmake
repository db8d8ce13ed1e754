# What a shared library exports: named functions and nothing else. The linker's input is made from the names: a
# version script, or on Windows a module definition. A name that nothing defines fails the link on both.

# kestrel_names_in_list(VARIABLE FILE): one name a line; lines that begin with "#" are comments.
function(kestrel_names_in_list variable list_file)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list_file}")
  file(STRINGS "${list_file}" names REGEX "^[A-Za-z]")
  set(${variable} ${names} PARENT_SCOPE)
endfunction()

# kestrel_names_in_headers(VARIABLE HEADER...): functions whose declarations begin with a macro that ends in _API.
function(kestrel_names_in_headers variable)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ARGN})
  foreach(header ${ARGN})
    file(STRINGS "${header}" lines REGEX "^[A-Z_]+_API [^(]*[(]")
    list(TRANSFORM lines REPLACE "^[^(]*[ *]([A-Za-z0-9_]+)[(].*$" "\\1")
    list(APPEND names ${lines})
  endforeach()
  set(${variable} ${names} PARENT_SCOPE)
endfunction()

# kestrel_export_only(TARGET NODE NAME...): on Linux the names belong to the symbol version NODE.
function(kestrel_export_only target node)
  set(names ${ARGN})
  set(unique ${names})
  list(REMOVE_DUPLICATES unique)
  if(NOT names STREQUAL unique)
    message(FATAL_ERROR "${target}: a name is exported more than once")
  endif()

  if(WIN32)
    list(JOIN names "\n  " lines)
    set(definition "${CMAKE_CURRENT_BINARY_DIR}/${target}.def")
    file(CONFIGURE OUTPUT "${definition}" CONTENT "EXPORTS\n  ${lines}\n" @ONLY)
    target_sources(${target} PRIVATE "${definition}")
  else()
    list(JOIN names ";\n    " lines)
    set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.version")
    file(CONFIGURE OUTPUT "${script}" CONTENT "${node} {\n  global:\n    ${lines};\n  local:\n    *;\n};\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" LINKER:--no-undefined-version)
    if(NOT (KESTREL_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang"))  # whose sanitizers lie in the program
      target_link_options(${target} PRIVATE LINKER:--no-undefined)
    endif()
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
  endif()
endfunction()
