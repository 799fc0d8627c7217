// Owners of what the system gives a caller to free. Each is empty or holds a thing that is there.
#pragma once

#include "app/ground/Platform.h"

#include <objbase.h>

#include <memory>

struct CO_TASK_MEM_FREE
{
    void operator()(WCHAR* psz) const
    {
        CoTaskMemFree(psz);
    }
};
// Text that COM or the shell has allocated.
using CTaskText = std::unique_ptr<WCHAR, CO_TASK_MEM_FREE>;

struct LOCAL_FREE
{
    void operator()(WCHAR* psz) const
    {
        LocalFree(psz);
    }
};
// Text from the local heap.
using CLocalText = std::unique_ptr<WCHAR, LOCAL_FREE>;

struct FIND_CLOSE
{
    void operator()(HANDLE hFind) const
    {
        FindClose(hFind);
    }
};
// A search for files. Never made of INVALID_HANDLE_VALUE.
using CFindHandle = std::unique_ptr<void, FIND_CLOSE>;
