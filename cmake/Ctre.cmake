# The target kalvo_ctre: compile-time regular expressions, headers only. A cross compiler must not
# see the other headers that lie beside them, so it gets copies in a folder of their own.
add_library(kalvo_ctre INTERFACE)
find_path(KALVO_CTRE_FOLDER ctre.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
if(CMAKE_CROSSCOMPILING)
    file(GLOB headers ${KALVO_CTRE_FOLDER}/ctre* ${KALVO_CTRE_FOLDER}/ctll* ${KALVO_CTRE_FOLDER}/unicode-db*)
    file(COPY ${headers} DESTINATION ${CMAKE_BINARY_DIR}/ctre)
    target_include_directories(kalvo_ctre SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/ctre)
else()
    target_include_directories(kalvo_ctre SYSTEM INTERFACE ${KALVO_CTRE_FOLDER})
endif()
