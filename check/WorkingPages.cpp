// The pages that do something: the address, the pairing, the package. Nobody but this program's own listeners is asked.
#include "check/Busy.h"
#include "check/Fields.h"
#include "check/Listener.h"
#include "check/Machine.h"
#include "check/Stopping.h"

#include <commctrl.h>

#include <format>
#include <memory>

namespace {

std::wstring Boxes(const WORK& work)
{
    std::wstring szBoxes;
    for (const std::wstring& szBox : work.boxes) {
        szBoxes += (szBoxes.empty() ? L"" : L" | ") + szBox;
    }
    return szBoxes.empty() ? L"no box" : szBoxes;
}

// Just these boxes, each of which begins so.
void ExpectBoxes(CHECK& check, PCWSTR pszClaim, const WORK& work, const std::vector<std::wstring>& expected)
{
    bool bSame = work.boxes.size() == expected.size();
    std::wstring szExpected;
    for (size_t n = 0; n < expected.size(); ++n) {
        szExpected += (n == 0 ? L"" : L" | ") + expected[n];
        bSame = bSame && work.boxes[n].starts_with(expected[n]);
    }
    check.answers.Tell(pszClaim, bSame, szExpected, Boxes(work));
}

constexpr PCWSTR kInvalidPort = L"Invalid Port Value: Please enter a port value in the range of 1024 through 65535.";

void ExpectPortRefused(const CWalk& walk, PCWSTR pszClaim, PCWSTR pszPort)
{
    walk.Enter(IDC_WATCH_PORT, pszPort);
    walk.ClickControl(kNextId);
    const TREE box = walk.WaitForBox(5000);
    walk.Check().answers.Expect(pszClaim, kInvalidPort, box.window.szText + L": " + MessageOf(box), box.window.hwnd);
    walk.Dismiss(box);
}

// The time of a single one is as exact as the looks at the screen are frequent; that of all is exact enough.
void LookAtPace(CAnswers& answers, const WORK& work)
{
    constexpr ULONGLONG kPause = 200;
    constexpr ULONGLONG kInexact = 100;
    std::wstring szTimes;
    ULONGLONG nFirst = 0;
    ULONGLONG nLast = 0;
    ULONGLONG nPauses = 0;
    for (const STATUS_LINE& line : work.lines) {
        if (line.szText.starts_with(L"Connecting to ")) {
            nPauses += nFirst != 0 ? 1 : 0;
            nFirst = nFirst != 0 ? nFirst : line.nMilliseconds;
            nLast = line.nMilliseconds;
            szTimes += std::format(L"{} ms, ", nLast);
        }
    }
    answers.Tell(L"connect.pace", nPauses > 0 && nLast - nFirst + kInexact >= nPauses * kPause,
                 L"200 ms or more from one attempt to the next", szTimes);
}

void ConnectRefused(const CWalk& walk)
{
    CHECK& check = walk.Check();
    const CListener nobody(CListener::kRefuses);
    walk.Enter(IDC_WATCH_PORT, nobody.Port());
    check.answers.AddPicture(L"page 5", walk.Look().frame.window.hwnd);
    const WORK work = PressNextAndWatch(walk);
    ExpectBoxes(
        check, L"connect.refused", work,
        {L"Wireless Debugging Connection: Could not connect to a watch at the IP address and port you entered."});
    check.answers.Tell(L"connect.attempts",
                       work.Counts().ends_with(L"1 of 7, 2 of 7, 3 of 7, 4 of 7, 5 of 7, 6 of 7, 7 of 7"),
                       L"seven attempts, counted on the status line", work.Texts());
    LookAtPace(check.answers, work);
    check.answers.Expect(L"connect.status", L"Could not connect to " + nobody.Address(), walk.Look().Status());
    check.answers.Tell(L"connect.echo",
                       work.SaysSomewhere(L"Connecting to " + nobody.Address() + L" (1 of 7)") &&
                           !work.SaysSomewhere(L"Pinging 127.0.0.1 (2 of 6)"),
                       L"127.0.0.1 answers the first echo", work.Texts());
    check.answers.Tell(L"connect.stays", work.nPage == 5, L"page 5", std::format(L"page {}", work.nPage));
    check.answers.Tell(L"connect.painted", work.WerePainted(), L"each status line on the screen while it works",
                       work.Texts());
    check.answers.Tell(L"connect.ghost", !work.bGhost, L"the wizard's own window",
                       work.bGhost ? L"one of the system's" : L"the wizard's own window");
}

void ConnectTaken(const CWalk& walk, PCWSTR pszClaim, const CListener& listener)
{
    walk.Enter(IDC_WATCH_PORT, listener.Port());
    const WORK work = PressNextAndWatch(walk);
    walk.Check().answers.Tell(
        pszClaim, work.nPage == 6 && work.boxes.empty() && listener.Accepted() > 0, L"page 6 without a box",
        std::format(L"page {}, {}, {} connections", work.nPage, Boxes(work), listener.Accepted()));
    if (work.nPage != 6) {
        throw CLost{L"page 6 cannot be reached"};
    }
}

void BackToAddress(const CWalk& walk)
{
    walk.PressButton(PSBTN_BACK);
    walk.WaitForPage(5);
}

// Page 6, once its fields are filled.
WORK Pair(const CWalk& walk, const CListener& listener)
{
    walk.Enter(IDC_PAIRING_PORT, listener.Port());
    walk.Enter(IDC_PAIRING_CODE, L"123456");
    return PressNextAndWatch(walk);
}

void LookAtPairing(const CWalk& walk)
{
    CHECK& check = walk.Check();
    const SIGHT sight = walk.Rest();
    const PART* const pAddress = sight.Control(IDC_PAIRING_ADDRESS);
    check.answers.Tell(
        L"pair.address", pAddress != nullptr && !pAddress->bEnabled && HoldsText(*pAddress) == L"127.0.0.1",
        L"127.0.0.1, not to be changed",
        pAddress == nullptr ? L"no address" : HoldsText(*pAddress) + (pAddress->bEnabled ? L", enabled" : L""));
    walk.Enter(IDC_PAIRING_CODE, L"12345");
    walk.Enter(IDC_PAIRING_PORT, L"123");
    const bool bNot = walk.HasButtons(kWaiting);
    walk.Type(L"4");
    const bool bNotYet = walk.HasButtons(kWaiting);
    walk.Enter(IDC_PAIRING_CODE, L"123456");
    const bool bNow = walk.HasButtons(kReady);
    check.answers.Tell(L"pair.next", bNot && bNotYet && bNow, L"Next with six and four digits, not before",
                       std::format(L"{} {} {}", bNot, bNotYet, bNow));
    walk.ClickControl(IDC_SKIP_PAIRING);
    const bool bEmptied = walk.Holds(IDC_PAIRING_CODE, L"") && walk.Holds(IDC_PAIRING_PORT, L"") &&
                          !walk.Look().Control(IDC_PAIRING_CODE)->bEnabled && walk.HasButtons(kReady);
    walk.ClickControl(IDC_SKIP_PAIRING);
    const bool bAgain = walk.HasButtons(kWaiting) && walk.Look().Control(IDC_PAIRING_CODE)->bEnabled;
    check.answers.Tell(L"pair.skip", bEmptied && bAgain, L"empties and disables both fields and offers Next, and back",
                       std::format(L"{} {}", bEmptied, bAgain));
}

void PairWithListeners(const CWalk& walk)
{
    CHECK& check = walk.Check();
    const CListener nobody(CListener::kRefuses);
    WORK work = Pair(walk, nobody);
    check.answers.AddPicture(L"page 6", walk.Look().frame.window.hwnd);
    ExpectBoxes(check, L"pair.refused", work,
                {L"Pair Connection: Could not connect to a watch at the IP address and port you entered."});
    check.answers.Tell(L"pair.attempts", work.Counts().ends_with(L"1 of 3, 2 of 3, 3 of 3"),
                       L"three attempts, counted on the status line", work.Texts());
    check.answers.Tell(L"pair.first-words", work.SaysSomewhere(L"Stopping ADB server"), L"Stopping ADB server",
                       work.Texts());
    check.answers.Tell(L"pair.painted", work.WerePainted(), L"each status line on the screen while it works",
                       work.Texts());
    check.answers.Tell(L"pair.ghost", !work.bGhost, L"the wizard's own window",
                       work.bGhost ? L"one of the system's" : L"the wizard's own window");
    check.answers.Tell(L"pair.server", IsListening(kAdbServerPort), L"adb's server runs on",
                       IsListening(kAdbServerPort) ? L"adb's server runs on" : L"nobody listens on its port");
    const CListener rude(CListener::kHangsUp);
    work = Pair(walk, rude);
    ExpectBoxes(
        check, L"pair.hung-up", work,
        {L"Pairing Error: An unexpected error has occurred, please send a screenshot of this message to KALVO"});
    check.answers.Tell(L"pair.hung-up-once", rude.Accepted() == 1, L"one connection",
                       std::format(L"{} connections", rude.Accepted()));
}

void LookAtPackage(const CWalk& walk)
{
    CHECK& check = walk.Check();
    const CPath package = check.program.parent_path() / L"Check.apk";
    check.answers.Expect(L"install.package", package.wstring(), walk.TextOf(IDC_APK_PATH));
    walk.Empty(IDC_APK_PATH);
    const bool bEmpty = walk.HasButtons(kWaiting);
    walk.Type(check.program.parent_path().wstring());
    const bool bFolder = walk.HasButtons(kWaiting);
    walk.Type(L"\\Check.ap");
    const bool bMissing = walk.HasButtons(kWaiting);
    walk.Type(L"k");
    const bool bFile = walk.HasButtons(kReady);
    check.answers.Tell(L"install.next", bEmpty && bFolder && bMissing && bFile,
                       L"Next for a file, and for nothing else",
                       std::format(L"without a path {}, for a folder {}, for no file {}, for a file {}", !bEmpty,
                                   !bFolder, !bMissing, bFile));
}

void Install(const CWalk& walk, PCWSTR pszPort)
{
    CHECK& check = walk.Check();
    const WORK work = PressNextAndWatch(walk);
    check.answers.AddPicture(L"page 7", walk.Look().frame.window.hwnd);
    ExpectBoxes(check, L"install.hung-up", work,
                {L"ADB Install: An unexpected error has occurred when connecting to the device:",
                 L"Install APK: Unable to connect to watch."});
    check.answers.Tell(L"install.first-words",
                       work.SaysSomewhere(std::format(L"Connecting to 127.0.0.1:{} (attempt 1 of 3)", pszPort)),
                       L"the first of three attempts", work.Texts());
    check.answers.Tell(L"install.server", IsListening(kAdbServerPort), L"adb's server runs on",
                       IsListening(kAdbServerPort) ? L"adb's server runs on" : L"nobody listens on its port");
}

void InstallRefused(const CWalk& walk, const std::wstring& szAddress)
{
    CHECK& check = walk.Check();
    const WORK work = PressNextAndWatch(walk);
    ExpectBoxes(check, L"install.refused", work, {L"Install APK: Unable to connect to watch."});
    check.answers.Tell(L"install.attempts", work.Counts().ends_with(L"1 of 3, 2 of 3, 3 of 3"),
                       L"three attempts, counted on the status line", work.Texts());
    check.answers.Expect(L"install.status", L"Unable to connect to " + szAddress, walk.Look().Status());
    check.answers.Tell(L"install.painted", work.WerePainted(), L"each status line on the screen while it works",
                       work.Texts());
    check.answers.Tell(L"install.ghost", !work.bGhost, L"the wizard's own window",
                       work.bGhost ? L"one of the system's" : L"the wizard's own window");
}

} // namespace

