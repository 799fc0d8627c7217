// Stands in for the platform's headers in the native builds of the fuzzed files: the types and functions that they
// meet, and no more. It serves C as well, for miniz. The build makes the other headers, which lead here.
//
// A WCHAR is the native wchar_t, so that the compiler's own library works on it; it holds UTF-16 units all the same.
// What a function answers stands with the fuzzer that needs the answer, or in System.cpp.
#pragma once

#include <errno.h>
#include <netinet/in.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/socket.h>
#include <utime.h>
#include <wchar.h>
#include <wctype.h>

typedef unsigned char BYTE;
typedef uint16_t WORD;
typedef int32_t BOOL, INT, LONG, HRESULT;
typedef uint32_t DWORD, UINT;
typedef wchar_t WCHAR;
typedef WCHAR* PWSTR;
typedef const WCHAR* PCWSTR;
typedef uintptr_t UINT_PTR, DWORD_PTR, WPARAM;
typedef intptr_t LPARAM, LRESULT;
typedef size_t SIZE_T;
typedef void* HANDLE;
typedef struct HWND__* HWND;
typedef struct HINSTANCE__* HINSTANCE;
typedef HINSTANCE HMODULE;
typedef HANDLE HGLOBAL;
typedef int errno_t;
typedef LRESULT (*SUBCLASSPROC)(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);

typedef struct sockaddr SOCKADDR;
typedef struct sockaddr_in SOCKADDR_IN;
typedef struct sockaddr_in6 SOCKADDR_IN6;
typedef struct in_addr IN_ADDR;
typedef uint64_t NET_LUID;
typedef union {
    SOCKADDR_IN Ipv4;
    SOCKADDR_IN6 Ipv6;
} SOCKADDR_INET;
typedef struct
{
    SOCKADDR_INET NextHop;
} MIB_IPFORWARD_ROW2;

#define CALLBACK
#define TRUE 1
#define FALSE 0
#define ARRAYSIZE(a) (sizeof(a) / sizeof((a)[0]))

#define NO_ERROR 0
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_NOT_SUPPORTED 50
#define ERROR_INVALID_PARAMETER 87
#define ERROR_CAN_NOT_COMPLETE 1003
#define ERROR_NOT_FOUND 1168
#define E_OUTOFMEMORY ((HRESULT)0x8007000E)
#define E_INVALIDARG ((HRESULT)0x80070057)
#define SOCKET_ERROR (-1)

#define CP_UTF8 65001
#define CF_UNICODETEXT 13
#define MB_OK 0
#define EM_REPLACESEL 0x00C2
#define EM_LIMITTEXT 0x00C5
#define WM_NCDESTROY 0x0082
#define WM_CHAR 0x0102
#define WM_PASTE 0x0302

#ifdef __cplusplus
extern "C" {
#endif

HANDLE GetProcessHeap(void);
void* HeapAlloc(HANDLE hHeap, DWORD dwFlags, SIZE_T cb);
BOOL HeapFree(HANDLE hHeap, DWORD dwFlags, void* p);
int MultiByteToWideChar(UINT nCodePage, DWORD dwFlags, const char* pch, int cb, PWSTR pchWide, int cchWide);
HMODULE GetModuleHandleW(PCWSTR pszModule);
int LoadStringW(HINSTANCE hInstance, UINT nID, PWSTR pszText, int cchText);
int _vscwprintf(PCWSTR pszFormat, va_list args);
int _vsnwprintf(PWSTR pszText, size_t cchText, PCWSTR pszFormat, va_list args);

int MessageBoxW(HWND hwndOwner, PCWSTR pszText, PCWSTR pszCaption, UINT nType);
LRESULT SendMessageW(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
BOOL SetWindowTextW(HWND hwnd, PCWSTR pszText);
BOOL SetWindowSubclass(HWND hwnd, SUBCLASSPROC pfnSubclass, UINT_PTR nSubclassId, DWORD_PTR dwRefData);
BOOL RemoveWindowSubclass(HWND hwnd, SUBCLASSPROC pfnSubclass, UINT_PTR nSubclassId);
LRESULT DefSubclassProc(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
BOOL IsClipboardFormatAvailable(UINT nFormat);
BOOL OpenClipboard(HWND hwnd);
BOOL CloseClipboard(void);
HANDLE GetClipboardData(UINT nFormat);
void* GlobalLock(HGLOBAL hMemory);
BOOL GlobalUnlock(HGLOBAL hMemory);

INT WSAStringToAddressW(PWSTR pszAddress, INT nFamily, void* pProtocol, SOCKADDR* pAddress, INT* pnLength);
INT WSAAddressToStringW(SOCKADDR* pAddress, DWORD dwLength, void* pProtocol, PWSTR pszAddress, DWORD* pcchAddress);
PCWSTR InetNtopW(INT nFamily, const void* pAddress, PWSTR pszAddress, size_t cchAddress);
DWORD GetBestInterfaceEx(SOCKADDR* pDestination, DWORD* pdwInterface);
DWORD GetBestRoute2(NET_LUID* pLuid, DWORD dwInterface, const SOCKADDR_INET* pSource, const SOCKADDR_INET* pDestination,
                    DWORD dwSortOptions, MIB_IPFORWARD_ROW2* pRoute, SOCKADDR_INET* pBestSource);

BOOL DeleteFileW(PCWSTR pszPath);
int _wmkdir(PCWSTR pszPath);
errno_t _wfopen_s(FILE** ppFile, PCWSTR pszPath, PCWSTR pszMode);
errno_t _wfreopen_s(FILE** ppFile, PCWSTR pszPath, PCWSTR pszMode, FILE* pOld);
struct __stat64;
int _wstat64(PCWSTR pszPath, struct __stat64* pStatus);
#define _ftelli64 ftello
#define _fseeki64 fseeko
// The native one would look for the path on the machine's disk.
#define utime(pszPath, pTimes) ((void)(pszPath), (void)(pTimes), 0)

#ifdef __cplusplus
}

template<size_t N>
errno_t wcscpy_s(WCHAR (&szTo)[N], PCWSTR pszFrom)
{
    const size_t nLength = wcslen(pszFrom);
    if (nLength >= N) {
        return ERANGE;
    }
    wmemcpy(szTo, pszFrom, nLength + 1);
    return 0;
}
#endif
