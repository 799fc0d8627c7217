#include "WatchTest.h"

#include <algorithm>
#include <arpa/inet.h>
#include <fstream>
#include <iterator>
#include <random>

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
    Stop();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
    if (HasFailure()) {
        std::cerr << "the watch logged:\n" << m_journal.Text();
    }
}

void CWatchTest::Start()
{
    m_pWatch = std::make_unique<CWatch>(m_options, m_journal.Log());
}

void CWatchTest::Stop()
{
    m_pWatch.reset();
}

void CWatchTest::PairWith(const CComputer& computer)
{
    ASSERT_EQ(computer.Pair(m_pWatch->PairingPort(), m_options.szCode), m_options.szName);
}

CAdbLink CWatchTest::PairedLink()
{
    const CComputer computer("person@home");
    PairWith(computer);
    CAdbLink link(m_pWatch->DebuggingPort());
    EXPECT_EQ(link.Connect(computer), EWelcome::Device);
    return link;
}

std::vector<std::string> CWatchTest::FolderContents() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

std::string CWatchTest::StoredPackage() const
{
    std::ifstream stream(m_options.store, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

ByteVector RandomBytes(std::size_t nSize, unsigned nSeed)
{
    std::mt19937 generator(nSeed);
    ByteVector bytes(nSize);
    std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(generator()); });
    return bytes;
}
