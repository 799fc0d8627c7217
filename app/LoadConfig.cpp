// The loader's instructions for this program: take the libraries that it links from the system's
// own folder alone. People start the program from their download folder, and without this a
// library of the right name that somebody placed beside it would be loaded into it.
//
// Microsoft's linker writes these instructions by itself, see the lists file. The others enter the
// configuration of this name into the program, if there is one.

#include <windows.h>

#ifdef __MINGW32__

namespace {

template<typename Config>
consteval Config MakeLoadConfig() noexcept
{
    Config config = {};
    config.Size = sizeof(config);
    // One field under two names: mingw-w64 has called it DependentLoadFlags since version 14.
    if constexpr (requires { config.DependentLoadFlags; }) {
        config.DependentLoadFlags = LOAD_LIBRARY_SEARCH_SYSTEM32;
    } else {
        config.Reserved1 = LOAD_LIBRARY_SEARCH_SYSTEM32;
    }
    return config;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linkers' name
extern "C" const IMAGE_LOAD_CONFIG_DIRECTORY64 _load_config_used;

const IMAGE_LOAD_CONFIG_DIRECTORY64 _load_config_used = MakeLoadConfig<IMAGE_LOAD_CONFIG_DIRECTORY64>();
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

#endif
