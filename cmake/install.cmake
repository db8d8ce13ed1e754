# What a user gets: cmake --install, or a zip of the same by cpack.

install(TARGETS kestrel_sdk kestrel kestrel-vprinter kestrel_statusmon
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/kestrel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES README.md DESTINATION .)
install(DIRECTORY docs DESTINATION . FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN manual EXCLUDE PATTERN reference EXCLUDE)
if(WIN32)
  install(FILES $<TARGET_FILE:kestrel_sdk>.debug DESTINATION ${CMAKE_INSTALL_BINDIR})
  # Other linkers make an import library of their own from it.
  install(FILES "${PROJECT_BINARY_DIR}/src/entry/kestrel_sdk.def" DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RENAME "${KESTREL_PRODUCT}SDK.def")
else()
  install(TARGETS winport rundll32
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

set(CPACK_GENERATOR ZIP)
string(TOLOWER "kestrel-sdk-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}" CPACK_PACKAGE_FILE_NAME)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/package")
include(CPack)
