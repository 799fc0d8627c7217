# GoogleTest, built with the compiler at hand from the sources that distributions install.
set(KALVO_GOOGLETEST_FOLDER /usr/src/googletest CACHE PATH "Sources of GoogleTest, where none is installed")
find_package(GTest QUIET)
if(NOT TARGET GTest::gtest)
    set(INSTALL_GTEST OFF)
    set(gtest_force_shared_crt OFF)
    add_subdirectory(${KALVO_GOOGLETEST_FOLDER} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endif()
