// CStringW for compilers whose platform library has no <atlstr.h> of its own; this folder is in the include
// path only then. It has those members of that class that the program meets, under the same names and with the
// same contract, so that a source file cannot tell which of the two it was compiled with.
#pragma once

#include <windows.h>

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
// The length is kept, in units, so a string may hold NULs, but everything that takes a plain PCWSTR stops at the
// first. The characters are always followed by a NUL that is not counted.
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

    ~CStringW();

    // From any of what a string is made of, the string itself and a part of it included.
    CStringW& operator=(CStringW strSrc) noexcept;

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

    // Length 0; gives back the characters' memory.
    void Empty();

    // Characters of the string's own to write into: as many as it is long, or nMinBufferLength if that is more, and
    // a NUL. The text is kept. Once the length may have changed, ReleaseBufferSetLength must be called before any
    // other member.
    PWSTR GetBuffer(int nMinBufferLength = 0);

    // Sets the length after direct writing and puts the NUL there. A length that is negative or beyond the buffer:
    // E_INVALIDARG.
    void ReleaseBufferSetLength(int nNewLength);

    void AppendChar(WCHAR ch);

    // Makes the text by the rules of the Windows C runtime's wide printf: %s is a wide string, %hs a narrow one.
    // A CStringW may be given for %s as it is. The text may be of any length. Unlike the platform's, the string
    // itself may be among the arguments. A format that the runtime refuses: E_INVALIDARG.
    template<typename... Arguments>
    void Format(PCWSTR pszFormat, const Arguments&... arguments)
    {
        FormatArguments(pszFormat, Passable(arguments)...);
    }

    // Takes a text from the string table of the executable. FALSE, and the string as it was, when there is none; an
    // empty entry cannot be told from a missing one.
    BOOL LoadStringW(UINT nID);

private:
    struct CHeader;

    CStringW(PCWSTR pchSrc, int nLength);
    static PWSTR Nil();
    CHeader* Header() const;
    bool IsShared() const;
    void FormatArguments(PCWSTR pszFormat, ...);

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
