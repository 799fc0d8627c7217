#include "RecordInput.h"

#include <algorithm>
#include <cerrno>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

namespace {

// A record of TLS: its type, two bytes of the version, two of the size of what follows, the highest first.
constexpr std::size_t HEADER_SIZE = 5;

class CRecordInput
{
public:
    CRecordInput(int fd, ByteView announcement) : m_fd(fd), m_announcement(announcement.begin(), announcement.end()) {}

    // As a BIO's read: the number of bytes, 0 at the end of the connection, -1 where it fails or would block.
    int Read(BIO* bio, std::span<std::uint8_t> buffer)
    {
        if (m_nLeft == 0) {
            const int nResult = BeginRecord(bio);
            if (nResult <= 0) {
                return nResult;
            }
        }
        if (!m_head.empty()) {
            const std::size_t nSize = std::min(buffer.size(), m_head.size());
            std::copy_n(m_head.begin(), nSize, buffer.begin());
            m_head.erase(m_head.begin(), m_head.begin() + static_cast<std::ptrdiff_t>(nSize));
            m_nLeft -= nSize;
            return static_cast<int>(nSize);
        }
        const int nResult = Receive(bio, buffer.first(std::min(buffer.size(), m_nLeft)));
        m_nLeft -= static_cast<std::size_t>(std::max(nResult, 0));
        return nResult;
    }

private:
    // Reads the header of the next record, and the announcement where it stands before it.
    int BeginRecord(BIO* bio)
    {
        while (m_head.size() < HeadSize()) {
            std::vector<std::uint8_t> bytes(HeadSize() - m_head.size());
            const int nResult = Receive(bio, bytes);
            if (nResult <= 0) {
                return nResult;
            }
            m_head.insert(m_head.end(), bytes.begin(), bytes.begin() + nResult);
            if (IsAnnouncement() && m_head.size() == m_announcement.size()) {
                if (m_head != m_announcement) {
                    OPENSSL_PUT_ERROR(SSL, SSL_R_UNEXPECTED_MESSAGE);
                    return -1;
                }
                m_head.clear();
                m_announcement.clear();
            }
        }
        m_nLeft = HEADER_SIZE + (std::size_t{m_head[3]} << 8 | m_head[4]);
        return 1;
    }

    bool IsAnnouncement() const
    {
        return !m_announcement.empty() && !m_head.empty() && m_head.front() == m_announcement.front();
    }

    // How much it takes to tell what comes, and then to have it whole.
    std::size_t HeadSize() const
    {
        if (m_head.empty()) {
            return 1;
        }
        return IsAnnouncement() ? m_announcement.size() : HEADER_SIZE;
    }

    int Receive(BIO* bio, std::span<std::uint8_t> buffer) const
    {
        const auto nResult = recv(m_fd, buffer.data(), buffer.size(), 0);
        if (nResult < 0 && (errno == EAGAIN || errno == EINTR)) {
            BIO_set_retry_read(bio);
        }
        return static_cast<int>(nResult);
    }

    int m_fd;
    ByteVector m_announcement; // empty once it was passed over
    ByteVector m_head;         // what was read of a header and not yet handed on
    std::size_t m_nLeft = 0;   // bytes of the record that are not yet handed on
};

int ReadRecords(BIO* bio, char* pBuffer, int nSize)
{
    BIO_clear_retry_flags(bio);
    auto* input = static_cast<CRecordInput*>(BIO_get_data(bio));
    return input->Read(bio, {reinterpret_cast<std::uint8_t*>(pBuffer), static_cast<std::size_t>(nSize)});
}

int Close(BIO* bio)
{
    delete static_cast<CRecordInput*>(BIO_get_data(bio));
    return 1;
}

const BIO_METHOD* RecordInputMethod()
{
    static BIO_METHOD* const method = [] {
        BIO_METHOD* own = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "records");
        BIO_meth_set_read(own, ReadRecords);
        BIO_meth_set_destroy(own, Close);
        return own;
    }();
    return method;
}

} // namespace

bssl::UniquePtr<BIO> OpenRecordInput(int fd, ByteView announcement)
{
    bssl::UniquePtr<BIO> bio(BIO_new(RecordInputMethod()));
    if (bio) {
        BIO_set_data(bio.get(), new CRecordInput(fd, announcement));
        BIO_set_init(bio.get(), 1);
    }
    return bio;
}
