// What GCC's runtime calls for an exception that nobody catches, until the program has named its own
// handler. The runtime's would make the program larger by half, for writing the exception's name to a
// console that is not there.

#include <cstdlib>
#include <exception>

#ifdef __GNUC__

namespace __gnu_cxx { // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

void __verbose_terminate_handler() // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
{
    std::abort();
}

} // namespace __gnu_cxx

#endif
