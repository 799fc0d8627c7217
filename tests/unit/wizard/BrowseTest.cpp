// How the user chooses a package.

#include "wizard/InstallApkPage.h"

#include "app/ground/KalvoApkInstaller.h"

#include "tests/kit/TemporaryFolder.h"
#include "tests/unit/wizard/PageWindow.h"

#include <objbase.h>
#include <shobjidl.h>

#include <cstring>

using namespace kit;

namespace {

constexpr int kBrowse = 1022;
constexpr int kPath = 1038;

// The first of these steps that fails, or none.
enum class Step
{
    None,
    CoCreateInstance,
    GetOptions,
    SetOptions,
    SetFileTypes,
    SetFileName,
    SetFileTypeIndex,
    Show,
    GetResult,
    GetDisplayName,
};

constexpr PCSTR kStepNames[] = {"None",        "CoCreateInstance", "GetOptions", "SetOptions", "SetFileTypes",
                                "SetFileName", "SetFileTypeIndex", "Show",       "GetResult",  "GetDisplayName"};

// What the user does in the dialog, and what the page did with it.
struct Dialog
{
    Step failing = Step::None;
    HRESULT hrFailure = E_FAIL;
    FILEOPENDIALOGOPTIONS nOldOptions = 0;
    std::wstring strChosen;

    FILEOPENDIALOGOPTIONS nOptions = 0;
    std::vector<std::pair<std::wstring, std::wstring>> fileTypes;
    std::wstring strFileName;
    UINT nFileTypeIndex = 0;
    HWND hwndOwner = nullptr;
    SIGDN nDisplayName = SIGDN_NORMALDISPLAY;
    PWSTR pszGiven = nullptr;
    int nReferences = 0;

    HRESULT Take(Step step)
    {
        Note(kStepNames[static_cast<int>(step)]);
        return step == failing ? hrFailure : S_OK;
    }
};

// Not deleted by whoever releases it last: a count of references that is not 0 in the end is an owner
// that forgot.
template<typename Interface>
class Counted : private Interface
{
public:
    explicit Counted(Dialog& dialog) : m_dialog(dialog) {}
    virtual ~Counted() = default;

    // With a reference for the caller.
    Interface* Give()
    {
        AddRef();
        return this;
    }

    STDMETHODIMP QueryInterface(REFIID, void**) override
    {
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override
    {
        return static_cast<ULONG>(++m_dialog.nReferences);
    }
    STDMETHODIMP_(ULONG) Release() override
    {
        return static_cast<ULONG>(--m_dialog.nReferences);
    }

protected:
    Dialog& m_dialog;
};

class Item : public Counted<IShellItem>
{
public:
    using Counted::Counted;

    STDMETHODIMP GetDisplayName(SIGDN nName, PWSTR* ppsz) override
    {
        const HRESULT hr = m_dialog.Take(Step::GetDisplayName);
        if (SUCCEEDED(hr)) {
            m_dialog.nDisplayName = nName;
            const size_t cb = (m_dialog.strChosen.size() + 1) * sizeof(WCHAR);
            m_dialog.pszGiven = static_cast<PWSTR>(CoTaskMemAlloc(cb));
            std::memcpy(m_dialog.pszGiven, m_dialog.strChosen.c_str(), cb);
            *ppsz = m_dialog.pszGiven;
        }
        return hr;
    }
    STDMETHODIMP BindToHandler(IBindCtx*, REFGUID, REFIID, void**) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetParent(::IShellItem**) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetAttributes(SFGAOF, SFGAOF*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Compare(::IShellItem*, SICHINTF, int*) override
    {
        return E_NOTIMPL;
    }
};

class OpenDialog : public Counted<IFileOpenDialog>
{
public:
    explicit OpenDialog(Dialog& dialog) : Counted(dialog), m_item(dialog) {}

