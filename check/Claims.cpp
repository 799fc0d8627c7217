#include "check/Claims.h"

#include "check/Pages.h"
#include "driver/Json.h"

#include <format>
#include <span>

namespace {

struct ROW
{
    PCWSTR pszId;
    PCWSTR pszSentence;
    PCWSTR pszHow;
};

constexpr PCWSTR kAllCases = L"runs the program of tests and reads what it says of each case";
constexpr PCWSTR kPainted = L"Each status line is painted while the page works.";
constexpr PCWSTR kPixels = L"compares the pixels of the screen";
constexpr PCWSTR kNoGhost = L"The system puts no window of its own in the wizard's place meanwhile.";
constexpr PCWSTR kLookedForGhost = L"looks for a window of the class Ghost";
constexpr PCWSTR kPipe = L"runs the deployed adb through a pipe";

constexpr ROW kBeforeThePages[] = {
    {L"unit.adb", L"The unit tests of adb's commands, of what adb prints and of running it hold.", kAllCases},
    {L"unit.adb-load", L"Endless and hostile output of adb is judged in linear time.", kAllCases},
    {L"unit.app", L"The unit tests of start-up, reports and the About box hold.", kAllCases},
    {L"unit.atl", L"The unit tests of the string class hold.", kAllCases},
    {L"unit.kit", L"The unit tests' own tools hold.", kAllCases},
    {L"unit.net", L"The unit tests of addresses, routes and sockets hold.", kAllCases},
    {L"unit.res", L"The unit tests of texts, dialogs, icon, version and manifest hold.", kAllCases},
    {L"unit.tools", L"The unit tests of writing, unpacking and removing the tools hold.", kAllCases},
    {L"unit.wizard", L"The unit tests of the pages and probes hold.", kAllCases},
    {L"system.echo", L"127.0.0.1 answers an echo.", L"the installer's call with the installer's payload and buffer"},
    {L"system.echo-room", L"The installer's buffer of 92 bytes has room for the answer.",
     L"the size that the answer tells"},
    {L"system.poll", L"WSAPoll tells of a connection that stands.", L"a non-blocking connection to an own listener"},
    {L"system.poll-refused", L"WSAPoll tells of a connection that was refused.",
     L"a non-blocking connection to a port on which nobody listens"},
    {L"frame.class", L"PSH_AEROWIZARD, without PSH_WIZARD, gives the frame of an Aero wizard.",
     L"the class of the window"},
    {L"frame.caption", L"The frame's caption is the title.", L"the text of the window"},
    {L"frame.page-size", L"The area of the pages has the size that their templates ask for.",
     L"compared with what a dialog of their font makes of it"},
    {L"frame.task-bar", L"The wizard has a button in the task bar, with the title.",
     L"the window has no owner and is no tool's"},
    {L"frame.icon", L"The wizard's large icon is the program's.", L"WM_GETICON, compared with the resource"},
    {L"frame.icon-small", L"The program's icon is to be seen in the caption.", L"looks for its pixels there"},
    {L"frame.button-ids", L"The ids of Back, Next, Finish and Cancel are 12323, 12324, 12325 and 2.",
     L"buttons with other ids are found by their texts"},
    {L"frame.front", L"The wizard comes before all others when it starts.", L"the foreground window"},
    {L"frame.first-post", L"The first message that page 1 posts moves the keyboard from About to Next.",
     L"what has the keyboard"},
    {L"frame.second-post", L"The second message that page 1 posts hides the arrow.",
     L"the buttons that are to be seen"},
    {L"frame.enter", L"Enter on page 1 goes on and does not open the About box.", L"presses Enter"},
    {L"frame.enter-hidden", L"Enter does nothing while Next is hidden.",
     L"presses Enter on page 2 before it is ticked"},
    {L"frame.tab", L"Tab leads from the box of page 2 to Next, Cancel, the arrow and back.", L"presses Tab four times"},
    {L"frame.arrow", L"From page 2 on there is an arrow to go back by.", L"looks for it on page 3"},
    {L"frame.back", L"The arrow leads back, and the page is as it was left, with Next.", L"clicks on it"},
    {L"frame.alt-left", L"Alt and the left arrow key lead back.", L"presses them on page 2"},
    {L"frame.first-again", L"Page 1 hides the arrow also when it is come back to.", L"the buttons that are to be seen"},
    {L"frame.by-number", L"A page can be shown by its number.", L"PSM_SETCURSEL"},
    {L"frame.escape-field", L"Esc in a field of the address ends the program, with nothing left and exit code 0.",
     L"presses Esc on page 5"},
    {L"frame.escape-hidden", L"Esc does nothing where Cancel is hidden.", L"presses Esc on page 14"},
    {L"frame.back-from-last", L"Back from the last page shows Back, Next and Cancel again.",
     L"the buttons that are to be seen on page 13"},
    {L"frame.last-again", L"The last page, come to again, shows Back and Finish alone.",
     L"the buttons that are to be seen"},
    {L"frame.enter-last", L"Enter on the last page finishes.", L"presses Enter"},
    {L"about.box", L"The About box tells title and version.", L"clicks on About"},
    {L"about.texts", L"No text of the About box is cut.", L"measures with the font of message boxes"},
    {L"about.keyboard", L"After the About box the keyboard is where it was.", L"what has the keyboard"},
    {L"about.tab", L"Tab leads from About to Next.", L"presses Tab"},
    {L"box.texts", L"No text of any message box is cut.", L"measures each that comes with the font of message boxes"},
};

constexpr ROW kBehindThePages[] = {
    {L"address.exists", L"The address field exists although nothing registers its class.", L"looks for it on page 5"},
    {L"address.fields", L"The address field has four fields.", L"counts them"},
    {L"address.prefill",
     L"The address begins like the gateway of the route that is preferred, or is empty without one.",
     L"compared with this computer's route table"},
    {L"address.partial", L"The address field takes a text of three numbers and leaves the fourth empty.",
     L"reads its fields"},
    {L"address.caret", L"The keyboard is in the fourth field at first.", L"what has the keyboard"},
    {L"address.caret-seen", L"The caret is in the fourth field at first.", L"which window has the caret"},
    {L"address.letters", L"A field of the address takes digits alone.", L"types digits and letters"},
    {L"address.third-digit", L"The third digit leads to the next field.", L"types three digits"},
    {L"address.dot", L"A dot leads to the next field.", L"types a digit and a dot"},
    {L"address.limit", L"A field of the address becomes 255 at most.", L"types 256 and leaves it"},
    {L"address.tells", L"Next follows every key in the address.", L"types and removes the last digit"},
    {L"number.digits", L"The port takes digits.", L"types them"},
    {L"number.letters", L"The port takes nothing else.", L"types a letter, a dash, a dot and a blank"},
    {L"number.limit", L"The port takes five digits.", L"types seven"},
    {L"number.backspace", L"Backspace removes digits.", L"presses it twice"},
    {L"number.code", L"The code takes six digits, a nought at first as well.", L"types eight"},
    {L"number.paste", L"Five digits can be pasted.", L"Ctrl+V"},
    {L"number.paste-mixed", L"Of a text with other characters the digits are pasted.", L"Ctrl+V"},
    {L"number.paste-long", L"Of a long text no more is pasted than the field takes.", L"Ctrl+V with 100,005 digits"},
    {L"number.paste-menu", L"The menu of the field pastes in the same way.", L"Shift+F10 and its fourth command"},
    {L"number.paste-picture", L"A picture pastes nothing.", L"Ctrl+V"},
    {L"number.paste-twice", L"A short text is pasted twice, as is intended.", L"Ctrl+V with 12 gives 1212"},
    {L"number.paste-script", L"Digits of another script lead no further.",
     L"pastes Arabic digits as the port of page 6"},
    {L"connect.port-low", L"Port 1023 is refused with a box.", L"presses Next"},
    {L"connect.port-high", L"Port 65536 is refused with a box.", L"presses Next"},
    {L"connect.echo", L"Page 5 finds 127.0.0.1 with the first echo.", L"reads the status line"},
    {L"connect.refused", L"A port on which nobody listens ends with the box about the connection.", L"an own port"},
    {L"connect.attempts", L"Before that, seven attempts are counted on the status line.", L"reads it meanwhile"},
    {L"connect.pace", L"The attempts are 200 ms or more apart.", L"the time of each on the status line"},
    {L"connect.status", L"The status line then tells the address that could not be connected to.", L"reads it"},
    {L"connect.stays", L"The wizard then stays on page 5.", L"the page that is shown"},
    {L"connect.painted", kPainted, kPixels},
    {L"connect.ghost", kNoGhost, kLookedForGhost},
    {L"connect.hung-up", L"A listener that hangs up at once counts as a connection.", L"an own listener"},
    {L"connect.taken", L"A listener that takes the connection leads to page 6 without a box.", L"an own listener"},
    {L"connect.again", L"Page 5 can be gone through again and again.", L"goes back and connects"},
    {L"pair.address", L"Page 6 shows the address, not to be changed.", L"reads the field"},
    {L"pair.next", L"Page 6 offers Next with six and four digits and not before.", L"types them"},
    {L"pair.skip", L"To skip the pairing empties and disables the fields and offers Next; it can be taken back.",
     L"clicks on the box twice"},
    {L"pair.first-words", L"Page 6 begins with \"Stopping ADB server\".", L"reads the status line"},
    {L"pair.refused", L"A pairing port on which nobody listens ends with the box about the pairing's connection.",
     L"the deployed adb and an own port"},
    {L"pair.attempts", L"Before that, three attempts are counted on the status line.", L"reads it meanwhile"},
    {L"pair.painted", kPainted, kPixels},
    {L"pair.ghost", kNoGhost, kLookedForGhost},
    {L"pair.server", L"adb's server runs on after that.", L"connects to its port"},
    {L"pair.hung-up", L"A listener that hangs up ends with the box about an unexpected error.",
     L"the deployed adb and an own listener"},
    {L"pair.hung-up-once", L"That is not tried again.", L"counts the connections"},
    {L"install.package", L"Page 7 proposes the package that lies beside the program.", L"reads the field"},
    {L"install.next", L"Page 7 offers Next for the path of a file alone.", L"types paths"},
    {L"install.browse", L"Browse opens a dialog of the wizard's with the system's title; Cancel there changes nothing.",
     L"clicks on Browse and presses Esc"},
    {L"install.first-words", L"Page 7 tells the first of three attempts to connect.", L"reads the status line"},
    {L"install.hung-up", L"A listener that hangs up ends with two boxes.", L"the deployed adb and an own listener"},
    {L"install.server", L"adb's server runs on after that.", L"connects to its port"},
    {L"install.refused", L"A port on which nobody listens any more ends with the box about the connection.",
     L"the deployed adb and an own port"},
    {L"install.attempts", L"Before that, three attempts are counted on the status line.", L"reads it meanwhile"},
    {L"install.status", L"The status line then tells the address that could not be connected to.", L"reads it"},
    {L"install.painted", kPainted, kPixels},
    {L"install.ghost", kNoGhost, kLookedForGhost},
    {L"install.silent", L"A listener that takes the connection and stays silent ends with two boxes.",
     L"the deployed adb and an own listener"},
    {L"install.silent-painted", kPainted, kPixels},
    {L"install.silent-ghost",
     L"The system puts no window of its own in the wizard's place, which does not listen for 10 s.",
     L"clicks meanwhile and looks for a window of the class Ghost"},
    {L"adb.no-server", L"Without a server kill-server says \"cannot connect to daemon at tcp:5037\".", kPipe},
    {L"adb.server-starts", L"The first command says two lines about the start of the server, then its own.", kPipe},
    {L"adb.pipe", L"The server lets go of the pipe of the command that started it.", L"waits until the pipe breaks"},
    {L"adb.line-ends", L"adb ends its lines with carriage return and line feed.", kPipe},
    {L"adb.connect-refused", L"connect to a port on which nobody listens says \"cannot connect to\".", kPipe},
    {L"adb.connect-hung-up", L"connect to a listener that hangs up says \"failed to connect to\".", kPipe},
    {L"adb.connect-silent", L"connect to a listener that says nothing says \"failed to connect to\".", kPipe},
    {L"adb.connect-patience", L"It does so after about 10 seconds.", L"measures the time"},
    {L"adb.pair-refused", L"pair at a port on which nobody listens says \"Unable to start pairing client\".", kPipe},
    {L"adb.pair-hung-up", L"pair at a listener that hangs up says \"Wrong password or connection was dropped\".",
     kPipe},
    {L"adb.install-no-device", L"install on a device that is not there says \"not found\".", kPipe},
    {L"adb.server-ends", L"kill-server of a running server says nothing.", kPipe},
    {L"adb.server-gone", L"The server then ends.", L"its port and its processes"},
    {L"deploy.files", L"The archive and three unpacked files are there while the wizard is.", L"lists the folder"},
    {L"deploy.archive", L"The archive is byte for byte the one in the program.", L"compares it with the resource"},
    {L"deploy.unpacked", L"The three files are byte for byte those in the archive.",
     L"unpacks the archive and compares"},
    {L"deploy.log-off", L"A log-off that is called off changes nothing.", L"WM_QUERYENDSESSION and WM_ENDSESSION"},
    {L"deploy.gone-escape", L"Esc ends the program, with nothing left and exit code 0.", L"presses Esc"},
    {L"deploy.killed", L"A run that is killed leaves its tools.", L"ends the process and lists the folder"},
    {L"deploy.left-over", L"The next start removes what is left and writes the tools anew.", L"lists the folder"},
    {L"deploy.gone-cancel", L"Cancel ends the program, with nothing left and exit code 0.", L"clicks on it"},
    {L"deploy.gone-close", L"Alt+F4 ends the program, with nothing left and exit code 0.", L"presses it"},
    {L"deploy.gone-finish", L"Finish leaves nothing.", L"lists the folder"},
    {L"instance.code", L"A second start ends with exit code 0.", L"starts a second copy"},
    {L"instance.silent", L"A second start shows nothing, not for a moment.", L"hears of every window that is shown"},
    {L"instance.front", L"A second start brings the first wizard to the front.", L"with another window before it"},
    {L"instance.tools", L"A second start leaves the first one's tools alone.", L"lists the folder"},
    {L"instance.front-box", L"A second start brings a box of the first to the front that has the title.",
     L"with another window before it"},
    {L"end.finish", L"Finish ends with exit code 0.", L"the exit code"},
    {L"end.cancel", L"Every way to cancel ends with exit code 0.", L"the exit code"},
    {L"end.old-windows", L"A Windows that is too old is refused with a box.", L"a copy that is told so"},
    {L"end.old-windows-code", L"That ends with exit code 0.", L"the exit code"},
    {L"end.uncaught-silent", L"An exception that nobody catches shows nothing.", L"a copy that cannot narrow a path"},
    {L"end.uncaught-code", L"It ends the program with exit code 3.", L"the exit code"},
    {L"end.language", L"The box \"Error\" tells the system's own words, in its language.", L"holds the archive open"},
    {L"end.not-installed", L"It is followed by the box about the tools that were not installed.", L"reads it"},
    {L"end.not-installed-code", L"That ends with exit code 0.", L"the exit code"},
    {L"end.language-win32", L"The box \"Win32 Error\" tells the system's own words, in its language.",
     L"holds a tool open that was left"},
    {L"end.held-code", L"That ends with exit code 13.", L"the exit code"},
    {L"loader.flags", L"The program asks for the system's folder alone.", L"reads the load configuration"},
    {L"loader.start", L"No library beside the program is loaded when it starts.",
     L"plants one of every name that is linked, and of many that are known to be looked for"},
    {L"loader.pages", L"None is loaded on the pages up to the seventh.", L"the same"},
    {L"loader.dialog", L"None is loaded in the file dialog.", L"the same"},
    {L"loader.last-pages", L"None is loaded on the pages behind it.", L"the same"},
    {L"loader.by-name", L"None is loaded when something asks for it by its name.",
     L"lets the running program load one"},
    {L"loader.undefended-by-name", L"A copy without the defences loads it: the check would have seen it.",
     L"the same with a copy"},
    {L"loader.undefended-some", L"A copy without the defences loads some that the system asks for.",
     L"plants those that are known to be loaded by name"},
    {L"tidy.processes", L"The check leaves no process.", L"looks for the installer and adb"},
    {L"tidy.files", L"The check leaves no file but its reports.", L"its own folder, the installer's, adb's key"},
    {L"tidy.port", L"The check leaves nobody on adb's port.", L"connects to it"},
    {L"tidy.clipboard", L"The check leaves the clipboard's text as it was.", L"reads it"},
};

void AddPage(std::vector<CLAIM>& claims, const PAGE& page)
{
    const auto Add = [&](PCWSTR pszWhat, const std::wstring& szSentence, PCWSTR pszHow) {
        claims.push_back({PageClaim(page.nNumber, pszWhat), szSentence, pszHow});
    };
    Add(L"title", std::format(L"Above page {} stands \"{}\".", page.nNumber, page.pszTitle),
        L"a window says it, or the frame to a screen reader");
    Add(L"buttons", std::format(L"Page {} shows {} at first.", page.nNumber, ButtonNames(page.nFirst)),
        L"the buttons that are to be seen");
    Add(L"focus", std::format(L"On page {} control {} has the keyboard at first.", page.nNumber, page.nFocusId),
        L"what has the keyboard");
    Add(L"default", std::format(L"On page {} the right button is drawn as the one that Enter presses.", page.nNumber),
        L"the style of the buttons");
    Add(L"texts", std::format(L"No text of page {} and its frame is cut.", page.nNumber),
        L"measures with the real font at the screen's resolution");
    Add(L"apart", std::format(L"On page {} nothing covers anything else, and all is on the screen.", page.nNumber),
        L"compares the rectangles");
    Add(L"contrast", std::format(L"The words of page {} stand out from their ground.", page.nNumber),
        L"the pixels of the screen: 4.5 to 1, with high contrast 7 to 1");
    if (page.nBoxId != 0 && page.nStatusId == 0) {
        Add(L"next", std::format(L"On page {} Next comes and goes with the tick.", page.nNumber),
            L"ticks and unticks the box");
    }
}

void AddRows(std::vector<CLAIM>& claims, std::span<const ROW> rows)
{
    for (const ROW& row : rows) {
        claims.push_back({row.pszId, row.pszSentence, row.pszHow});
    }
}

std::vector<CLAIM> MakeClaims()
{
    std::vector<CLAIM> claims;
    AddRows(claims, kBeforeThePages);
    for (const PAGE& page : kPages) {
        AddPage(claims, page);
    }
    AddRows(claims, kBehindThePages);
    return claims;
}

} // namespace

const std::vector<CLAIM>& AllClaims()
{
    static const std::vector<CLAIM> s_claims = MakeClaims();
    return s_claims;
}

std::wstring GroupOf(const std::wstring& szId)
{
    return szId.substr(0, szId.find(L'.'));
}

std::string ClaimsAsJson()
{
    std::string json;
    for (const CLAIM& claim : AllClaims()) {
        json += (json.empty() ? "[\n" : ",\n") + std::format(R"({{"id":{},"claim":{},"how":{}}})", Quoted(claim.szId),
                                                             Quoted(claim.szSentence), Quoted(claim.szHow));
    }
    return json + "\n]\n";
}
