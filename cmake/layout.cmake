# Where an installed product's parts lie, and how each finds the others wherever the whole has been moved.

# The programs that other programs start; nobody calls them by name. On Windows all lie in one folder.
if(WIN32)
  set(KESTREL_HELPERDIR "${CMAKE_INSTALL_BINDIR}")
else()
  set(KESTREL_HELPERDIR "${CMAKE_INSTALL_LIBEXECDIR}/kestrel-sdk")
endif()

# kestrel_way(VARIABLE FROM TO): the relative path between two folders below the prefix.
function(kestrel_way variable from to)
  foreach(folder from to)
    cmake_path(ABSOLUTE_PATH ${folder} BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
  endforeach()
  file(RELATIVE_PATH way "${from}" "${to}")
  string(REGEX REPLACE "/$" "" way "${way}")
  set(${variable} "${way}" PARENT_SCOPE)
endfunction()

# kestrel_installed_in(FOLDER TARGET...): where each target finds its libraries once it is installed there.
function(kestrel_installed_in folder)
  kestrel_way(way "${folder}" "${CMAKE_INSTALL_LIBDIR}")
  set_target_properties(${ARGN} PROPERTIES INSTALL_RPATH "$ORIGIN/${way}")
endfunction()
