// Any bytes as the recipe of a zip archive, so that a small change of the bytes is a change of one thing in the
// archive: a name, a size that lies, a flag, a cut.
#pragma once

#include <cstdint>
#include <span>
#include <string>

// For each entry: its choices (below, or-ed), its name and its content, each as a length in one byte and the bytes,
// then what the choices announce, in the order of the choices. 255 as a length announces two bytes of length
// and one piece, again with its length, that is repeated to fill it. What the recipe's end cuts off is 0.
//
// Before the entries come four bytes: how many bytes are cut off the archive's end, how many entries it claims to
// have beyond those that it has, and by how much it misplaces and missizes its directory; the last three are signed.
enum ARCHIVE_CHOICE : uint8_t
{
    CHOICE_DEFLATED = 1,    // the content is wrapped as deflated data
    CHOICE_METHOD = 2,      // one byte: the method that is claimed
    CHOICE_CRC = 4,         // one byte, added to the check sum
    CHOICE_SIZES = 8,       // four bytes and four more: what is claimed for the compressed and the plain size
    CHOICE_ATTRIBUTES = 16, // the host system in one byte, the external attributes in four
    CHOICE_EXTRA = 32,      // a piece: the extra field of the record
    CHOICE_FLAGS = 64,      // two bytes: the general flags
    CHOICE_HEADER = 128,    // a piece and one byte: the name in the entry's own header, and by how much the record
                            // misplaces that header
};

std::string ArchiveOf(std::span<const uint8_t> recipe);
