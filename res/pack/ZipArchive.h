// A zip archive in memory, written and read back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

struct CMember
{
    std::string m_name;
    Bytes m_data;
};

// The plainest archive that a zip reader knows: every member deflated, as small as can be had in reasonable time,
// sizes and checksum in front of its data, no extra fields, no comment, no attributes, one fixed date. The same
// members give the same bytes wherever and whenever it runs.
//
// Throws std::runtime_error for what such an archive cannot hold: four gigabytes, or a name that is empty or too long.
Bytes WriteArchive(const std::vector<CMember>& members);

// Reads an archive with the reader that the installer has, and throws std::runtime_error unless it holds exactly these
// members in this order, all of them deflated.
void VerifyArchive(const Bytes& archive, const std::vector<CMember>& members);
