// What GCC's runtime calls for an exception that nobody catches, such as memory running out in a
// string. Its own handler writes the exception's name to a console, which this program has not, and
// would make the program larger by half for it.

#include <cstdlib>

#ifdef __GNUC__

namespace __gnu_cxx { // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

void __verbose_terminate_handler(); // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

void __verbose_terminate_handler() // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
{
    std::abort();
}

} // namespace __gnu_cxx

#endif
