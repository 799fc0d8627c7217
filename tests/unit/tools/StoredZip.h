// A zip archive made by hand, so that its entries can say anything. Nothing is compressed.
#pragma once

#include <miniz.h>

#include <cstdint>
#include <string>
#include <vector>

struct ZipEntry
{
    std::string strName;
    std::string strText = {};
    uint16_t nVersionMadeBy = 0; // high byte: the host system
    uint32_t nAttributes = 0;
    uint32_t nCrcError = 0;
    bool bSizeMissing = false; // the record announces a size elsewhere and does not give it
};

class StoredZip
{
public:
    explicit StoredZip(const std::vector<ZipEntry>& entries)
    {
        for (const ZipEntry& entry : entries) {
            const auto nOffset = static_cast<uint32_t>(m_bytes.size());
            Put32(m_bytes, 0x04034b50);
            Put16(m_bytes, 20);
            PutCommon(m_bytes, entry, false);
            m_bytes += entry.strName + entry.strText;
            PutRecord(entry, nOffset);
        }
        const auto nRecords = static_cast<uint32_t>(m_bytes.size());
        m_bytes += m_records;
        Put32(m_bytes, 0x06054b50);
        Put32(m_bytes, 0);
        Put16(m_bytes, static_cast<uint16_t>(entries.size()));
        Put16(m_bytes, static_cast<uint16_t>(entries.size()));
        Put32(m_bytes, static_cast<uint32_t>(m_records.size()));
        Put32(m_bytes, nRecords);
        Put16(m_bytes, 0);
    }

    const std::string& Bytes() const
    {
        return m_bytes;
    }

private:
    static void Put16(std::string& str, uint16_t n)
    {
        str += static_cast<char>(n & 0xFF);
        str += static_cast<char>(n >> 8);
    }

    static void Put32(std::string& str, uint32_t n)
    {
        Put16(str, static_cast<uint16_t>(n & 0xFFFF));
        Put16(str, static_cast<uint16_t>(n >> 16));
    }

    // Flags to extra length, as they stand in both the entry's own header and its record.
    static void PutCommon(std::string& str, const ZipEntry& entry, bool bRecord)
    {
        const auto* pText = reinterpret_cast<const unsigned char*>(entry.strText.data());
        const auto nCrc = static_cast<uint32_t>(mz_crc32(MZ_CRC32_INIT, pText, entry.strText.size()));
        const auto nSize = static_cast<uint32_t>(entry.strText.size());
        const bool bSizeMissing = bRecord && entry.bSizeMissing;
        Put16(str, 0);
        Put16(str, 0);
        Put32(str, 0x00210000); // the first of January 1980
        Put32(str, nCrc ^ entry.nCrcError);
        Put32(str, bSizeMissing ? 0xFFFFFFFF : nSize);
        Put32(str, bSizeMissing ? 0xFFFFFFFF : nSize);
        Put16(str, static_cast<uint16_t>(entry.strName.size()));
        Put16(str, bSizeMissing ? 4 : 0);
    }

    void PutRecord(const ZipEntry& entry, uint32_t nOffset)
    {
        Put32(m_records, 0x02014b50);
        Put16(m_records, entry.nVersionMadeBy);
        Put16(m_records, 20);
        PutCommon(m_records, entry, true);
        Put16(m_records, 0);
        Put16(m_records, 0);
        Put16(m_records, 0);
        Put32(m_records, entry.nAttributes);
        Put32(m_records, nOffset);
        m_records += entry.strName;
        if (entry.bSizeMissing) {
            Put32(m_records, 1); // an empty field for the sizes
        }
    }

    std::string m_bytes;
    std::string m_records;
};