    STDMETHODIMP GetOptions(FILEOPENDIALOGOPTIONS* pnOptions) override
    {
        *pnOptions = m_dialog.nOldOptions;
        return m_dialog.Take(Step::GetOptions);
    }
    STDMETHODIMP SetOptions(FILEOPENDIALOGOPTIONS nOptions) override
    {
        m_dialog.nOptions = nOptions;
        return m_dialog.Take(Step::SetOptions);
    }
    STDMETHODIMP SetFileTypes(UINT nTypes, const COMDLG_FILTERSPEC* pTypes) override
    {
        for (UINT n = 0; n < nTypes; ++n) {
            m_dialog.fileTypes.emplace_back(pTypes[n].pszName, pTypes[n].pszSpec);
        }
        return m_dialog.Take(Step::SetFileTypes);
    }
    STDMETHODIMP SetFileName(PCWSTR pszName) override
    {
        m_dialog.strFileName = pszName;
        return m_dialog.Take(Step::SetFileName);
    }
    STDMETHODIMP SetFileTypeIndex(UINT nIndex) override
    {
        m_dialog.nFileTypeIndex = nIndex;
        return m_dialog.Take(Step::SetFileTypeIndex);
    }
    STDMETHODIMP Show(HWND hwndOwner) override
    {
        m_dialog.hwndOwner = hwndOwner;
        return m_dialog.Take(Step::Show);
    }
    STDMETHODIMP GetResult(IShellItem** ppItem) override
    {
        const HRESULT hr = m_dialog.Take(Step::GetResult);
        if (SUCCEEDED(hr)) {
            *ppItem = m_item.Give();
        }
        return hr;
    }

