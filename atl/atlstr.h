// CStringW for compilers whose platform library has no <atlstr.h> of its own; this folder is in the include
// path only then. It has the part of that class that a Win32 program meets, under the same names and with the
// same contract, so that a source file cannot tell which of the two it was compiled with.
#pragma once

#include <windows.h>

#include <compare>
#include <cstdarg>
#include <type_traits>

// What the members throw. A program that catches it nowhere is ended by it, as it should be: what is reported so is
// a lack of memory or a mistake of the caller.
class CAtlException
{
public:
    explicit CAtlException(HRESULT hr) : m_hr(hr) {}

    operator HRESULT() const
    {
        return m_hr;
    }

    HRESULT m_hr;
};

[[noreturn]] void AtlThrow(HRESULT hr);

// A string of UTF-16 units, reference counted and copied on write.
//
// A copy costs one interlocked increment and shares the characters; whichever sharer is about to change them
// first takes characters of its own. Different objects may be used by different threads even while they share;
// one object by one thread at a time.
//
// The length is kept, so a string may hold NULs, but everything that takes a plain PCWSTR stops at the first.
// The characters are always followed by a NUL that is not counted. All lengths and positions are in units, not
// bytes.
//
// The object is one pointer wide and points at its characters; their bookkeeping lies before them.
//
// A member that may need room throws CAtlException(E_OUTOFMEMORY) when there is none, or when the length would pass
// 2^30; the string is then as it was. Other reasons are given with the member, by the HRESULT alone.
class CStringW
{
public:
    // Empty; allocates nothing.
    CStringW();

    CStringW(const CStringW& strSrc);

    // Leaves strSrc empty.
    CStringW(CStringW&& strSrc) noexcept;

    // Up to the first NUL. Empty for a null pointer.
    CStringW(PCWSTR pszSrc);

    // Exactly nLength units, NULs included. A null pointer goes only with 0, a negative length never: E_INVALIDARG.
    CStringW(PCWSTR pchSrc, int nLength);

    // nRepeat times ch; empty when nRepeat is not positive.
    explicit CStringW(WCHAR ch, int nRepeat = 1);

    ~CStringW();

    // Assignments may take the string itself or a part of it.
    CStringW& operator=(const CStringW& strSrc);
    CStringW& operator=(CStringW&& strSrc) noexcept;
    CStringW& operator=(PCWSTR pszSrc);
    CStringW& operator=(WCHAR ch);

    // As the constructors with the same parameters.
    void SetString(PCWSTR pszSrc);
    void SetString(PCWSTR pchSrc, int nLength);

    // The characters, valid until the string is changed or destroyed. Never null.
    operator PCWSTR() const
    {
        return m_pszData;
    }
    PCWSTR GetString() const
    {
        return m_pszData;
    }

    int GetLength() const;
    bool IsEmpty() const
    {
        return GetLength() == 0;
    }

    // How many units the string can hold before it must allocate.
    int GetAllocLength() const;

    // Length 0; gives back the characters' memory.
    void Empty();

    // Room for at least nLength units; the text stays.
    void Preallocate(int nLength);

    // The unit at iChar. The terminating NUL may be read; any other position outside:
    // E_INVALIDARG.
    WCHAR GetAt(int iChar) const;
    WCHAR operator[](int iChar) const
    {
        return GetAt(iChar);
    }

    // Replaces the unit at iChar, which must be less than the length: E_INVALIDARG.
    void SetAt(int iChar, WCHAR ch);

    // Characters of the string's own to write into: at least as many as it is long, or nMinBufferLength and a NUL.
    // The text is kept. Once the length may have changed, ReleaseBuffer or ReleaseBufferSetLength must be called
    // before any other member. A negative nMinBufferLength: E_INVALIDARG.
    PWSTR GetBuffer();
    PWSTR GetBuffer(int nMinBufferLength);

    // The same, and the length is nLength at once. Units past the old length are undefined.
    PWSTR GetBufferSetLength(int nLength);

    // Sets the length after direct writing and puts the NUL there; -1 takes the text up to its first NUL. A length
    // that is negative otherwise or beyond the buffer: E_INVALIDARG.
    void ReleaseBuffer(int nNewLength = -1);
    void ReleaseBufferSetLength(int nNewLength);

    // Drops everything from nNewLength on; nothing happens when the string is no longer than that.
    void Truncate(int nNewLength);

    // Adds at the end; a part of the string itself may be added. A null pointer adds nothing, unless a length other
    // than 0 comes with it: E_INVALIDARG.
    void Append(PCWSTR pszSrc);
    void Append(PCWSTR pchSrc, int nLength);
    void Append(const CStringW& strSrc);
    void AppendChar(WCHAR ch);

