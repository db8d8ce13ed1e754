# kestrel_header_library(TARGET FOLDER): a library of headers that this system's package put in /usr/include, for
# a cross build, which must see nothing else of that folder.
function(kestrel_header_library target folder)
  if(TARGET ${target})
    return()
  endif()
  set(view "${PROJECT_BINARY_DIR}/host-headers")
  file(MAKE_DIRECTORY "${view}")
  file(CREATE_LINK "/usr/include/${folder}" "${view}/${folder}" SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE "${view}")
endfunction()
