#include "tests/fuzz/ArchiveRecipe.h"

#include <miniz.h>

#include <algorithm>

namespace {

constexpr size_t kMaxEntries = 64;

class Reader
{
public:
    explicit Reader(std::span<const uint8_t> bytes) : m_rest(bytes) {}

    bool IsAtEnd() const
    {
        return m_rest.empty();
    }

    // A number of so many bytes, the low one first.
    uint32_t Number(size_t nBytes)
    {
        uint32_t n = 0;
        for (size_t i = 0; i < nBytes && !m_rest.empty(); ++i) {
            n |= static_cast<uint32_t>(m_rest.front()) << (8 * i);
            m_rest = m_rest.subspan(1);
        }
        return n;
    }

    uint32_t Signed()
    {
        return static_cast<uint32_t>(static_cast<int8_t>(Number(1)));
    }

    std::string Piece()
    {
        const uint32_t nLength = Number(1);
        if (nLength < 255) {
            return Bytes(nLength);
        }
        const uint32_t nFull = Number(2);
        const std::string piece = Bytes(Number(1));
        std::string full;
        while (!piece.empty() && full.size() < nFull) {
            full.append(piece, 0, nFull - full.size());
        }
        return full;
    }

private:
    std::string Bytes(size_t nBytes)
    {
        const auto taken = m_rest.first(std::min(nBytes, m_rest.size()));
        m_rest = m_rest.subspan(taken.size());
        return {taken.begin(), taken.end()};
    }

    std::span<const uint8_t> m_rest;
};

struct Field
{
    size_t nBytes;
    uint32_t nValue;
};

std::string Fields(std::initializer_list<Field> fields)
{
    std::string bytes;
    for (const Field& field : fields) {
        for (size_t i = 0; i < field.nBytes; ++i) {
            bytes += static_cast<char>((field.nValue >> (8 * i)) & 0xFF);
        }
    }
    return bytes;
}

// Deflated data that is right though nothing became smaller: stored blocks.
std::string Deflated(const std::string& plain)
{
    std::string bytes;
    size_t n = 0;
    do {
        const auto nBlock = static_cast<uint32_t>(std::min<size_t>(plain.size() - n, 0xFFFF));
        const bool bLast = n + nBlock == plain.size();
        bytes += Fields({{1, bLast ? 1U : 0U}, {2, nBlock}, {2, ~nBlock}}) + plain.substr(n, nBlock);
        n += nBlock;
    } while (n < plain.size());
    return bytes;
}

class Writer
{
public:
    void Add(Reader& recipe)
    {
        const uint32_t nChoices = recipe.Number(1);
        const auto chosen = [&](ARCHIVE_CHOICE choice) { return (nChoices & choice) != 0; };
        const std::string name = recipe.Piece();
        const std::string plain = recipe.Piece();
        const std::string content = chosen(CHOICE_DEFLATED) ? Deflated(plain) : plain;
        const uint32_t nMethod = chosen(CHOICE_METHOD) ? recipe.Number(1) : (chosen(CHOICE_DEFLATED) ? 8 : 0);
        auto nCrc = static_cast<uint32_t>(
            mz_crc32(MZ_CRC32_INIT, reinterpret_cast<const unsigned char*>(plain.data()), plain.size()));
        nCrc += chosen(CHOICE_CRC) ? recipe.Number(1) : 0;
        const bool bLies = chosen(CHOICE_SIZES);
        const uint32_t nCompressed = bLies ? recipe.Number(4) : static_cast<uint32_t>(content.size());
        const uint32_t nPlain = bLies ? recipe.Number(4) : static_cast<uint32_t>(plain.size());
        const uint32_t nHost = chosen(CHOICE_ATTRIBUTES) ? recipe.Number(1) : 0;
        const uint32_t nAttributes = chosen(CHOICE_ATTRIBUTES) ? recipe.Number(4) : 0;
        const std::string extra = chosen(CHOICE_EXTRA) ? recipe.Piece() : "";
        const uint32_t nFlags = chosen(CHOICE_FLAGS) ? recipe.Number(2) : 0;
        const std::string headerName = chosen(CHOICE_HEADER) ? recipe.Piece() : name;
        const uint32_t nMisplaced = chosen(CHOICE_HEADER) ? recipe.Signed() : 0;

        const auto nOffset = static_cast<uint32_t>(m_bytes.size());
        const auto common = [&](const std::string& strName, size_t nExtra) {
            return Fields({{2, 20},
                           {2, nFlags},
                           {2, nMethod},
                           {4, 0x00210000}, // the first of January 1980
                           {4, nCrc},
                           {4, nCompressed},
                           {4, nPlain},
                           {2, static_cast<uint32_t>(strName.size())},
                           {2, static_cast<uint32_t>(nExtra)}});
        };
        m_bytes += Fields({{4, 0x04034B50}}) + common(headerName, 0) + headerName + content;
        m_records += Fields({{4, 0x02014B50}, {1, 20}, {1, nHost}}) + common(name, extra.size()) +
                     Fields({{4, 0}, {2, 0}, {4, nAttributes}, {4, nOffset + nMisplaced}}) + name + extra;
        ++m_nEntries;
    }

    std::string Finish(uint32_t nMoreEntries, uint32_t nMisplaced, uint32_t nMissized)
    {
        const auto nRecords = static_cast<uint32_t>(m_bytes.size());
        const uint32_t nEntries = m_nEntries + nMoreEntries;
        return m_bytes + m_records +
               Fields({{4, 0x06054B50},
                       {4, 0},
                       {2, nEntries},
                       {2, nEntries},
                       {4, static_cast<uint32_t>(m_records.size()) + nMissized},
                       {4, nRecords + nMisplaced},
                       {2, 0}});
    }

    uint32_t Entries() const
    {
        return m_nEntries;
    }

private:
    std::string m_bytes;
    std::string m_records;
    uint32_t m_nEntries = 0;
};

} // namespace

std::string ArchiveOf(std::span<const uint8_t> recipe)
{
    Reader reader(recipe);
    const uint32_t nCut = reader.Number(1);
    const uint32_t nMoreEntries = reader.Signed();
    const uint32_t nMisplaced = reader.Signed();
    const uint32_t nMissized = reader.Signed();
    Writer writer;
    while (!reader.IsAtEnd() && writer.Entries() < kMaxEntries) {
        writer.Add(reader);
    }
    std::string archive = writer.Finish(nMoreEntries, nMisplaced, nMissized);
    archive.resize(archive.size() - std::min<size_t>(nCut, archive.size()));
    return archive;
}