    CStringW& operator+=(const CStringW& strSrc);
    CStringW& operator+=(PCWSTR pszSrc);
    CStringW& operator+=(WCHAR ch);

    friend CStringW operator+(const CStringW& str1, const CStringW& str2);
    friend CStringW operator+(const CStringW& str1, PCWSTR psz2);
    friend CStringW operator+(PCWSTR psz1, const CStringW& str2);
    friend CStringW operator+(const CStringW& str1, WCHAR ch2);
    friend CStringW operator+(WCHAR ch1, const CStringW& str2);

    // Makes the text by the rules of the Windows C runtime's wide printf: %s is a wide string, %hs a narrow one.
    // A CStringW may be given for %s as it is. The text may be of any length. Unlike the platform's, the string
    // itself may be among the arguments, or be the format. A null format, or one that the runtime refuses:
    // E_INVALIDARG.
    template<typename... Arguments>
    void Format(PCWSTR pszFormat, const Arguments&... arguments)
    {
        FormatArguments(pszFormat, Passable(arguments)...);
    }

    // The same with the format from the string table of the executable; E_FAIL when it is not there.
    template<typename... Arguments>
    void Format(UINT nFormatID, const Arguments&... arguments)
    {
        FormatArguments(FormatFromTable(nFormatID), Passable(arguments)...);
    }

    // The same, added at the end.
    template<typename... Arguments>
    void AppendFormat(PCWSTR pszFormat, const Arguments&... arguments)
    {
        CStringW strTail;
        strTail.FormatArguments(pszFormat, Passable(arguments)...);
        Append(strTail);
    }

    void FormatV(PCWSTR pszFormat, va_list args);

    // Takes a text from the string table of the executable, or of the given module. FALSE, and the string as it was,
    // when there is none; an empty entry cannot be told from a missing one.
    BOOL LoadStringW(UINT nID);
    BOOL LoadStringW(HINSTANCE hInstance, UINT nID);

    // Order of the units' values, or of their lower case; less than, equal to or greater than 0. Both stop at a NUL.
    // A null pointer: E_FAIL.
    int Compare(PCWSTR psz) const;
    int CompareNoCase(PCWSTR psz) const;

    friend bool operator==(const CStringW& str1, const CStringW& str2)
    {
        return str1.Compare(str2) == 0;
    }
    friend bool operator==(const CStringW& str1, PCWSTR psz2)
    {
        return str1.Compare(psz2) == 0;
    }
    friend std::strong_ordering operator<=>(const CStringW& str1, const CStringW& str2)
    {
        return str1.Compare(str2) <=> 0;
    }
    friend std::strong_ordering operator<=>(const CStringW& str1, PCWSTR psz2)
    {
        return str1.Compare(psz2) <=> 0;
    }

    // Parts of the string. Counts and positions that reach over an end are cut down to what is there.
    CStringW Mid(int iFirst) const;
    CStringW Mid(int iFirst, int nCount) const;
    CStringW Left(int nCount) const;
    CStringW Right(int nCount) const;

    // The first position at or after iStart, the last position; -1 when there is none, or iStart lies outside.
    int Find(PCWSTR pszSub, int iStart = 0) const;
    int Find(WCHAR ch, int iStart = 0) const;
    int ReverseFind(WCHAR ch) const;

    // Cuts white space, one character, or any of the characters of a set from the end.
    CStringW& TrimRight();
    CStringW& TrimRight(WCHAR chTarget);
    CStringW& TrimRight(PCWSTR pszTargets);

private:
    struct CHeader;

    static PWSTR Nil();
    CHeader* Header() const;
    bool IsShared() const;
    void Release();
    void Reserve(int nLength);
    void SetLength(int nLength);
    bool Holds(PCWSTR pch) const;
    void TrimRightWhile(bool (*pfnCut)(WCHAR ch, PCWSTR pszTargets), PCWSTR pszTargets);
    void FormatArguments(PCWSTR pszFormat, ...);
    static CStringW FormatFromTable(UINT nFormatID);

    // What a variadic function can take: characters for a string, everything else by value.
    static PCWSTR Passable(const CStringW& str)
    {
        return str.m_pszData;
    }
    template<typename Argument>
    static std::decay_t<const Argument&> Passable(const Argument& argument)
    {
        static_assert(std::is_scalar_v<std::decay_t<const Argument&>>, "printf has no format for this");
        return argument;
    }

    PWSTR m_pszData;
};
