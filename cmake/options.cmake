# What every target of ours is compiled with, and the one way to declare a room of the house.

add_library(kestrel_options INTERFACE)
target_compile_options(kestrel_options INTERFACE -Wall -Wextra -Wpedantic -Werror)
target_compile_definitions(kestrel_options INTERFACE UNICODE _UNICODE
  KESTREL_PRODUCT="${KESTREL_PRODUCT}")

set(KESTREL_SANITIZE "" CACHE STRING "Sanitizers of the whole build, such as address,undefined")
if(KESTREL_SANITIZE)
  target_compile_options(kestrel_options INTERFACE -fsanitize=${KESTREL_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(kestrel_options INTERFACE -fsanitize=${KESTREL_SANITIZE})
  if(KESTREL_SANITIZE MATCHES "thread")
    # Fences are not followed; those of the handle look-up stand only where the kernel has no barrier to offer.
    target_compile_options(kestrel_options INTERFACE -Wno-tsan)
  endif()
endif()

# kestrel_room(NAME dependency...): a static library of all sources of the calling folder.
# Includes are written from src/, so the folder a header lives in is always visible.
function(kestrel_room name)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  add_library(kestrel_${name} STATIC ${sources})
  target_include_directories(kestrel_${name} PUBLIC "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/include")
  target_link_libraries(kestrel_${name} PUBLIC kestrel_options ${ARGN})
endfunction()
