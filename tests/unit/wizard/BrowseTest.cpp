// How the user chooses a package.

#include "tests/kit/TemporaryFolder.h"
#include "tests/unit/wizard/PageWindow.h"

#include <objbase.h>
#include <shobjidl.h>

#include <cstring>

using namespace kit;

namespace {

constexpr int kBrowse = 1022;
constexpr int kPath = 1038;

// What the page calls, in this order.
const Lines kSteps = {"CoCreateInstance", "GetOptions", "SetOptions", "SetFileTypes",  "SetFileName",
                      "SetFileTypeIndex", "Show",       "GetResult",  "GetDisplayName"};

// What the page has no use for.
#define UNUSED_METHOD(name, ...)                                                                                       \
    STDMETHODIMP name(__VA_ARGS__) override                                                                            \
    {                                                                                                                  \
        return E_NOTIMPL;                                                                                              \
    }

// The dialog and, in one, the item that is chosen in it: what the user does, and what the page did with it. Not deleted
// by whoever releases it last: a count of references that is not 0 in the end is an owner that forgot.
class Dialog : private IFileOpenDialog, private IShellItem
{
public:
    virtual ~Dialog() = default;

    HRESULT Take(const std::string& strStep)
    {
        Note(strStep);
        return strStep == m_strFailing ? m_hrFailure : S_OK;
    }

    STDMETHODIMP QueryInterface(REFIID, void**) override
    {
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override
    {
        return static_cast<ULONG>(++m_nReferences);
    }
    STDMETHODIMP_(ULONG) Release() override
    {
        return static_cast<ULONG>(--m_nReferences);
    }

    HRESULT OnCoCreateInstance(REFCLSID clsid, IUnknown* pOuter, DWORD dwContext, REFIID iid, void** ppv)
    {
        EXPECT_TRUE(IsEqualGUID(clsid, CLSID_FileOpenDialog));
        EXPECT_EQ(pOuter, nullptr);
        EXPECT_EQ(dwContext, 1u);
        EXPECT_TRUE(IsEqualGUID(iid, IID_IFileOpenDialog));
        const HRESULT hr = Take("CoCreateInstance");
        if (SUCCEEDED(hr)) {
            AddRef();
            *ppv = static_cast<IFileOpenDialog*>(this);
        }
        return hr;
    }
    STDMETHODIMP GetOptions(FILEOPENDIALOGOPTIONS* pnOptions) override
    {
        *pnOptions = m_nOptions;
        return Take("GetOptions");
    }
    STDMETHODIMP SetOptions(FILEOPENDIALOGOPTIONS nOptions) override
    {
        m_nOptions = nOptions;
        return Take("SetOptions");
    }
    STDMETHODIMP SetFileTypes(UINT nTypes, const COMDLG_FILTERSPEC* pTypes) override
    {
        for (UINT n = 0; n < nTypes; ++n) {
            m_fileTypes.emplace_back(pTypes[n].pszName, pTypes[n].pszSpec);
        }
        return Take("SetFileTypes");
    }
    STDMETHODIMP SetFileName(PCWSTR pszName) override
    {
        m_strFileName = pszName;
        return Take("SetFileName");
    }
    STDMETHODIMP SetFileTypeIndex(UINT nIndex) override
    {
        EXPECT_EQ(nIndex, 1u);
        return Take("SetFileTypeIndex");
    }
    STDMETHODIMP Show(HWND hwndOwner) override
    {
        m_hwndOwner = hwndOwner;
        return Take("Show");
    }
    STDMETHODIMP GetResult(IShellItem** ppItem) override
    {
        const HRESULT hr = Take("GetResult");
        if (SUCCEEDED(hr)) {
            AddRef();
            *ppItem = this;
        }
        return hr;
    }
    STDMETHODIMP GetDisplayName(SIGDN nName, PWSTR* ppsz) override
    {
        EXPECT_EQ(static_cast<UINT>(nName), 0x80058000u);
        const HRESULT hr = Take("GetDisplayName");
        if (SUCCEEDED(hr)) {
            const size_t cb = (m_strChosen.size() + 1) * sizeof(WCHAR);
            m_pszGiven = static_cast<PWSTR>(CoTaskMemAlloc(cb));
            std::memcpy(m_pszGiven, m_strChosen.c_str(), cb);
            *ppsz = m_pszGiven;
        }
        return hr;
    }

    UNUSED_METHOD(GetFileTypeIndex, UINT*)
    UNUSED_METHOD(Advise, IFileDialogEvents*, DWORD*)
    UNUSED_METHOD(Unadvise, DWORD)
    UNUSED_METHOD(SetDefaultFolder, IShellItem*)
    UNUSED_METHOD(SetFolder, IShellItem*)
    UNUSED_METHOD(GetFolder, IShellItem**)
    UNUSED_METHOD(GetCurrentSelection, IShellItem**)
    UNUSED_METHOD(GetFileName, PWSTR*)
    UNUSED_METHOD(SetTitle, PCWSTR)
    UNUSED_METHOD(SetOkButtonLabel, PCWSTR)
    UNUSED_METHOD(SetFileNameLabel, PCWSTR)
    UNUSED_METHOD(AddPlace, IShellItem*, FDAP)
    UNUSED_METHOD(SetDefaultExtension, PCWSTR)
    UNUSED_METHOD(Close, HRESULT)
    UNUSED_METHOD(SetClientGuid, REFGUID)
    UNUSED_METHOD(ClearClientData)
    UNUSED_METHOD(SetFilter, IShellItemFilter*)
    UNUSED_METHOD(GetResults, IShellItemArray**)
    UNUSED_METHOD(GetSelectedItems, IShellItemArray**)
    UNUSED_METHOD(BindToHandler, IBindCtx*, REFGUID, REFIID, void**)
    UNUSED_METHOD(GetParent, IShellItem**)
    UNUSED_METHOD(GetAttributes, SFGAOF, SFGAOF*)
    UNUSED_METHOD(Compare, IShellItem*, SICHINTF, int*)

    std::string m_strFailing; // a step, or none
    HRESULT m_hrFailure = E_FAIL;
    std::wstring m_strChosen;

    FILEOPENDIALOGOPTIONS m_nOptions = 0x1000;
    std::vector<std::pair<std::wstring, std::wstring>> m_fileTypes;
    std::wstring m_strFileName;
    HWND m_hwndOwner = nullptr;
    PWSTR m_pszGiven = nullptr;
    int m_nReferences = 0;
};

class Browse : public Test
{
protected:
    Browse()
    {
        m_page.SetText(kPath, L"C:\\as it was.apk");
        m_page.TakeButtons();
        Journal().clear();
    }

