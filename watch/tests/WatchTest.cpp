#include "WatchTest.h"

#include <arpa/inet.h>
#include <fstream>
#include <iterator>

CWatchTest::CWatchTest()
{
    std::string szFolder = (std::filesystem::temp_directory_path() / "watch-test.XXXXXX").string();
    if (!mkdtemp(szFolder.data())) {
        throw std::runtime_error("mkdtemp");
    }
    m_folder = szFolder;
    inet_pton(AF_INET, "127.0.0.1", &m_options.address);
    m_options.szCode = "123456";
    m_options.store = m_folder / "stored.apk";
    m_options.replies = {"Success"};
}

CWatchTest::~CWatchTest()
{
    m_pWatch.reset();
    std::filesystem::remove_all(m_folder);
    if (HasFailure()) {
        std::cerr << "the watch logged:\n" << m_journal.Text();
    }
}

void CWatchTest::Start()
{
    m_pWatch.reset();
    m_pWatch = std::make_unique<CWatch>(m_options, m_journal.Log());
}

void CWatchTest::PairWith(const CComputer& computer)
{
    EXPECT_EQ(computer.Pair(m_pWatch->PairingPort(), m_options.szCode), m_options.szName);
}

CAdbLink CWatchTest::Link() const
{
    return CAdbLink(m_pWatch->DebuggingPort());
}

CAdbLink CWatchTest::PairedLink()
{
    const CComputer computer("person@home");
    PairWith(computer);
    CAdbLink link = Link();
    link.Connect(computer);
    return link;
}

std::string CWatchTest::StoredPackage() const
{
    std::ifstream stream(m_options.store, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
