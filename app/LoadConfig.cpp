// The loader's instructions for this program: take the libraries that it links from the system's
// own folder alone. People start the program from their download folder, and without this a
// library of the right name that somebody placed beside it would be loaded into it.
//
// Microsoft's linker writes these instructions by itself, see the lists file. GCC's does not: the
// build enters this section's address into the finished program.

#include <windows.h>

#ifdef __MINGW32__

namespace {

consteval IMAGE_LOAD_CONFIG_DIRECTORY64 MakeLoadConfig() noexcept
{
    IMAGE_LOAD_CONFIG_DIRECTORY64 config = {};
    config.Size = sizeof(config);
    // The field that newer SDKs call DependentLoadFlags.
    config.Reserved1 = LOAD_LIBRARY_SEARCH_SYSTEM32;
    return config;
}

} // namespace

extern "C" const IMAGE_LOAD_CONFIG_DIRECTORY64 g_loadConfig;

__attribute__((section(".ldcfg"), used)) const IMAGE_LOAD_CONFIG_DIRECTORY64 g_loadConfig = MakeLoadConfig();

#endif
