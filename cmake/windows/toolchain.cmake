# Cross build for Windows with mingw-w64, tested under Wine. Each of the two files beside this one names its
# processor and includes it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${KESTREL_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KESTREL_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${KESTREL_TRIPLET}-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../../scripts/wine.sh")

# No library of the compiler may be needed beside a program or the product.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -Wl,--dynamicbase,--nxcompat")

# Nothing of this system's own libraries may be found; the header libraries are said in the Find files here.
set(CMAKE_FIND_ROOT_PATH /usr/${KESTREL_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
list(APPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}")

# The tests of a suite are asked for when they run: a build needs no Wine.
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)
