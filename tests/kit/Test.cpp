#include "tests/kit/Test.h"

#include <stdexcept>

namespace kit {

Test::Test()
    : m_messageBox(Quietly([this](auto... args) { return OnMessageBox(args...); })),
      m_exitProcess(Quietly([this](UINT nExitCode) { OnExitProcess(nExitCode); })),
      m_sleep(Quietly([this](DWORD dwMilliseconds) { OnSleep(dwMilliseconds); }))
{
    Journal().clear();
}

Test::~Test()
{
    for (const Box& box : m_boxes) {
        ADD_FAILURE() << "nobody expected the box \"" << Narrow(box.strText) << "\", captioned \""
                      << Narrow(box.strCaption) << '"';
    }
}

void Test::ExpectBox(const std::wstring& strText, const std::wstring& strCaption, std::source_location where)
{
    ExpectBox(nullptr, strText, strCaption, where);
}

void Test::ExpectBox(HWND hwndOwner, const std::wstring& strText, const std::wstring& strCaption,
                     std::source_location where)
{
    const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "the box expected here");
    if (m_boxes.empty()) {
        ADD_FAILURE() << "no box was shown";
        return;
    }
    const Box box = TakeBox(where);
    EXPECT_EQ(box.strText, strText);
    EXPECT_EQ(box.strCaption, strCaption);
    EXPECT_EQ(box.hwndOwner, hwndOwner);
    EXPECT_EQ(box.nFlags, static_cast<UINT>(MB_OK));
}

Box Test::TakeBox(std::source_location where)
{
    if (m_boxes.empty()) {
        const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "the box asked for here");
        ADD_FAILURE() << "no box was shown";
        return {};
    }
    Box box = std::move(m_boxes.front());
    m_boxes.pop_front();
    return box;
}

void Test::WhenBoxShows(std::function<void(const Box&)> action)
{
    m_onBox = std::move(action);
}

std::optional<UINT> Test::ExitCodeOf(std::function<void()> body)
{
    const auto run = [](void* pBody) -> DWORD {
        (*static_cast<std::function<void()>*>(pBody))();
        return 0;
    };
    m_exitCode.reset();
    const HANDLE hThread = unreplaced::CreateThread(nullptr, 0, run, &body, CREATE_SUSPENDED, &g_dwBodyThread);
    if (hThread == nullptr) {
        throw std::runtime_error("no thread for the body");
    }
    unreplaced::ResumeThread(hThread);
    unreplaced::WaitForSingleObject(hThread, INFINITE);
    g_dwBodyThread = 0;
    unreplaced::CloseHandle(hThread);
    return m_exitCode;
}

int Test::OnMessageBox(HWND hwndOwner, PCWSTR pszText, PCWSTR pszCaption, UINT nFlags)
{
    const Box box{hwndOwner, Kept(pszText), Kept(pszCaption), nFlags};
    Note("box \"" + Narrow(box.strText) + '"');
    m_boxes.push_back(box);
    if (m_onBox) {
        m_onBox(box);
    }
    return IDOK;
}

void Test::OnExitProcess(UINT nExitCode)
{
    Note("exit " + std::to_string(nExitCode));
    if (unreplaced::GetCurrentThreadId() == g_dwBodyThread) {
        m_exitCode = nExitCode;
        unreplaced::ExitThread(0);
    }
    // The caller counts on not coming back. The framework catches this, or it ends the program.
    throw std::runtime_error("the process was ended with exit code " + std::to_string(nExitCode) +
                             " where nobody expected it");
}

void Test::OnSleep(DWORD dwMilliseconds)
{
    Note("sleep " + std::to_string(dwMilliseconds));
    m_sleeps.push_back(dwMilliseconds);
}

std::string Narrow(const std::wstring& str)
{
    const int cch = static_cast<int>(str.size());
    std::string strNarrow(str.size() * 3, '\0');
    strNarrow.resize(static_cast<size_t>(unreplaced::WideCharToMultiByte(
        CP_UTF8, 0, str.data(), cch, strNarrow.data(), static_cast<int>(strNarrow.size()), nullptr, nullptr)));
    return strNarrow;
}

std::wstring SystemDescription(DWORD dwCode)
{
    WCHAR szText[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, dwCode, 0, szText, 512,
                   nullptr);
    return szText;
}

} // namespace kit
