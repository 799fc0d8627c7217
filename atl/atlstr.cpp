// See atlstr.h.
#include "atlstr.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cwchar>
#include <cwctype>
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

int CheckedSum(int nLength1, int nLength2)
{
    if (nLength2 > kMaxLength - nLength1) {
        AtlThrow(E_OUTOFMEMORY);
    }
    return nLength1 + nLength2;
}

int LengthOf(PCWSTR psz)
{
    return psz == nullptr ? 0 : static_cast<int>(std::min<size_t>(wcslen(psz), kMaxLength + 1));
}

void CopyUnits(PWSTR pchTo, PCWSTR pchFrom, int nCount)
{
    wmemmove(pchTo, pchFrom, static_cast<size_t>(nCount));
}

// Memory for nLength units, their NUL and what lies before them; pOld is moved there if given.
void* AllocateFor(size_t cbHeader, int nLength, void* pOld)
{
    if (nLength > kMaxLength) {
        AtlThrow(E_OUTOFMEMORY);
    }
    const size_t cb = cbHeader + ((static_cast<size_t>(nLength) + 1) * sizeof(WCHAR));
    void* const pNew =
        pOld == nullptr ? HeapAlloc(GetProcessHeap(), 0, cb) : HeapReAlloc(GetProcessHeap(), 0, pOld, cb);
    if (pNew == nullptr) {
        AtlThrow(E_OUTOFMEMORY);
    }
    return pNew;
}

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

CStringW::CStringW(const CStringW& strSrc) : CStringW()
{
    *this = strSrc;
}

CStringW::CStringW(CStringW&& strSrc) noexcept : CStringW()
{
    std::swap(m_pszData, strSrc.m_pszData);
}

CStringW::CStringW(PCWSTR pszSrc) : CStringW()
{
    SetString(pszSrc);
}

CStringW::CStringW(PCWSTR pchSrc, int nLength) : CStringW()
{
    SetString(pchSrc, nLength);
}

CStringW::CStringW(WCHAR ch, int nRepeat) : CStringW()
{
    if (nRepeat > 0) {
        wmemset(GetBufferSetLength(nRepeat), ch, static_cast<size_t>(nRepeat));
    }
}

CStringW::~CStringW()
{
    Release();
}

// Leaves m_pszData dangling.
void CStringW::Release()
{
    if (m_pszData != Nil() && Header()->nRefs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        HeapFree(GetProcessHeap(), 0, Header());
    }
}

// Strings that share are the same in every respect, a string and itself among them.
CStringW& CStringW::operator=(const CStringW& strSrc) // NOLINT(cert-oop54-cpp)
{
    if (m_pszData != strSrc.m_pszData) {
        if (strSrc.m_pszData != Nil()) {
            strSrc.Header()->nRefs.fetch_add(1, std::memory_order_relaxed);
        }
        Release();
        m_pszData = strSrc.m_pszData;
    }
    return *this;
}

CStringW& CStringW::operator=(CStringW&& strSrc) noexcept
{
    if (this != &strSrc) {
        Release();
        m_pszData = std::exchange(strSrc.m_pszData, Nil());
    }
    return *this;
}

CStringW& CStringW::operator=(PCWSTR pszSrc)
{
    SetString(pszSrc);
    return *this;
}

CStringW& CStringW::operator=(WCHAR ch)
{
    SetString(&ch, 1);
    return *this;
}

// Makes the characters this string's own, with room for nLength units; the text stays.
void CStringW::Reserve(int nLength)
{
    if (nLength < 0) {
        AtlThrow(E_INVALIDARG);
    }
    CHeader* const pOld = Header();
    if (IsShared()) {
        const int nAllocLength = std::max(nLength, pOld->nLength);
        auto* const pNew =
            new (AllocateFor(sizeof(CHeader), nAllocLength, nullptr)) CHeader{1, pOld->nLength, nAllocLength};
        CopyUnits(pNew->Characters(), m_pszData, pOld->nLength + 1);
        Release();
        m_pszData = pNew->Characters();
    } else if (nLength > pOld->nAllocLength) {
        // Half as much again, so that a text made of many small pieces is not moved for each.
        const int nAllocLength = std::max(nLength, std::min(pOld->nAllocLength / 2 * 3, kMaxLength));
        auto* const pNew = static_cast<CHeader*>(AllocateFor(sizeof(CHeader), nAllocLength, pOld));
        pNew->nAllocLength = nAllocLength;
        m_pszData = pNew->Characters();
    }
}

void CStringW::SetLength(int nLength)
{
    if (nLength < 0 || nLength > Header()->nAllocLength) {
        AtlThrow(E_INVALIDARG);
    }
    Header()->nLength = nLength;
    m_pszData[nLength] = L'\0';
}

