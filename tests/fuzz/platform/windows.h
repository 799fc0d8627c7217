// Stands in for the platform's header of the same name in the native builds of the fuzzed files: the types and
// functions that they meet, and no more. It serves C as well, for miniz.
//
// A WCHAR is the native wchar_t, so that the compiler's own library works on it; it holds UTF-16 units all the same.
// What a function answers stands with the fuzzer that needs the answer, or in System.cpp.
#pragma once

#include <errno.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
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
BOOL DeleteFileW(PCWSTR pszPath);
HMODULE GetModuleHandleW(PCWSTR pszModule);
int LoadStringW(HINSTANCE hInstance, UINT nID, PWSTR pszText, int cchText);
int _vscwprintf(PCWSTR pszFormat, va_list args);
int _vsnwprintf(PWSTR pszText, size_t cchText, PCWSTR pszFormat, va_list args);

int MessageBoxW(HWND hwndOwner, PCWSTR pszText, PCWSTR pszCaption, UINT nType);
LRESULT SendMessageW(HWND hwnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
BOOL SetWindowTextW(HWND hwnd, PCWSTR pszText);
BOOL IsClipboardFormatAvailable(UINT nFormat);
BOOL OpenClipboard(HWND hwnd);
BOOL CloseClipboard(void);
HANDLE GetClipboardData(UINT nFormat);
void* GlobalLock(HGLOBAL hMemory);
BOOL GlobalUnlock(HGLOBAL hMemory);

// The C runtime's functions for files whose names are wide.
struct _stat64
{
    int64_t st_mtime_;
};
#define __stat64 _stat64
errno_t _wfopen_s(FILE** ppFile, PCWSTR pszPath, PCWSTR pszMode);
errno_t _wfreopen_s(FILE** ppFile, PCWSTR pszPath, PCWSTR pszMode, FILE* pOld);
int _wstat64(PCWSTR pszPath, struct _stat64* pStatus);
int64_t _ftelli64(FILE* pFile);
int _fseeki64(FILE* pFile, int64_t nOffset, int nOrigin);

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
