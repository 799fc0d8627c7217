#include "RecordInput.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <sys/socket.h>

namespace {

// A record of TLS: its type, two bytes of the version, two of the size of what follows, the highest first.
constexpr std::size_t RECORD_HEADER_SIZE = 5;

// No type of a record is a letter, and the announcement is a message without payload.
constexpr std::uint8_t ANNOUNCEMENT_BEGINNING = 'S';
constexpr std::size_t ANNOUNCEMENT_SIZE = 24;

struct SRecordInput
{
    int fd;
    std::size_t nLeft = 0; // bytes of the record that are not yet handed on
};

// The size of the record that comes next, header included; 0 when the connection ends instead.
std::size_t SizeOfNextRecord(int fd)
{
    std::array<std::uint8_t, RECORD_HEADER_SIZE> header{};
    while (recv(fd, header.data(), header.size(), MSG_PEEK | MSG_WAITALL) == std::ssize(header)) {
        if (header[0] != ANNOUNCEMENT_BEGINNING) {
            return header.size() + (std::size_t{header[3]} << 8 | header[4]);
        }
        std::array<std::uint8_t, ANNOUNCEMENT_SIZE> passedOver{};
        recv(fd, passedOver.data(), passedOver.size(), MSG_WAITALL);
    }
    return 0;
}

int ReadRecords(BIO* bio, char* pBuffer, int nSize)
{
    auto* input = static_cast<SRecordInput*>(BIO_get_data(bio));
    if (input->nLeft == 0) {
        input->nLeft = SizeOfNextRecord(input->fd);
    }
    const auto nRead = recv(input->fd, pBuffer, std::min(static_cast<std::size_t>(nSize), input->nLeft), 0);
    input->nLeft -= static_cast<std::size_t>(std::max<ssize_t>(nRead, 0));
    return static_cast<int>(nRead);
}

int Close(BIO* bio)
{
    delete static_cast<SRecordInput*>(BIO_get_data(bio));
    return 1;
}

} // namespace

bssl::UniquePtr<BIO> OpenRecordInput(int fd)
{
    static BIO_METHOD* const s_method = [] {
        BIO_METHOD* method = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "records");
        BIO_meth_set_read(method, ReadRecords);
        BIO_meth_set_destroy(method, Close);
        return method;
    }();
    bssl::UniquePtr<BIO> bio(BIO_new(s_method));
    BIO_set_data(bio.get(), new SRecordInput{fd});
    BIO_set_init(bio.get(), 1);
    return bio;
}
