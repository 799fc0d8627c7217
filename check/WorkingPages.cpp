// The pages that do something: the address, the pairing, the package. Nobody but this program's own listeners is asked.
#include "check/Busy.h"
#include "check/Fields.h"
#include "check/Listener.h"
#include "check/Machine.h"
#include "check/Stopping.h"
#include "check/Text.h"

#include <commctrl.h>

#include <algorithm>
#include <format>
#include <memory>

namespace {

constexpr PCWSTR kInvalidPort = L"Invalid Port Value: Please enter a port value in the range of 1024 through 65535.";
constexpr PCWSTR kNotConnected =
    L"Wireless Debugging Connection: Could not connect to a watch at the IP address and port you entered.";
constexpr PCWSTR kNotPaired = L"Pair Connection: Could not connect to a watch at the IP address and port you entered.";
constexpr PCWSTR kPairingError =
    L"Pairing Error: An unexpected error has occurred, please send a screenshot of this message to KALVO";
constexpr PCWSTR kUnexpected = L"ADB Install: An unexpected error has occurred when connecting to the device:";
constexpr PCWSTR kUnable = L"Install APK: Unable to connect to watch.";

// What is not answered for so long the system calls hung.
constexpr ULONGLONG kHung = 5000;

// Just these boxes, each of which begins so.
void ExpectBoxes(CAnswers& answers, PCWSTR pszClaim, const WORK& work, const std::vector<PCWSTR>& beginnings)
{
    const auto BeginsSo = [](const std::wstring& szBox, PCWSTR pszBeginning) {
        return szBox.starts_with(pszBeginning);
    };
    answers.Tell(pszClaim, std::ranges::equal(work.boxes, beginnings, BeginsSo), Joined(beginnings, L" | "),
                 Joined(work.boxes, L" | ", L"no box"));
}

// What the status line was not seen to say does not count where it was not looked at often enough.
void TellOfStatus(CAnswers& answers, const std::wstring& szClaim, const SAID& said, bool bHolds,
                  const std::wstring& szExpected, const std::wstring& szSeen)
{
    if (bHolds || said.IsGapless()) {
        answers.Tell(szClaim, bHolds, szExpected, szSeen);
    } else {
        answers.NotTried(szClaim,
                         std::format(L"this computer was so busy that nobody looked at the status line for {} ms",
                                     said.nLongestGap));
    }
}

void ExpectLine(CAnswers& answers, PCWSTR pszClaim, const SAID& said, const std::wstring& szLine)
{
    TellOfStatus(answers, pszClaim, said, said.SaysSomewhere(szLine), szLine, said.Texts());
}

// "connect.painted" and "connect.ghost" for "connect.".
void LookAtWindow(CAnswers& answers, const std::wstring& szClaims, const WORK& work)
{
    // One alone may be painted late and nobody would see it: what stood there before it may be gone.
    constexpr size_t kEnough = 2;
    const std::vector<std::wstring> lookedAt = work.said.LookedAt();
    const std::vector<std::wstring> unpainted = work.said.Unpainted();
    TellOfStatus(
        answers, szClaims + L"painted", work.said, lookedAt.size() >= kEnough && unpainted.empty(),
        L"two status lines or more, each on the screen while it works",
        std::format(L"{}; not on the screen: {}", Joined(lookedAt, L" | "), Joined(unpainted, L" | ", L"none")));
    answers.Tell(szClaims + L"ghost", !work.bGhost, L"the wizard's own window",
                 std::format(L"{} within {} ms", work.bGhost ? L"one of the system's" : L"the wizard's own window",
                             work.nMilliseconds));
}

// "connect.attempts" for "connect".
void LookAtAttempts(CAnswers& answers, const std::wstring& szGroup, const SAID& said, int nAttempts)
{
    std::wstring szCounts;
    for (int n = 1; n <= nAttempts; ++n) {
        szCounts += std::format(L"{}{} of {}", n == 1 ? L"" : L", ", n, nAttempts);
    }
    TellOfStatus(answers, szGroup + L".attempts", said, said.Counts().ends_with(szCounts), szCounts, said.Texts());
}

void ExpectServer(CAnswers& answers, PCWSTR pszClaim)
{
    answers.Either(pszClaim, IsListening(kAdbServerPort), L"adb's server runs on", L"nobody listens on its port");
}

void ExpectPortRefused(const CWalk& walk, PCWSTR pszClaim, PCWSTR pszPort)
{
    walk.Enter(IDC_WATCH_PORT, pszPort);
    walk.ClickControl(kNextId);
    const TREE box = walk.WaitForBox(5000);
    walk.Answers().Expect(pszClaim, kInvalidPort, WordsOf(box), box.window.hwnd);
    walk.Dismiss(box);
}

// The time of a single one is as exact as the looks at the screen are frequent; that of all is exact enough.
void LookAtPace(CAnswers& answers, const SAID& said)
{
    constexpr ULONGLONG kPause = 200;
    constexpr ULONGLONG kInexact = 100;
    std::vector<ULONGLONG> times;
    for (const STATUS_LINE& line : said.lines) {
        if (line.szText.starts_with(L"Connecting to ")) {
            times.push_back(line.nMilliseconds);
        }
    }
    answers.Tell(L"connect.pace",
                 times.size() > 1 && times.back() - times.front() + kInexact >= (times.size() - 1) * kPause,
                 L"200 ms or more from one attempt to the next",
                 Joined(times, L", ", L"no attempt", [](ULONGLONG n) { return std::format(L"{} ms", n); }));
}

void ConnectRefused(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    const CListener nobody(CListener::kRefuses);
    walk.Enter(IDC_WATCH_PORT, nobody.Port());
    answers.AddPicture(L"page 5", walk.Look().frame.window.hwnd);
    const WORK work = PressNextAndWatch(walk);
    ExpectBoxes(answers, L"connect.refused", work, {kNotConnected});
    LookAtAttempts(answers, L"connect", work.said, 7);
    LookAtPace(answers, work.said);
    answers.Expect(L"connect.status", L"Could not connect to " + nobody.Address(), walk.Look().Status());
    TellOfStatus(answers, L"connect.echo", work.said,
                 work.said.SaysSomewhere(L"Connecting to " + nobody.Address() + L" (1 of 7)") &&
                     !work.said.SaysSomewhere(L"Pinging 127.0.0.1 (2 of 6)"),
                 L"127.0.0.1 answers the first echo", work.said.Texts());
    answers.Expect(L"connect.stays", L"page 5", std::format(L"page {}", work.nPage));
    LookAtWindow(answers, L"connect.", work);
}

void ConnectTaken(const CWalk& walk, PCWSTR pszClaim, const CListener& listener)
{
    walk.Enter(IDC_WATCH_PORT, listener.Port());
    const WORK work = PressNextAndWatch(walk);
    walk.Answers().Tell(
        pszClaim, work.nPage == 6 && work.boxes.empty() && listener.Accepted() > 0, L"page 6 without a box",
        std::format(L"page {}, {} boxes, {} connections", work.nPage, work.boxes.size(), listener.Accepted()));
    if (work.nPage != 6) {
        throw CLost{L"page 6 cannot be reached"};
    }
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
    CAnswers& answers = walk.Answers();
    const SIGHT sight = walk.Rest();
    const PART* const pAddress = sight.Control(IDC_PAIRING_ADDRESS);
    answers.Expect(L"pair.address", L"127.0.0.1, not to be changed",
                   pAddress == nullptr
                       ? L"no address"
                       : HoldsText(*pAddress) + (pAddress->bEnabled ? L", enabled" : L", not to be changed"));
    walk.Enter(IDC_PAIRING_CODE, L"12345");
    walk.Enter(IDC_PAIRING_PORT, L"123");
    const bool bNot = walk.HasButtons(kWaiting);
    walk.Type(L"4");
    const bool bNotYet = walk.HasButtons(kWaiting);
    walk.Enter(IDC_PAIRING_CODE, L"123456");
    const bool bNow = walk.HasButtons(kReady);
    answers.Tell(L"pair.next", bNot && bNotYet && bNow, L"Next with six and four digits, not before",
                 std::format(L"{} {} {}", bNot, bNotYet, bNow));
    const auto AreFieldsEnabled = [&] { return walk.Look().Control(IDC_PAIRING_CODE)->bEnabled; };
    walk.ClickControl(IDC_SKIP_PAIRING);
    const bool bEmptied = walk.Holds(IDC_PAIRING_CODE, L"") && walk.Holds(IDC_PAIRING_PORT, L"") &&
                          !AreFieldsEnabled() && walk.HasButtons(kReady);
    walk.ClickControl(IDC_SKIP_PAIRING);
    const bool bAgain = walk.HasButtons(kWaiting) && AreFieldsEnabled();
    answers.Tell(L"pair.skip", bEmptied && bAgain, L"empties and disables both fields and offers Next, and back",
                 std::format(L"{} {}", bEmptied, bAgain));
}

void PairWithListeners(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    const CListener nobody(CListener::kRefuses);
    const WORK refused = Pair(walk, nobody);
    answers.AddPicture(L"page 6", walk.Look().frame.window.hwnd);
    ExpectBoxes(answers, L"pair.refused", refused, {kNotPaired});
    LookAtAttempts(answers, L"pair", refused.said, 3);
    ExpectLine(answers, L"pair.first-words", refused.said, L"Stopping ADB server");
    LookAtWindow(answers, L"pair.", refused);
    ExpectServer(answers, L"pair.server");
    const CListener rude(CListener::kHangsUp);
    ExpectBoxes(answers, L"pair.hung-up", Pair(walk, rude), {kPairingError});
    answers.Expect(L"pair.hung-up-once", L"1", std::to_wstring(rude.Accepted()));
}

void LookAtPackage(const CWalk& walk)
{
    const CHECK& check = walk.Check();
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

// The installer gives the dialog no title of its own, so it is the system's, in its language. No picture: it shows the
// user's folders.
void LookAtFileDialog(const CWalk& walk)
{
    const HWND hwndWizard = walk.Look().frame.window.hwnd;
    const std::wstring szPath = walk.TextOf(IDC_APK_PATH);
    const PART dialog = walk.OpenFileDialog().window;
    const bool bTitled = !dialog.szText.empty() && dialog.szText != kTitle;
    const bool bOwned = GetWindow(dialog.hwnd, GW_OWNER) == hwndWizard && !IsWindowEnabled(hwndWizard);
    walk.LeaveFileDialog();
    const bool bSame = walk.Holds(IDC_APK_PATH, szPath) && walk.HasButtons(kReady);
    walk.Answers().Tell(L"install.browse", bTitled && bOwned && bSame,
                        L"a dialog of the wizard's with the system's title, no change",
                        std::format(L"\"{}\", {}, {}", dialog.szText, bOwned ? L"the wizard's" : L"not the wizard's",
                                    bSame ? L"no change" : L"another path, or no Next"));
}

void InstallHungUp(const CWalk& walk, const CListener& rude)
{
    CAnswers& answers = walk.Answers();
    const WORK work = PressNextAndWatch(walk);
    answers.AddPicture(L"page 7", walk.Look().frame.window.hwnd);
    ExpectBoxes(answers, L"install.hung-up", work, {kUnexpected, kUnable});
    ExpectLine(answers, L"install.first-words", work.said, L"Connecting to " + rude.Address() + L" (attempt 1 of 3)");
    ExpectServer(answers, L"install.server");
    // It connects to this listener again and again from now on, and at times does not end when it is told to meanwhile:
    // the installer then waits for it. Seen under Wine. Whatever comes later is to be told of by itself.
    StopAdb();
}

void InstallRefused(const CWalk& walk, const std::wstring& szAddress)
{
    CAnswers& answers = walk.Answers();
    const WORK work = PressNextAndWatch(walk);
    ExpectBoxes(answers, L"install.refused", work, {kUnable});
    LookAtAttempts(answers, L"install", work.said, 3);
    answers.Expect(L"install.status", L"Unable to connect to " + szAddress, walk.Look().Status());
    LookAtWindow(answers, L"install.", work);
}

// adb gives up after about 10 seconds, in which the wizard does not listen.
void InstallSilent(const CWalk& walk)
{
    CAnswers& answers = walk.Answers();
    const WORK work = PressNextAndWatch(walk, PATIENCE::kImpatient);
    ExpectBoxes(answers, L"install.silent", work, {kUnexpected, kUnable});
    if (work.nMilliseconds < kHung) {
        throw CLost{L"adb gave up before the system would call a window hung"};
    }
    LookAtWindow(answers, L"install.silent-", work);
}

} // namespace

void CheckWorkingPages(CHECK& check)
{
    const CWalk walk(check);
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
    walk.GoBackTo(5);
    auto patient = std::make_unique<CListener>(CListener::kStaysOpen);
    ConnectTaken(walk, L"connect.taken", *patient);
    LookAtCode(walk);
    LookAtPairing(walk);
    PairWithListeners(walk);
    walk.GoBackTo(5);
    ConnectTaken(walk, L"connect.again", rude);
    walk.Tick();
    walk.GoOn();
    LookAtPage(walk, 7);
    LookAtPackage(walk);
    LookAtFileDialog(walk);
    InstallHungUp(walk, rude);
    // The same page and a watch that has gone meanwhile.
    walk.GoBackTo(5);
    const std::wstring szAddress = patient->Address();
    ConnectTaken(walk, L"connect.again", *patient);
    walk.GoTo(7, L"");
    patient.reset();
    InstallRefused(walk, szAddress);
    walk.GoBackTo(5);
    const CListener silent(CListener::kStaysOpen);
    walk.GoTo(7, silent.Port());
    InstallSilent(walk);
    walk.GoBackTo(5);
    walk.EmptyField(walk.AddressFields()[1]);
    walk.Press(VK_ESCAPE);
    walk.ExpectEnd(L"frame.escape-field");
}