    Dialog m_dialog;
    CWizardData m_data;
    PageWindow m_page{kInstallApkPage, m_data};
    REPLACED(CoCreateInstance)
    m_create{Quietly([this](auto&&... args) -> HRESULT { return m_dialog.OnCoCreateInstance(args...); })};
};

TEST_F(Browse, TakesThePathThatTheUserChose)
{
    const TemporaryFolder folder;
    WriteTextFile(folder.Path() / "chosen one.apk", "x");
    m_dialog.m_strChosen = (folder.Path() / "chosen one.apk").wstring();
    const REPLACED(CoTaskMemFree) free;
    EXPECT_EQ(m_page.Command(kBrowse, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Text(kPath), m_dialog.m_strChosen);
    // Once for the changed text, once for the choice.
    EXPECT_EQ(m_page.TakeButtons(), (ButtonsList{kWithNext, kWithNext}));
    int nTimesFreed = 0;
    for (size_t n = 0; n < free.Calls(); ++n) {
        nTimesFreed += free.Arg<0>(n) == m_dialog.m_pszGiven;
    }
    EXPECT_EQ(nTimesFreed, 1);
    EXPECT_EQ(m_dialog.m_nReferences, 0);
}

TEST_F(Browse, SetsTheDialogUpInOrder)
{
    m_page.Click(kBrowse);
    EXPECT_EQ(Journal(), kSteps);
    EXPECT_EQ(m_dialog.m_nOptions, 0x1000u | 0x8u | 0x40u | 0x10000000u);
    EXPECT_EQ(m_dialog.m_fileTypes, (std::vector<std::pair<std::wstring, std::wstring>>{{L"Android Package", L"*.apk"},
                                                                                        {L"All Files", L"*.*"}}));
    EXPECT_TRUE(m_dialog.m_strFileName.ends_with(L".apk"));
    EXPECT_EQ(m_dialog.m_hwndOwner, m_page.Window());
}

TEST_F(Browse, ThatFailsOrIsCancelledAtAnyStepLeavesThePathAndGoesNoFurther)
{
    for (const HRESULT hr : {E_FAIL, HRESULT_FROM_WIN32(ERROR_CANCELLED)}) {
        for (size_t n = 0; n < kSteps.size(); ++n) {
            SCOPED_TRACE(kSteps[n]);
            m_dialog.m_strFailing = kSteps[n];
            m_dialog.m_hrFailure = hr;
            Journal().clear();
            EXPECT_EQ(m_page.Command(kBrowse, BN_CLICKED), 0);
            EXPECT_EQ(m_page.Text(kPath), L"C:\\as it was.apk");
            EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
            EXPECT_EQ(Journal(), Lines(kSteps.begin(), kSteps.begin() + static_cast<ptrdiff_t>(n) + 1));
            EXPECT_EQ(m_dialog.m_nReferences, 0);
        }
    }
}

TEST_F(Browse, OpensNothingForAnyOtherNotification)
{
    for (const int nNotification : {BN_DOUBLECLICKED, BN_SETFOCUS, EN_CHANGE}) {
        EXPECT_EQ(m_page.Command(kBrowse, nNotification), 0);
    }
    EXPECT_EQ(m_page.Command(kPath, BN_CLICKED), 0);
    EXPECT_EQ(m_create.Calls(), 0u);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

} // namespace
