// See atlstr.h.
#include "atlstr.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cwchar>
#include <new>
#include <utility>

void AtlThrow(HRESULT hr)
{
    throw CAtlException(hr);
}

// What lies before the characters.
struct CStringW::CHeader
{
    std::atomic<long> nRefs;
    int nLength;
    int nAllocLength;

    PWSTR Characters()
    {
        return reinterpret_cast<PWSTR>(this + 1);
    }
};

namespace {

// The largest length: twice as many units, as bytes and with the header, still fit every integer used here.
constexpr int kMaxLength = 1 << 30;

} // namespace

// What all empty strings without characters of their own point at. It is never freed, so its count is not kept.
PWSTR CStringW::Nil()
{
    struct CNil
    {
        CHeader header;
        WCHAR chNul;
    };
    static_assert(offsetof(CNil, chNul) == sizeof(CHeader));
    static constinit CNil s_nil{};
    return &s_nil.chNul;
}

CStringW::CHeader* CStringW::Header() const
{
    return reinterpret_cast<CHeader*>(m_pszData) - 1;
}

bool CStringW::IsShared() const
{
    return m_pszData == Nil() || Header()->nRefs.load(std::memory_order_relaxed) > 1;
}

CStringW::CStringW() : m_pszData(Nil()) {}

CStringW::CStringW(const CStringW& strSrc) : m_pszData(strSrc.m_pszData)
{
    if (m_pszData != Nil()) {
        Header()->nRefs.fetch_add(1, std::memory_order_relaxed);
    }
}

CStringW::CStringW(CStringW&& strSrc) noexcept : m_pszData(std::exchange(strSrc.m_pszData, Nil())) {}

CStringW::CStringW(PCWSTR pszSrc)
    : CStringW(pszSrc, pszSrc == nullptr ? 0 : static_cast<int>(std::min<size_t>(wcslen(pszSrc), kMaxLength + 1)))
{
}

CStringW::CStringW(PCWSTR pchSrc, int nLength) : CStringW()
{
    if (nLength > 0) {
        wmemcpy(GetBuffer(nLength), pchSrc, static_cast<size_t>(nLength));
        ReleaseBufferSetLength(nLength);
    }
}

CStringW::~CStringW()
{
    if (m_pszData != Nil() && Header()->nRefs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        HeapFree(GetProcessHeap(), 0, Header());
    }
}

CStringW& CStringW::operator=(CStringW strSrc) noexcept
{
    std::swap(m_pszData, strSrc.m_pszData);
    return *this;
}

int CStringW::GetLength() const
{
    return Header()->nLength;
}

void CStringW::Empty()
{
    *this = CStringW();
}

PWSTR CStringW::GetBuffer(int nMinBufferLength)
{
    const int nLength = GetLength();
    if (IsShared() || nMinBufferLength > Header()->nAllocLength) {
        // Half as much again, so that a text made of many small pieces is not moved for each.
        const int nAllocLength = std::max(nMinBufferLength, std::min(nLength + (nLength / 2), kMaxLength));
        const size_t cb = sizeof(CHeader) + ((static_cast<size_t>(nAllocLength) + 1) * sizeof(WCHAR));
        void* const pMemory = nAllocLength > kMaxLength ? nullptr : HeapAlloc(GetProcessHeap(), 0, cb);
        if (pMemory == nullptr) {
            AtlThrow(E_OUTOFMEMORY);
        }
        CStringW strNew;
        strNew.m_pszData = (new (pMemory) CHeader{1, nLength, nAllocLength})->Characters();
        wmemcpy(strNew.m_pszData, m_pszData, static_cast<size_t>(nLength) + 1);
        *this = std::move(strNew);
    }
    return m_pszData;
}

void CStringW::ReleaseBufferSetLength(int nNewLength)
{
    if (nNewLength < 0 || nNewLength > Header()->nAllocLength) {
        AtlThrow(E_INVALIDARG);
    }
    Header()->nLength = nNewLength;
    m_pszData[nNewLength] = L'\0';
}

void CStringW::AppendChar(WCHAR ch)
{
    const int nLength = GetLength();
    GetBuffer(nLength + 1)[nLength] = ch;
    ReleaseBufferSetLength(nLength + 1);
}

// The text is made in new characters: the old ones may be among the arguments. The functions are the runtime's own:
// the compiler's library has others, for which %s is a narrow string.
void CStringW::FormatArguments(PCWSTR pszFormat, ...) // NOLINT(cert-dcl50-cpp): printf's own kind
{
    va_list args;
    va_start(args, pszFormat);
    const int nLength = _vscwprintf(pszFormat, args);
    va_end(args);
    if (nLength < 0) {
        AtlThrow(E_INVALIDARG);
    }
    CStringW strText;
    const PWSTR pszText = strText.GetBuffer(nLength);
    va_start(args, pszFormat);
    _vsnwprintf(pszText, static_cast<size_t>(nLength) + 1, pszFormat, args);
    va_end(args);
    strText.ReleaseBufferSetLength(nLength);
    *this = std::move(strText);
}

BOOL CStringW::LoadStringW(UINT nID)
{
    // For a buffer of no size the function stores a pointer to the text in the mapped module, which no NUL ends.
    PCWSTR pchText = nullptr;
    const int nLength = ::LoadStringW(GetModuleHandleW(nullptr), nID, reinterpret_cast<PWSTR>(&pchText), 0);
    if (nLength <= 0) {
        return FALSE;
    }
    *this = CStringW(pchText, nLength);
    return TRUE;
}