    // What the page has no use for.
    STDMETHODIMP GetFileTypeIndex(UINT*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Advise(IFileDialogEvents*, DWORD*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Unadvise(DWORD) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetDefaultFolder(IShellItem*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetFolder(IShellItem*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetFolder(IShellItem**) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetCurrentSelection(IShellItem**) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetFileName(PWSTR*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetTitle(PCWSTR) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetOkButtonLabel(PCWSTR) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetFileNameLabel(PCWSTR) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP AddPlace(IShellItem*, FDAP) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetDefaultExtension(PCWSTR) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Close(HRESULT) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetClientGuid(REFGUID) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP ClearClientData() override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetFilter(IShellItemFilter*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetResults(IShellItemArray**) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetSelectedItems(IShellItemArray**) override
    {
        return E_NOTIMPL;
    }

private:
    Item m_item;
};

class Browse : public Test
{
protected:
    Browse()
    {
        m_page.TakeButtons();
        m_create.Unnoted().Optional();
        m_free.Unnoted().Optional();
        Journal().clear();
    }

    HRESULT OnCoCreateInstance(void** ppv)
    {
        const HRESULT hr = m_dialog.Take(Step::CoCreateInstance);
        if (SUCCEEDED(hr)) {
            *ppv = m_openDialog.Give();
        }
        return hr;
    }

    // Whether the text that the dialog gave was freed, once.
    bool Freed() const
    {
        int nTimes = 0;
        for (size_t n = 0; n < m_free.Calls(); ++n) {
            nTimes += m_free.Arg<0>(n) == m_dialog.pszGiven;
        }
        return nTimes == 1;
    }

    Dialog m_dialog;
    OpenDialog m_openDialog{m_dialog};
    CWizardData m_data;
    PageWindow m_page{kInstallApkPage, m_data};
    REPLACED(CoTaskMemFree) m_free;
    REPLACED(CoCreateInstance)
    m_create{[this](REFCLSID, IUnknown*, DWORD, REFIID, void** ppv) { return OnCoCreateInstance(ppv); }};
};

TEST_F(Browse, TakesThePathThatTheUserChose)
{
    const TemporaryFolder folder;
    WriteTextFile(folder.Path() / "chosen one.apk", "x");
    m_dialog.strChosen = (folder.Path() / "chosen one.apk").wstring();
    m_page.Click(kBrowse);
    EXPECT_EQ(m_page.Text(kPath), m_dialog.strChosen);
    EXPECT_EQ(m_page.LastButtons(), kWithNext);
    EXPECT_EQ(static_cast<UINT>(m_dialog.nDisplayName), 0x80058000u);
    EXPECT_TRUE(Freed());
    EXPECT_EQ(m_dialog.nReferences, 0);
}

TEST_F(Browse, UpdatesTheButtonsItselfToo)
{
    m_dialog.strChosen = L"C:\\no such file.apk";
    EXPECT_EQ(m_page.Command(kBrowse, BN_CLICKED), 0);
    // Once for the changed text, once for the choice.
    EXPECT_EQ(m_page.TakeButtons(), (ButtonsList{kWithoutNext, kWithoutNext}));
}

TEST_F(Browse, SetsTheDialogUpInOrder)
{
    m_dialog.nOldOptions = 0x1000;
    m_page.Click(kBrowse);
    EXPECT_EQ(Journal(), (Lines{"CoCreateInstance", "GetOptions", "SetOptions", "SetFileTypes", "SetFileName",
                                "SetFileTypeIndex", "Show", "GetResult", "GetDisplayName"}));
    EXPECT_EQ(m_dialog.nOptions, 0x1000u | 0x8u | 0x40u | 0x10000000u);
    EXPECT_EQ(m_dialog.fileTypes, (std::vector<std::pair<std::wstring, std::wstring>>{{L"Android Package", L"*.apk"},
                                                                                      {L"All Files", L"*.*"}}));
    EXPECT_TRUE(m_dialog.strFileName.ends_with(L".apk"));
    EXPECT_EQ(m_dialog.nFileTypeIndex, 1u);
    EXPECT_EQ(m_dialog.hwndOwner, m_page.Window());
}

TEST_F(Browse, AsksForTheFileOpenDialogOfTheSystem)
{
    const REPLACED(CoCreateInstance)
        create([this](REFCLSID clsid, IUnknown* pOuter, DWORD dwContext, REFIID iid, void** ppv) {
            EXPECT_TRUE(IsEqualGUID(clsid, CLSID_FileOpenDialog));
            EXPECT_EQ(pOuter, nullptr);
            EXPECT_EQ(dwContext, 1u);
            EXPECT_TRUE(IsEqualGUID(iid, IID_IFileOpenDialog));
            return OnCoCreateInstance(ppv);
        });
    m_page.Click(kBrowse);
    EXPECT_EQ(create.Calls(), 1u);
}

TEST_F(Browse, LeavesThePathWhenTheUserCancels)
{
    m_page.SetText(kPath, L"C:\\as it was.apk");
    m_page.TakeButtons();
    m_dialog.failing = Step::Show;
    m_dialog.hrFailure = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    EXPECT_EQ(m_page.Command(kBrowse, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Text(kPath), L"C:\\as it was.apk");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(m_dialog.nReferences, 0);
}

class BrowseFailure : public Browse, public testing::WithParamInterface<int>
{
};

TEST_P(BrowseFailure, LeavesThePathAndGoesNoFurther)
{
    m_page.SetText(kPath, L"C:\\as it was.apk");
    m_page.TakeButtons();
    m_dialog.strChosen = L"C:\\chosen.apk";
    m_dialog.failing = static_cast<Step>(GetParam());
    EXPECT_EQ(m_page.Command(kBrowse, BN_CLICKED), 0);
    EXPECT_EQ(m_page.Text(kPath), L"C:\\as it was.apk");
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
    EXPECT_EQ(Journal().size(), static_cast<size_t>(GetParam()));
    EXPECT_EQ(Journal().back(), kStepNames[GetParam()]);
    EXPECT_EQ(m_dialog.nReferences, 0);
}

INSTANTIATE_TEST_SUITE_P(Steps, BrowseFailure, testing::Range(1, 10),
                         [](const auto& step) { return std::string(kStepNames[step.param]); });

TEST_F(Browse, OpensNothingForAnyOtherNotification)
{
    EXPECT_EQ(m_page.Command(kBrowse, BN_DOUBLECLICKED), 0);
    EXPECT_EQ(m_page.Command(kBrowse, BN_SETFOCUS), 0);
    EXPECT_EQ(m_page.Command(kBrowse, EN_CHANGE), 0);
    EXPECT_EQ(m_page.Command(kPath, BN_CLICKED), 0);
    EXPECT_EQ(m_create.Calls(), 0u);
    EXPECT_EQ(m_page.TakeButtons(), ButtonsList{});
}

} // namespace