// Pointers into different memory have no order of their own, addresses have.
bool CStringW::Holds(PCWSTR pch) const
{
    const auto address = reinterpret_cast<UINT_PTR>(pch);
    const auto begin = reinterpret_cast<UINT_PTR>(m_pszData);
    return address >= begin && address <= begin + static_cast<UINT_PTR>(GetLength()) * sizeof(WCHAR);
}

void CStringW::SetString(PCWSTR pszSrc)
{
    SetString(pszSrc, LengthOf(pszSrc));
}

void CStringW::SetString(PCWSTR pchSrc, int nLength)
{
    if (nLength == 0) {
        Empty();
        return;
    }
    if (pchSrc == nullptr) {
        AtlThrow(E_INVALIDARG);
    }
    const bool bOwnPart = Holds(pchSrc);
    const ptrdiff_t iOwnPart = bOwnPart ? pchSrc - m_pszData : 0;
    Reserve(nLength);
    CopyUnits(m_pszData, bOwnPart ? m_pszData + iOwnPart : pchSrc, nLength);
    SetLength(nLength);
}

int CStringW::GetLength() const
{
    return Header()->nLength;
}

int CStringW::GetAllocLength() const
{
    return Header()->nAllocLength;
}

void CStringW::Empty()
{
    Release();
    m_pszData = Nil();
}

void CStringW::Preallocate(int nLength)
{
    Reserve(nLength);
}

WCHAR CStringW::GetAt(int iChar) const
{
    if (iChar < 0 || iChar > GetLength()) {
        AtlThrow(E_INVALIDARG);
    }
    return m_pszData[iChar];
}

void CStringW::SetAt(int iChar, WCHAR ch)
{
    if (iChar < 0 || iChar >= GetLength()) {
        AtlThrow(E_INVALIDARG);
    }
    GetBuffer()[iChar] = ch;
}

PWSTR CStringW::GetBuffer()
{
    return GetBuffer(GetLength());
}

PWSTR CStringW::GetBuffer(int nMinBufferLength)
{
    Reserve(nMinBufferLength);
    return m_pszData;
}

PWSTR CStringW::GetBufferSetLength(int nLength)
{
    Reserve(nLength);
    SetLength(nLength);
    return m_pszData;
}

void CStringW::ReleaseBuffer(int nNewLength)
{
    if (nNewLength == -1) {
        nNewLength = static_cast<int>(wcsnlen(m_pszData, static_cast<size_t>(GetAllocLength())));
    }
    SetLength(nNewLength);
}

void CStringW::ReleaseBufferSetLength(int nNewLength)
{
    SetLength(nNewLength);
}

void CStringW::Truncate(int nNewLength)
{
    if (nNewLength < GetLength()) {
        Reserve(nNewLength);
        SetLength(nNewLength);
    }
}

void CStringW::Append(PCWSTR pszSrc)
{
    Append(pszSrc, LengthOf(pszSrc));
}

void CStringW::Append(PCWSTR pchSrc, int nLength)
{
    if (nLength == 0) {
        return;
    }
    if (pchSrc == nullptr || nLength < 0) {
        AtlThrow(E_INVALIDARG);
    }
    const int nOldLength = GetLength();
    const bool bOwnPart = Holds(pchSrc);
    const ptrdiff_t iOwnPart = bOwnPart ? pchSrc - m_pszData : 0;
    Reserve(CheckedSum(nOldLength, nLength));
    CopyUnits(m_pszData + nOldLength, bOwnPart ? m_pszData + iOwnPart : pchSrc, nLength);
    SetLength(nOldLength + nLength);
}

void CStringW::Append(const CStringW& strSrc)
{
    Append(strSrc.m_pszData, strSrc.GetLength());
}

void CStringW::AppendChar(WCHAR ch)
{
    Append(&ch, 1);
}

CStringW& CStringW::operator+=(const CStringW& strSrc)
{
    Append(strSrc);
    return *this;
}

CStringW& CStringW::operator+=(PCWSTR pszSrc)
{
    Append(pszSrc);
    return *this;
}

CStringW& CStringW::operator+=(WCHAR ch)
{
    AppendChar(ch);
    return *this;
}

CStringW operator+(const CStringW& str1, const CStringW& str2)
{
    CStringW strSum(str1);
    strSum.Append(str2);
    return strSum;
}

CStringW operator+(const CStringW& str1, PCWSTR psz2)
{
    CStringW strSum(str1);
    strSum.Append(psz2);
    return strSum;
}

CStringW operator+(PCWSTR psz1, const CStringW& str2)
{
    CStringW strSum(psz1);
    strSum.Append(str2);
    return strSum;
}

CStringW operator+(const CStringW& str1, WCHAR ch2)
{
    CStringW strSum(str1);
    strSum.AppendChar(ch2);
    return strSum;
}

CStringW operator+(WCHAR ch1, const CStringW& str2)
{
    CStringW strSum(ch1);
    strSum.Append(str2);
    return strSum;
}

