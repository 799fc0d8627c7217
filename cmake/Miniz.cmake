# The target miniz::miniz: an installed miniz 3, else built from KALVO_MINIZ_FOLDER.
find_package(miniz 3 QUIET)
if(TARGET miniz::miniz)
    return()
endif()
if(NOT EXISTS "${KALVO_MINIZ_FOLDER}/miniz.c")
    message(FATAL_ERROR "No miniz 3 is installed. Name the folder of miniz.c and miniz.h with -DKALVO_MINIZ_FOLDER=…")
endif()

# A release of miniz in two files expects this header of its build system.
file(WRITE ${CMAKE_BINARY_DIR}/miniz/miniz_export.h "#define MINIZ_EXPORT\n")
add_library(miniz STATIC EXCLUDE_FROM_ALL ${KALVO_MINIZ_FOLDER}/miniz.c)
target_include_directories(miniz SYSTEM PUBLIC ${KALVO_MINIZ_FOLDER} ${CMAKE_BINARY_DIR}/miniz)
target_compile_definitions(miniz PUBLIC MINIZ_NO_ZLIB_COMPATIBLE_NAMES)
if(WIN32)
    # The program only reads, and GNU ld cannot drop what it does not use: every function's
    # unwind record holds on to its function.
    target_compile_definitions(miniz PUBLIC MINIZ_NO_DEFLATE_APIS)
endif()
add_library(miniz::miniz ALIAS miniz)
