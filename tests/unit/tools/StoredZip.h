// A zip archive made by hand, so that its entries can say anything. Nothing is compressed.
#pragma once

#include <miniz.h>

#include <cstdint>
#include <initializer_list>
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

struct ZipField
{
    int cb;
    size_t nValue;
};

inline std::string ZipBytes(std::initializer_list<ZipField> fields)
{
    std::string strBytes;
    for (const ZipField& field : fields) {
        for (int n = 0; n < field.cb; ++n) {
            strBytes += static_cast<char>((field.nValue >> (8 * n)) & 0xFF);
        }
    }
    return strBytes;
}

// Flags to extra length, as they stand in both an entry's own header and its record.
inline std::string ZipCommon(const ZipEntry& entry, size_t cbText, size_t cbExtra)
{
    const auto* pText = reinterpret_cast<const unsigned char*>(entry.strText.data());
    const size_t nCrc = mz_crc32(MZ_CRC32_INIT, pText, entry.strText.size()) ^ entry.nCrcError;
    constexpr size_t nFirstOfJanuary1980 = 0x00210000;
    return ZipBytes({{4, 0}, {4, nFirstOfJanuary1980}, {4, nCrc}, {4, cbText}, {4, cbText}}) +
           ZipBytes({{2, entry.strName.size()}, {2, cbExtra}});
}

inline std::string StoredZip(const std::vector<ZipEntry>& entries)
{
    std::string strFiles;
    std::string strRecords;
    for (const ZipEntry& entry : entries) {
        const size_t nOffset = strFiles.size();
        const size_t cbText = entry.strText.size();
        strFiles += ZipBytes({{4, 0x04034b50}, {2, 20}}) + ZipCommon(entry, cbText, 0) + entry.strName + entry.strText;
        strRecords += ZipBytes({{4, 0x02014b50}, {2, entry.nVersionMadeBy}, {2, 20}});
        strRecords += entry.bSizeMissing ? ZipCommon(entry, 0xFFFFFFFF, 4) : ZipCommon(entry, cbText, 0);
        strRecords += ZipBytes({{6, 0}, {4, entry.nAttributes}, {4, nOffset}}) + entry.strName;
        strRecords += entry.bSizeMissing ? ZipBytes({{4, 1}}) : ""; // an empty field for the sizes
    }
    return strFiles + strRecords + ZipBytes({{4, 0x06054b50}, {4, 0}, {2, entries.size()}, {2, entries.size()}}) +
           ZipBytes({{4, strRecords.size()}, {4, strFiles.size()}, {2, 0}});
}
