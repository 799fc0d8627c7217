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

#include <iostream>
#include <string>
#include <thread>

namespace {

constexpr size_t kMebibyte = 1 << 20;

// How far down it is looked for what a classifier touched, and how much of that the look itself may use.
constexpr size_t kWatchedStack = 512 * 1024;
constexpr size_t kOwnStack = 128;
constexpr BYTE kUntouched = 0xA5;

struct REQUEST
{
    std::string output;
    ADB_EXIT_CODE (*pfnClassify)(std::string_view) = nullptr;
    ADB_EXIT_CODE nExpected = ADB_PARSE_ERROR;
    int nPieces = 0;
};

struct ANSWER
{
    bool bRight = true;
    double dMilliseconds = 0;
    size_t cbStack = 0;
};

std::string Repeated(std::string_view piece, size_t cb)
{
    std::string text;
    text.reserve(cb + piece.size());
    while (text.size() < cb) {
        text += piece;
    }
    return text;
}

bool Prepare(std::string_view name, size_t cb, REQUEST& request)
{
    if (name == "line") {
        request.output.assign(cb, 'x');
        request.pfnClassify = ClassifyConnectOutput;
    } else if (name == "lines") {
        request.output = Repeated("* daemon started successfully\r\n", cb) + "connected to 192.168.1.100:43210\r\n";
        request.pfnClassify = ClassifyConnectOutput;
        request.nExpected = ADB_SUCCESS;
    } else if (name == "failure") {
        request.output = "adb: failed to install " + Repeated(": Failure [INSTALL_FAILED_ABORTED]", cb);
        request.pfnClassify = ClassifyInstallOutput;
        request.nExpected = INSTALL_FAILED;
    }
    return request.pfnClassify != nullptr;
}

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

void Judge(const REQUEST& request, ANSWER& answer)
{
    const volatile BYTE* const pTop = Paint();
    const CStopWatch watch;
    for (int n = 0; n < request.nPieces; ++n) {
        answer.bRight &= request.pfnClassify(request.output) == request.nExpected;
    }
    answer.dMilliseconds = watch.Milliseconds();
    answer.cbStack = Touched(pTop);
}

} // namespace

int main()
{
    std::string strText;
    size_t nMebibytes = 0;
    for (int nPieces = 0; std::cin >> strText >> nMebibytes >> nPieces;) {
        REQUEST request;
        request.nPieces = nPieces;
        if (!Prepare(strText, nMebibytes * kMebibyte, request)) {
            return 2;
        }
        ANSWER answer;
        // A stack that nothing has touched yet.
        std::thread([&] { Judge(request, answer); }).join();
        if (!answer.bRight) {
            return 1;
        }
        std::cout << answer.dMilliseconds << ' ' << answer.cbStack << '\n' << std::flush;
    }
    return 0;
}
