// Judges adb's output as the program does, in the very objects that ship.
//
//     bench-classify
//
// A request is a line on standard input: TEXT PIECE PIECES
//   TEXT     line      one line that nobody knows
//            lines     lines about adb's server, of which the last one decides
//            failure   one line of a failed install that almost holds the failure's name, again and again
//   PIECE    the size of the output, in MiB
//   PIECES   how many such outputs are judged, one after the other
// The answer is a line on standard output: the milliseconds that took, and the most bytes of stack at any time.
// The end of the input ends it.
#include "adb/AdbOutput.h"
#include "tests/bench/StopWatch.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <string>
#include <thread>

namespace {

// How far down it is looked for what a classifier touched, and how much of that the look itself may use.
constexpr size_t kWatchedStack = 512 * 1024;
constexpr size_t kOwnStack = 128;
constexpr BYTE kUntouched = 0xA5;

struct TEXT_KIND
{
    std::string_view name;
    std::string_view begin;
    std::string_view piece; // again and again
    std::string_view end;
    ADB_EXIT_CODE (*pfnClassify)(std::string_view);
    ADB_EXIT_CODE nExpected;
};
constexpr TEXT_KIND kTexts[] = {
    {"line", "", "x", "", ClassifyConnectOutput, ADB_PARSE_ERROR},
    {"lines", "", "* daemon started successfully\r\n", "connected to x\r\n", ClassifyConnectOutput, ADB_SUCCESS},
    {"failure", "adb: failed to install ", ": Failure [INSTALL_FAILED_ABORTED]", "", ClassifyInstallOutput,
     INSTALL_FAILED},
};

// Below the caller's frame, from the top down, as a stack grows.
__attribute__((noinline)) volatile BYTE* Paint()
{
    volatile BYTE* const pTop = static_cast<BYTE*>(__builtin_frame_address(0)) - kOwnStack;
    for (size_t n = 0; n < kWatchedStack; ++n) {
        *(pTop - n) = kUntouched;
    }
    return pTop;
}

__attribute__((noinline)) size_t Touched(const volatile BYTE* pTop)
{
    size_t cb = kWatchedStack;
    while (cb > 0 && *(pTop - cb + 1) == kUntouched) {
        --cb;
    }
    return cb;
}

// Prints the answer, or returns false when the text is judged wrong.
bool Judge(const TEXT_KIND& kind, size_t cb, int nPieces)
{
    std::string output(kind.begin);
    while (output.size() < cb) {
        output += kind.piece;
    }
    output += kind.end;
    const volatile BYTE* const pTop = Paint();
    const CStopWatch watch;
    bool bRight = true;
    for (int n = 0; n < nPieces; ++n) {
        bRight &= kind.pfnClassify(output) == kind.nExpected;
    }
    const double dTaken = watch.Milliseconds();
    const size_t cbTouched = Touched(pTop);
    if (bRight) {
        std::cout << dTaken << ' ' << cbTouched << '\n' << std::flush;
    }
    return bRight;
}

} // namespace

int wmain(int /*argc*/, wchar_t** /*argv*/)
{
    std::string strText;
    size_t nMebibytes = 0;
    for (int nPieces = 0; std::cin >> strText >> nMebibytes >> nPieces;) {
        const TEXT_KIND* const pKind = std::ranges::find(kTexts, strText, &TEXT_KIND::name);
        if (pKind == std::end(kTexts)) {
            return 2;
        }
        bool bRight = false;
        // A stack that nothing has touched yet.
        std::thread([&] { bRight = Judge(*pKind, nMebibytes << 20, nPieces); }).join();
        if (!bRight) {
            return 1;
        }
    }
    return 0;
}
