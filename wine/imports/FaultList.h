// Which calls of the program are to fail, and how: a list that is given from outside as a text.
//
//   list      fault { ";" fault }
//   fault     function [ "@" call [ "+" ] ] [ "#" text ] "=" failure
//   failure   "fail:" code              as that function tells of a failure with this code: by its result,
//                                       or by its usual result for failure and the last error
//           | "null:" code              0, and the last error
//           | "ret:" result [ ":" code ]  that result, and the last error if given
//           | "hang"                    it never returns: the thread stands still there until the process ends
//
//   WriteFile@2=fail:112                the second call of WriteFile
//   DeleteFileW@2+=fail:5               the second call and all after it
//   CreateFileW#platform-tools=fail:32  only calls that name such a file; they alone are counted
//   WSAStartup=ret:10091;SHFileOperationW=ret:2
//   SHFileOperationW=hang               nothing is deleted, and the program can be killed just there
//
// A call's texts are those among its arguments, the path behind a handle of a file, and the number of
// a resource. Upper and lower case are alike. Numbers are decimal or 0x..., and may be negative.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class FAULT_KIND
{
    Fail,
    Null,
    Return,
    Hang,
};

struct FAULT
{
    std::string szFunction;
    unsigned nFirstCall = 1; // the first that fails
    bool bOnlyThat = false;
    std::wstring szText; // in lower case; empty: any call
    FAULT_KIND kind = FAULT_KIND::Fail;
    long long nResult = 0;
    std::optional<DWORD> dwError;
};

class CFaultList
{
public:
    // Nothing for a text that does not follow the grammar; szWrong then tells which part of it.
    static std::optional<CFaultList> Parse(std::wstring_view szList, std::wstring& szWrong);

    const std::vector<FAULT>& Faults() const
    {
        return m_faults;
    }

    // Counts a call of that function with these texts (in any case), and returns how it is to fail; null
    // when it is to succeed. May be called on any thread.
    const FAULT* OnCall(std::string_view szFunction, const std::vector<std::wstring>& texts);

private:
    std::vector<FAULT> m_faults;
    std::vector<LONG> m_calls; // so far, of each fault
};

// The text in lower case.
std::wstring LowerCase(std::wstring szText);
