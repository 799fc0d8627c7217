// Handles of the drawing system, closed by the types that own them.
#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

struct CGdiObjectDeleter
{
    void operator()(HGDIOBJ hObject) const
    {
        DeleteObject(hObject);
    }
};

using CFontHandle = std::unique_ptr<std::remove_pointer_t<HFONT>, CGdiObjectDeleter>;
using CBitmapHandle = std::unique_ptr<std::remove_pointer_t<HBITMAP>, CGdiObjectDeleter>;
using CBrushHandle = std::unique_ptr<std::remove_pointer_t<HBRUSH>, CGdiObjectDeleter>;

// A memory device context like that of the screen.
class CMemoryDc
{
public:
    CMemoryDc() : m_hdc(CreateCompatibleDC(nullptr)) {}
    ~CMemoryDc()
    {
        DeleteDC(m_hdc);
    }
    CMemoryDc(const CMemoryDc&) = delete;
    CMemoryDc& operator=(const CMemoryDc&) = delete;

    operator HDC() const
    {
        return m_hdc;
    }

private:
    HDC m_hdc;
};

// Selects an object into a device context for a scope.
class CSelection
{
public:
    CSelection(HDC hdc, HGDIOBJ hObject) : m_hdc(hdc), m_hPrevious(SelectObject(hdc, hObject)) {}
    ~CSelection()
    {
        SelectObject(m_hdc, m_hPrevious);
    }
    CSelection(const CSelection&) = delete;
    CSelection& operator=(const CSelection&) = delete;

private:
    HDC m_hdc;
    HGDIOBJ m_hPrevious;
};
