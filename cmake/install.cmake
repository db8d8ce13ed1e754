# What a user gets: cmake --install, or a zip of the same by cpack. Wherever the whole is moved, its parts find one
# another by relative paths.
include(CMakePackageConfigHelpers)

kestrel_installed_in("${CMAKE_INSTALL_BINDIR}" kestrel kestrel-vprinter)
install(TARGETS kestrel kestrel-vprinter RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
kestrel_installed_in("${KESTREL_HELPERDIR}" kestrel_statusmon)
# A copy of it lies beside the product configuration, with a link to its library.
set_property(TARGET kestrel_statusmon APPEND PROPERTY INSTALL_RPATH "$ORIGIN")
install(TARGETS kestrel_statusmon RUNTIME DESTINATION "${KESTREL_HELPERDIR}")
foreach(module exporter top)
  if(TARGET kestrel-${module})
    kestrel_installed_in("${KESTREL_HELPERDIR}" kestrel-${module})
    install(TARGETS kestrel-${module} LIBRARY DESTINATION "${KESTREL_HELPERDIR}")
  endif()
endforeach()
kestrel_installed_in("${CMAKE_INSTALL_LIBDIR}" kestrel_sdk)
install(TARGETS kestrel_sdk EXPORT KestrelSDK
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY include/kestrel DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")

if(WIN32)
  install(FILES README.md DESTINATION .)
  install(DIRECTORY docs DESTINATION . FILES_MATCHING PATTERN "*.md" PATTERN "*.svg"
    PATTERN manual EXCLUDE PATTERN reference EXCLUDE)
  install(FILES $<TARGET_FILE:kestrel_sdk>.debug DESTINATION "${CMAKE_INSTALL_BINDIR}")
  # Other linkers make an import library of their own from it.
  install(FILES "${PROJECT_BINARY_DIR}/src/entry/kestrel_sdk.def" DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    RENAME "${KESTREL_PRODUCT}SDK.def")
else()
  kestrel_installed_in("${KESTREL_HELPERDIR}" rundll32)
  install(TARGETS rundll32 RUNTIME DESTINATION "${KESTREL_HELPERDIR}")
  kestrel_installed_in("${CMAKE_INSTALL_LIBDIR}" winport)
  install(TARGETS winport EXPORT KestrelSDK LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")

  install(FILES README.md CHANGELOG.md SECURITY.md LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}")
  install(DIRECTORY docs/ DESTINATION "${CMAKE_INSTALL_DOCDIR}" FILES_MATCHING PATTERN "*.md" PATTERN "*.svg"
    PATTERN manual EXCLUDE PATTERN reference EXCLUDE)
  install(DIRECTORY examples fleet DESTINATION "${CMAKE_INSTALL_DOCDIR}")

  string(TOLOWER "${KESTREL_PRODUCT}sdk.pc" pc)
  # The system's own folders are not moved; their plain names are left out of the compiler's options.
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(prefix /usr)
  else()
    kestrel_way(way "${CMAKE_INSTALL_LIBDIR}/pkgconfig" .)
    set(prefix "\${pcfiledir}/${way}")
  endif()
  configure_file(cmake/sdk.pc.in "${pc}" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${pc}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

  set(config "${CMAKE_INSTALL_LIBDIR}/cmake/KestrelSDK")
  install(EXPORT KestrelSDK NAMESPACE kestrel:: FILE KestrelSDKConfig.cmake DESTINATION "${config}")
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/KestrelSDKConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
  install(FILES "${PROJECT_BINARY_DIR}/KestrelSDKConfigVersion.cmake" DESTINATION "${config}")
endif()

set(CPACK_GENERATOR ZIP)
string(TOLOWER "kestrel-sdk-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}" CPACK_PACKAGE_FILE_NAME)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/package")
include(CPack)
