// What a person sees of the windows on the screen, for the tests that act like one: it reads, it never acts.
//
// A request is a line on standard input, its answer a line of JSON (UTF-8) on standard output:
//   look           every visible top-level window with everything in it, from top to bottom; inside a window
//                  in tab order. Asks nothing of the windows, so a program that is busy does not hold it up.
//   read HANDLE    what a control holds: the text of an edit or combo box, the state of a check box. Null where
//                  the program is too busy to say it; an error for every other window.
//   measure HANDLE FONT [TEXT]
//                  the room that a control has for its text, the extent of the text and what is drawn of it
//                  when nothing is cut; with TEXT, as if the control said that. See driver/Measure.h.
// The end of the input ends it.
#include "driver/Json.h"
#include "driver/Measure.h"
#include "driver/Reading.h"
#include "kit/Request.h"

#include <windows.h>

#include <commctrl.h>

#include <cstdio>
#include <format>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

// Window handles have 32 significant bits, whatever the program's width.
unsigned long Number(HWND hwnd)
{
    return HandleToULong(hwnd);
}

const char* Truth(bool b)
{
    return b ? "true" : "false";
}

std::string Describe(HWND hwnd)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hwnd, &dwProcess);
    const LONG nStyle = GetWindowLongW(hwnd, GWL_STYLE);
    // The menu field of a window that is no child is no id.
    const int nId = nStyle & WS_CHILD ? GetDlgCtrlID(hwnd) : 0;

    // The window of the display server that shows it; zero for a control, which has none.
    const unsigned long nScreenWindow = HandleToULong(GetPropW(hwnd, L"__wine_x11_whole_window"));

    std::string json = std::format(
        R"({{"handle":{},"owner":{},"process":{},"screen_window":{},"class":{},"id":{},"text":{},)", Number(hwnd),
        Number(GetWindow(hwnd, GW_OWNER)), dwProcess, nScreenWindow, Quoted(ClassOf(hwnd)), nId, Quoted(TitleOf(hwnd)));
    json += std::format(R"("x":{},"y":{},"width":{},"height":{},"style":{},"visible":{},"enabled":{},)", rect.left,
                        rect.top, rect.right - rect.left, rect.bottom - rect.top, static_cast<unsigned long>(nStyle),
                        Truth(IsWindowVisible(hwnd)), Truth(IsWindowEnabled(hwnd)));
    json += R"("children":[)";
    bool bFirst = true;
    for (HWND child = GetWindow(hwnd, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        json += std::exchange(bFirst, false) ? "" : ",";
        json += Describe(child);
    }
    return json + "]}";
}

std::string Look()
{
    // The thread that has the keyboard; zero names it.
    GUITHREADINFO thread = {};
    thread.cbSize = sizeof thread;
    GetGUIThreadInfo(0, &thread);

    std::string windows;
    const auto add = [](HWND hwnd, LPARAM lParam) -> BOOL {
        auto& list = *reinterpret_cast<std::string*>(lParam);
        if (IsWindowVisible(hwnd)) {
            list += list.empty() ? "" : ",";
            list += Describe(hwnd);
        }
        return TRUE;
    };
    EnumWindows(add, reinterpret_cast<LPARAM>(&windows));
    return std::format(R"({{"foreground":{},"focus":{},"caret":{},"windows":[{}]}})", Number(GetForegroundWindow()),
                       Number(thread.hwndFocus), Number(thread.hwndCaret), windows);
}

// Only of these controls Look does not tell all.
std::string Read(HWND hwnd)
{
    if (IsClass(hwnd, WC_EDITW) || IsClass(hwnd, WC_COMBOBOXW)) {
        const std::optional<std::wstring> text = ReadText(hwnd);
        return std::format(R"({{"holds":{}}})", text ? Quoted(*text) : "null");
    }
    if (IsClass(hwnd, WC_BUTTONW)) {
        const std::optional<DWORD_PTR> nState = Ask(hwnd, BM_GETCHECK, 0, 0);
        return std::format(R"({{"holds":{}}})", nState ? Truth(*nState == BST_CHECKED) : "null");
    }
    return R"({"error":"there is no such control, or it holds nothing"})";
}

std::string Edges(const RECT& rect)
{
    return std::format("[{},{},{},{}]", rect.left, rect.top, rect.right, rect.bottom);
}

std::string MeasureControl(HWND hwnd, std::string_view font, const std::wstring& text)
{
    const std::optional<MEASURE> measure = Measure(hwnd, font, text);
    return measure ? std::format(R"({{"room":{},"extent":{},"ink":{}}})", Edges(measure->room), Edges(measure->extent),
                                 Edges(measure->ink))
                   : R"({"error":"there is no such font, or the control shows no text"})";
}

std::string Answer(const std::string& request)
{
    unsigned long nHandle = 0;
    char szFont[16] = {};
    int nTextStart = 0;
    if (request == "look") {
        return Look();
    }
    if (std::sscanf(request.c_str(), "read %lu", &nHandle) == 1) {
        return Read(static_cast<HWND>(ULongToHandle(nHandle)));
    }
    if (std::sscanf(request.c_str(), "measure %lu %15s%n", &nHandle, szFont, &nTextStart) == 2) {
        const HWND hwnd = static_cast<HWND>(ULongToHandle(nHandle));
        const auto nStart = static_cast<size_t>(nTextStart);
        return MeasureControl(hwnd, szFont,
                              nStart < request.size() ? FromUtf8(std::string_view(request).substr(nStart + 1))
                                                      : TitleOf(hwnd));
    }
    return R"({"error":"the requests are: look, read HANDLE, measure HANDLE FONT [TEXT]"})";
}

} // namespace

int main()
{
    // The pixels of the screen, at any resolution.
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    for (std::string request; std::getline(std::cin, request);) {
        if (request.ends_with('\r')) {
            request.pop_back();
        }
        std::cout << Answer(request) << '\n' << std::flush;
    }
    return 0;
}
