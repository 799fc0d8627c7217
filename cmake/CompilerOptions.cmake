# What every target of ours is compiled with. Linked privately: kalvo_warnings by all of our code,
# kalvo_windows by what runs on Windows.
add_library(kalvo_warnings INTERFACE)
if(MSVC)
    target_compile_options(kalvo_warnings INTERFACE /W4 /WX /permissive- /utf-8)
else()
    target_compile_options(kalvo_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
endif()

# -O3 makes the program larger and nothing in it noticeably faster.
if(NOT MSVC)
    set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")
    set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
endif()

# The same bytes from every folder and at every hour.
if(NOT MSVC)
    add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
endif()

if(WIN32)
    add_library(kalvo_windows INTERFACE)
    # Windows 10 version 2004 is the oldest that is supported: what came later is not declared.
    target_compile_definitions(kalvo_windows INTERFACE
        UNICODE _UNICODE STRICT WIN32_LEAN_AND_MEAN NOMINMAX WINVER=0x0A00 _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000008)
    if(MINGW)
        # The platform's own printf family: in it %s takes wide text in a wide format.
        target_compile_definitions(kalvo_windows INTERFACE __USE_MINGW_ANSI_STDIO=0)
        add_compile_options(-ffunction-sections -fdata-sections)
        # The stack of GNU ld's programs, where lld's have half of it.
        add_link_options(-static -Wl,--gc-sections -Wl,--no-insert-timestamp -Wl,--stack,0x200000)
        # GNU ld enters a load configuration into a program since 2.47; an older one gives way to lld. With -fuse-ld=lld
        # GCC looks for that beside its own linker alone, under that one's name, and where there is none it takes its own
        # without a word. Named so, it is taken or the link fails.
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -Wl,--version OUTPUT_VARIABLE linker ERROR_QUIET)
        if(linker MATCHES "^GNU ld[^\n]* ([0-9]+\\.[0-9]+)" AND CMAKE_MATCH_1 VERSION_LESS 2.47)
            find_program(KALVO_LLD ld.lld REQUIRED)
            file(WRITE ${CMAKE_BINARY_DIR}/lld.specs "*linker:\n${KALVO_LLD}\n\n")
            # It leaves the header's checksum at zero, and who takes a signature off again does not: told to, it sets it.
            add_link_options(-specs=${CMAKE_BINARY_DIR}/lld.specs -Wl,--Xlink=-release)
        endif()
    else()
        set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
    endif()
endif()

if(KALVO_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()
