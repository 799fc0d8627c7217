// Installs the platform tools as the program does at its start, in the very objects that ship.
//
//     bench-install FOLDER
//
// Each line on standard input has them installed into the folder once; the answer is a line on standard output: the
// milliseconds that CPlatformTools::Install took. The end of the input ends it.
#include "tests/bench/StopWatch.h"
#include "tools/PlatformTools.h"

#include <cstdio>
#include <iostream>
#include <string>

int wmain(int argc, wchar_t** argv)
{
    CPlatformTools& tools = CPlatformTools::GetInstance();
    if (argc != 2 || !tools.Initialize(argv[1])) {
        std::fputs("usage: bench-install FOLDER\n", stderr);
        return 2;
    }
    for (std::string strLine; std::getline(std::cin, strLine);) {
        const CStopWatch watch;
        if (!tools.Install()) {
            return 1;
        }
        const double dTaken = watch.Milliseconds();
        std::cout << dTaken << '\n' << std::flush;
    }
    return 0;
}
