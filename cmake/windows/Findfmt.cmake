include("${CMAKE_CURRENT_LIST_DIR}/header_library.cmake")
kestrel_header_library(fmt::fmt fmt)
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
set(fmt_FOUND TRUE)
