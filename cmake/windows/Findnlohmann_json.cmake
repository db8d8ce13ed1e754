include("${CMAKE_CURRENT_LIST_DIR}/header_library.cmake")
kestrel_header_library(nlohmann_json::nlohmann_json nlohmann)
set(nlohmann_json_FOUND TRUE)