void CheckWorkingPages(CHECK& check)
{
    CWalk walk(check);
    walk.GoTo(5, L"");
    LookAtAddress(walk);
    LookAtPage(walk, 5);
    TypeIntoAddress(walk);
    LookAtPort(walk);
    walk.EnterAddress(L"127.0.0.1");
    ExpectPortRefused(walk, L"connect.port-low", L"1023");
    ExpectPortRefused(walk, L"connect.port-high", L"65536");
    ConnectRefused(walk);
    const CListener rude(CListener::kHangsUp);
    ConnectTaken(walk, L"connect.hung-up", rude);
    LookAtPage(walk, 6);
    BackToAddress(walk);
    auto patient = std::make_unique<CListener>(CListener::kStaysOpen);
    ConnectTaken(walk, L"connect.taken", *patient);
    LookAtCode(walk);
    LookAtPairing(walk);
    PairWithListeners(walk);
    BackToAddress(walk);
    ConnectTaken(walk, L"connect.again", rude);
    walk.Tick();
    walk.GoOn();
    LookAtPage(walk, 7);
    LookAtPackage(walk);
    Install(walk, rude.Port().c_str());
    // The same page and a watch that has gone meanwhile.
    for (int n = 0; n < 2; ++n) {
        walk.PressButton(PSBTN_BACK);
        walk.WaitForPage(6 - n);
    }
    const std::wstring szAddress = patient->Address();
    ConnectTaken(walk, L"connect.again", *patient);
    walk.GoTo(7, L"");
    patient.reset();
    InstallRefused(walk, szAddress);
}
