#include "PackageFile.h"

#include <atomic>
#include <format>

namespace {

std::filesystem::path UnfinishedName(const std::filesystem::path& store)
{
    static std::atomic<unsigned> s_nLast = 0;
    return std::format("{}.part{}", store.string(), ++s_nLast);
}

void Require(bool bDone, const std::filesystem::path& file)
{
    if (!bDone) {
        throw CDiskError(std::format("{} cannot be written", file.string()));
    }
}

} // namespace

CPackageFile::CPackageFile(std::filesystem::path store)
    : m_store(std::move(store)), m_unfinished(UnfinishedName(m_store)),
      m_stream(m_unfinished, std::ios::binary | std::ios::trunc)
{
    Require(m_stream.is_open(), m_unfinished);
}

CPackageFile::~CPackageFile()
{
    // Keep has renamed it away, or it is not wanted.
    std::error_code ignored;
    std::filesystem::remove(m_unfinished, ignored);
}

void CPackageFile::Append(ByteView bytes)
{
    const std::string_view text = TextOf(bytes);
    m_stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    Require(m_stream.good(), m_unfinished);
}

void CPackageFile::Keep()
{
    m_stream.close();
    Require(m_stream.good(), m_unfinished);
    std::error_code error;
    std::filesystem::rename(m_unfinished, m_store, error);
    Require(!error, m_store);
}
