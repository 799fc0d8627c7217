// A handle of the kernel, closed by what owns it.
#pragma once

#include <windows.h>

#include <memory>

struct CHandleDeleter
{
    void operator()(HANDLE hObject) const
    {
        CloseHandle(hObject);
    }
};

using CHandle = std::unique_ptr<void, CHandleDeleter>;
