// Which calls of the program are to fail, and how: a list that is given from outside as a text.
//
//   list      fault { ";" fault }
//   fault     function [ "@" call ] [ "#" text ] "=" failure
//   failure   "fail:" code                as that function tells of a failure with this code: by its result, or by
//                                         its usual result for failure and the last error
//           | "null:" code                0, and the last error
//           | "ret:" result               that result
//           | "hang"                      it never returns: the thread stands still there until the process ends
//
//   WriteFile@2=fail:112                  the second call of WriteFile, and no other
//   CreateFileW#platform-tools=fail:0x20  only calls that name such a file; they alone are counted
//   WSAStartup=ret:10091;SHFileOperationW=ret:2
//   SHFileOperationW=hang                 nothing is deleted, and the program can be killed just there
//
// A call's texts are those among its arguments that it only reads, the path behind a handle of a file, and the number
// of a string in the resources.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct FAULT
{
    std::string szFunction;
    unsigned nCall = 0;  // the one that fails; 0: all
    std::wstring szText; // empty: any call
    bool bHangs = false;
    std::optional<long long> nResult; // without one, as the function tells of a failure
    std::optional<DWORD> dwError;
    unsigned nCalls = 0; // so far
};

using CFaults = std::vector<FAULT>;

// Nothing for a text that does not follow the grammar; szWrong then tells which part of it.
std::optional<CFaults> ParseFaults(const std::wstring& szList, std::wstring& szWrong);

// Counts a call of that function with these texts, and returns how it is to fail; null when it is to succeed. May be
// called on any thread.
const FAULT* FaultOfCall(CFaults& faults, std::string_view szFunction, const std::vector<std::wstring>& texts);
