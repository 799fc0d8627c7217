#include "tests/unit/wizard/PageTest.h"

#include "wizard/IntegerEdit.h"

#include <cstring>

using namespace kit;

Lines Status(const std::string& strText)
{
    return {"status \"" + strText + '"'};
}

Lines Told(const std::string& strCaption, const std::string& strText)
{
    return {"box \"" + strText + '"', "of the page, captioned \"" + strCaption + '"'};
}

Lines ToldByNobody(const std::string& strCaption, const std::string& strText)
{
    return {"box \"" + strText + '"', "of nobody, captioned \"" + strCaption + '"'};
}

Lines Ping()
{
    return {"status \"Pinging 192.168.1.100 (1 of 6)\"", "ping 192.168.1.100"};
}

Lines NoAnswer()
{
    Lines lines;
    for (const char ch : {'1', '2', '3', '4', '5', '6'}) {
        lines.push_back(std::string("status \"Pinging 192.168.1.100 (") + ch + " of 6)\"");
        lines.emplace_back("ping 192.168.1.100");
    }
    for (const Lines& end : {Status("Unreachable"), Told("Invalid IP address", Narrow(kNotFound))}) {
        lines.insert(lines.end(), end.begin(), end.end());
    }
    return lines;
}

std::string Attempt(int nAttempt)
{
    return "attempt " + std::to_string(nAttempt) + " of 3";
}

PageTest::PageTest(const Page& page) : m_row(page)
{
    std::memset(&m_data.m_saWatchAddress, 0xA5, sizeof(m_data.m_saWatchAddress));
    SOCKADDR_IN address = MakeAddress(L"192.168.1.100", 43210);
    std::memset(address.sin_zero, 0xA5, sizeof(address.sin_zero));
    std::memcpy(&m_data.m_saWatchAddress, &address, sizeof(address));
    m_saFirst = m_data.m_saWatchAddress;
    WhenBoxShows([this](const Box& box) {
        ++m_nBoxes;
        const bool bOfPage = m_page && box.hwndOwner == m_page->Window();
        const std::string strOwner = bOfPage ? "the page" : box.hwndOwner == nullptr ? "nobody" : "another window";
        Note("of " + strOwner + ", captioned \"" + Narrow(box.strCaption) + '"');
    });
}

void PageTest::ExpectNext(LRESULT nAnswer, const std::vector<AdbRun>& runs, const std::vector<Lines>& course,
                          std::source_location where)
{
    const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "Next, pressed here");
    for (const AdbRun& run : runs) {
        if (run.bExitCode) {
            m_adb.Prints(run.strOutput);
        } else {
            m_adb.PrintsAndHidesItsExitCode(run.strOutput);
        }
    }
    Lines lines;
    for (const Lines& part : course) {
        lines.insert(lines.end(), part.begin(), part.end());
    }
    m_nBoxes = 0;
    Journal().clear();
    EXPECT_EQ(m_page->Notify(PSN_WIZNEXT), nAnswer);
    EXPECT_EQ(Journal(), lines);
    for (; m_nBoxes > 0; --m_nBoxes) {
        EXPECT_EQ(TakeBox(where).nFlags, static_cast<UINT>(MB_OK));
    }
}

void PageTest::ExpectDigitsField(int nEditId, const std::wstring& strFilled,
                                 const REPLACED(SetWindowSubclass) & subclass, size_t nCall)
{
    const HWND hwndEdit = m_page->Control(nEditId);
    EXPECT_EQ(subclass.Arguments(nCall),
              std::tuple(hwndEdit, &CIntegerEdit::SubclassProc, reinterpret_cast<UINT_PTR>(hwndEdit), 0u));
    const std::vector<ControlMessage> limits = m_page->MessagesTo(nEditId, {EM_LIMITTEXT});
    ASSERT_EQ(limits.size(), 1u);
    EXPECT_EQ(limits[0].wParam, strFilled.size());
    EXPECT_EQ(m_page->TextsOf(nEditId), std::vector<std::wstring>{L""});
    m_page->Type(nEditId, L"9a87 65x4321");
    EXPECT_EQ(m_page->Text(nEditId), strFilled);
}

bool PageTest::IsAddressUntouched() const
{
    return std::memcmp(&m_data.m_saWatchAddress, &m_saFirst, sizeof(m_saFirst)) == 0;
}
