// The dialog template of a wizard page: how large it gets, and the copy from which the frame makes
// the page, without what belongs to a window of its own.
#pragma once

#include <windows.h>

#include <optional>
#include <vector>

class CDialogTemplate
{
public:
    // Takes the template from the resources of hInstance. Without a usable one: nothing, and the last
    // error says why.
    static std::optional<CDialogTemplate> Load(HINSTANCE hInstance, PCWSTR pszTemplate);

    // The page's size in pixels: dialog units depend on the template's font.
    SIZE Size() const
    {
        return m_size;
    }

    // A hidden child that the keyboard can walk into. Valid as long as this object.
    const DLGTEMPLATE* ForPage() const
    {
        return reinterpret_cast<const DLGTEMPLATE*>(m_bytes.data());
    }

private:
    explicit CDialogTemplate(std::vector<BYTE> bytes);

    std::vector<BYTE> m_bytes;
    SIZE m_size = {};
};