void CStringW::FormatArguments(PCWSTR pszFormat, ...) // NOLINT(cert-dcl50-cpp): FormatV takes a va_list
{
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

// The text is made in new characters: the old ones may be among the arguments.
void CStringW::FormatV(PCWSTR pszFormat, va_list args)
{
    if (pszFormat == nullptr) {
        AtlThrow(E_INVALIDARG);
    }
    va_list argsToCount;
    va_copy(argsToCount, args);
    const int nLength = _vscwprintf(pszFormat, argsToCount);
    va_end(argsToCount);
    if (nLength < 0) {
        AtlThrow(E_INVALIDARG);
    }
    CStringW strText;
    // The runtime's own functions: the compiler's library has others, for which %s is a narrow string.
    _vsnwprintf(strText.GetBuffer(nLength), static_cast<size_t>(nLength) + 1, pszFormat, args);
    strText.ReleaseBufferSetLength(nLength);
    *this = std::move(strText);
}

CStringW CStringW::FormatFromTable(UINT nFormatID)
{
    CStringW strFormat;
    if (!strFormat.LoadStringW(nFormatID)) {
        AtlThrow(E_FAIL);
    }
    return strFormat;
}

BOOL CStringW::LoadStringW(UINT nID)
{
    return LoadStringW(GetModuleHandleW(nullptr), nID);
}

BOOL CStringW::LoadStringW(HINSTANCE hInstance, UINT nID)
{
    // For a buffer of no size the function stores a pointer to the text in the mapped module, which no NUL ends.
    PCWSTR pchText = nullptr;
    const int nLength = ::LoadStringW(hInstance, nID, reinterpret_cast<PWSTR>(&pchText), 0);
    if (nLength <= 0) {
        return FALSE;
    }
    SetString(pchText, nLength);
    return TRUE;
}

int CStringW::Compare(PCWSTR psz) const
{
    if (psz == nullptr) {
        AtlThrow(E_FAIL);
    }
    return wcscmp(m_pszData, psz);
}

int CStringW::CompareNoCase(PCWSTR psz) const
{
    if (psz == nullptr) {
        AtlThrow(E_FAIL);
    }
    return _wcsicmp(m_pszData, psz);
}

CStringW CStringW::Mid(int iFirst) const
{
    return Mid(iFirst, GetLength());
}

CStringW CStringW::Mid(int iFirst, int nCount) const
{
    const int iBegin = std::clamp(iFirst, 0, GetLength());
    const int nTaken = std::clamp(nCount, 0, GetLength() - iBegin);
    return nTaken == GetLength() ? *this : CStringW(m_pszData + iBegin, nTaken);
}

CStringW CStringW::Left(int nCount) const
{
    return Mid(0, nCount);
}

CStringW CStringW::Right(int nCount) const
{
    const int nTaken = std::clamp(nCount, 0, GetLength());
    return Mid(GetLength() - nTaken, nTaken);
}

int CStringW::Find(PCWSTR pszSub, int iStart) const
{
    if (pszSub == nullptr || iStart < 0 || iStart > GetLength()) {
        return -1;
    }
    const PCWSTR pszFound = wcsstr(m_pszData + iStart, pszSub);
    return pszFound == nullptr ? -1 : static_cast<int>(pszFound - m_pszData);
}

int CStringW::Find(WCHAR ch, int iStart) const
{
    if (iStart < 0 || iStart >= GetLength()) {
        return -1;
    }
    const PCWSTR pszFound = wcschr(m_pszData + iStart, ch);
    return pszFound == nullptr ? -1 : static_cast<int>(pszFound - m_pszData);
}

int CStringW::ReverseFind(WCHAR ch) const
{
    const PCWSTR pszFound = wcsrchr(m_pszData, ch);
    return pszFound == nullptr ? -1 : static_cast<int>(pszFound - m_pszData);
}

void CStringW::TrimRightWhile(bool (*pfnCut)(WCHAR ch, PCWSTR pszTargets), PCWSTR pszTargets)
{
    int nLength = GetLength();
    while (nLength > 0 && pfnCut(m_pszData[nLength - 1], pszTargets)) {
        nLength--;
    }
    Truncate(nLength);
}

CStringW& CStringW::TrimRight()
{
    TrimRightWhile([](WCHAR ch, PCWSTR) { return iswspace(ch) != 0; }, nullptr);
    return *this;
}

CStringW& CStringW::TrimRight(WCHAR chTarget)
{
    TrimRightWhile([](WCHAR ch, PCWSTR pchTarget) { return ch == *pchTarget; }, &chTarget);
    return *this;
}

CStringW& CStringW::TrimRight(PCWSTR pszTargets)
{
    if (pszTargets != nullptr) {
        TrimRightWhile([](WCHAR ch, PCWSTR pszSet) { return ch != L'\0' && wcschr(pszSet, ch) != nullptr; },
                       pszTargets);
    }
    return *this;
}
