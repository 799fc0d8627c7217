#include "check/StatusWatch.h"

#include "check/Picture.h"
#include "check/Text.h"
#include "driver/Measure.h"
#include "driver/Reading.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <ranges>

namespace {

constexpr DWORD kBetweenLooksAtLine = 10;

// Nothing is painted at the very moment that it is said.
constexpr ULONGLONG kUntilPainted = 60;

// Page 5 pauses for so long in each attempt, the others before they run adb.
constexpr ULONGLONG kPauseInAttempt = 200;
constexpr ULONGLONG kPauseBeforeAdb = 2000;

// What a gap may really be longer than the system's clock tells, and more.
constexpr ULONGLONG kInexactGap = 50;

// Of 255, from the ground: paler ones belong to the soft edge of a letter.
constexpr int kInk = 95;

// A part of the width by which the letters of another line differ more, and those of a font that is much like the
// pages' do not.
constexpr LONG kWidthPart = 12;

LONG InkWidth(const std::vector<COLORREF>& pixels, LONG nWidth)
{
    LONG nFirst = nWidth;
    LONG nEnd = 0;
    for (size_t n = 0; n < pixels.size(); ++n) {
        if (std::abs(GetGValue(pixels[n]) - GetGValue(pixels.front())) > kInk) {
            const LONG nColumn = static_cast<LONG>(n) % nWidth;
            nFirst = std::min(nFirst, nColumn);
            nEnd = std::max(nEnd, nColumn + 1);
        }
    }
    return std::max(nEnd - nFirst, 0L);
}

} // namespace

std::wstring SAID::Counts() const
{
    std::vector<std::wstring> counts;
    for (const STATUS_LINE& line : lines) {
        const size_t nOf = line.szText.find(L" of ");
        if (nOf != std::wstring::npos && nOf > 0 && nOf + 4 < line.szText.size()) {
            counts.push_back(line.szText.substr(nOf - 1, 6));
        }
    }
    return Joined(counts);
}

std::wstring SAID::Texts() const
{
    return Joined(lines, L" | ", L"nothing", &STATUS_LINE::szText);
}

bool SAID::SaysSomewhere(const std::wstring& szText) const
{
    return std::ranges::find(lines, szText, &STATUS_LINE::szText) != lines.end();
}

std::vector<std::wstring> SAID::LookedAt() const
{
    std::vector<std::wstring> texts;
    for (const STATUS_LINE& line : lines | std::views::drop(1)) {
        if (!line.pixels.empty()) {
            texts.push_back(line.szText);
        }
    }
    return texts;
}

std::vector<std::wstring> SAID::Unpainted() const
{
    // One that is painted late shows what stood there before it, be it a line that nobody saw.
    std::map<std::vector<COLORREF>, std::wstring> shown;
    std::vector<std::wstring> late;
    for (const STATUS_LINE& line : lines) {
        const bool bOthers =
            !line.pixels.empty() && shown.try_emplace(line.pixels, line.szText).first->second != line.szText;
        if (bOthers || !line.bAsWide) {
            late.push_back(line.szText);
        }
    }
    return late;
}

bool SAID::IsGapless() const
{
    return nLongestGap + kInexactGap <= nShortest;
}

CStatusWatch::CStatusWatch(const SIGHT& sight)
    : m_hwndFrame(sight.frame.window.hwnd), m_hwnd(sight.Existing(sight.pPage->nStatusId).hwnd),
      m_rect(sight.Existing(sight.pPage->nStatusId).rect), m_nStart(GetTickCount64()), m_nLastLook(m_nStart)
{
    m_said.nShortest = sight.Number() == 5 ? kPauseInAttempt : kPauseBeforeAdb;
    m_said.lines.push_back({sight.Status(), 0, ScreenColors(m_rect), true});
    m_thread = std::thread([this] { Watch(); });
}

CStatusWatch::~CStatusWatch()
{
    Stop();
}

const SAID& CStatusWatch::End()
{
    Stop();
    Look();
    for (STATUS_LINE& line : m_said.lines) {
        const std::optional<MEASURE> measure = Measure(m_hwnd, "page", line.szText);
        if (measure && !line.pixels.empty()) {
            const LONG nExpected = measure->ink.right - measure->ink.left;
            const LONG nSeen = InkWidth(line.pixels, m_rect.right - m_rect.left);
            line.bAsWide = std::abs(nSeen - nExpected) <= nExpected / kWidthPart;
        }
    }
    return m_said;
}

void CStatusWatch::Stop()
{
    m_bStopped = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void CStatusWatch::Watch()
{
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_HIGHEST);
    while (!m_bStopped) {
        Look();
        Sleep(kBetweenLooksAtLine);
    }
}

// Empty, too, once there is another page.
std::wstring CStatusWatch::Shown() const
{
    return IsWindowVisible(m_hwnd) ? TitleOf(m_hwnd) : std::wstring();
}

void CStatusWatch::Look()
{
    const ULONGLONG nNow = GetTickCount64();
    m_said.nLongestGap = std::max(m_said.nLongestGap, nNow - m_nLastLook);
    m_nLastLook = nNow;
    const std::wstring szText = Shown();
    if (szText.empty()) {
        return;
    }
    STATUS_LINE& last = m_said.lines.back();
    if (szText != last.szText) {
        m_said.lines.push_back({szText, nNow - m_nStart, {}, true});
    } else if (nNow - m_nStart >= last.nMilliseconds + kUntilPainted) {
        LookAtPixels(last);
    }
}

// What is seen last while the line stands is what it came to. A message box, which disables the frame, may cover it.
void CStatusWatch::LookAtPixels(STATUS_LINE& line) const
{
    if (IsWindowEnabled(m_hwndFrame)) {
        std::vector<COLORREF> pixels = ScreenColors(m_rect);
        if (Shown() == line.szText && IsWindowEnabled(m_hwndFrame)) {
            line.pixels = std::move(pixels);
        }
    }
}
