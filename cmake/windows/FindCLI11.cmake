include("${CMAKE_CURRENT_LIST_DIR}/header_library.cmake")
kestrel_header_library(CLI11::CLI11 CLI)
set(CLI11_FOUND TRUE)
