// What the built program carries: its texts, pages, icon, version, manifest and the archive of the platform tools, and
// what it asks of Windows to be started at all. Everything is read from the file itself, never from the sources that
// it was made of; the tables here were written by hand and use the numbers, not the names that the program uses.
//
// The program is the one that the environment variable KALVO_EXE names, else KalvoApkInstaller.exe beside this test.
#include <windows.h>

#include <dbghelp.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <miniz.h>

namespace {

using Bytes = std::span<const BYTE>;

std::wstring ProgramPath()
{
    WCHAR szPath[MAX_PATH] = L"";
    if (GetEnvironmentVariableW(L"KALVO_EXE", szPath, MAX_PATH) != 0) {
        return szPath;
    }
    GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    const std::wstring path = szPath;
    return path.substr(0, path.rfind(L'\\') + 1) + L"KalvoApkInstaller.exe";
}

// Reads little-endian fields one after the other; what lies behind the end throws.
class CReader
{
public:
    explicit CReader(Bytes data) : m_data(data) {}

    template<typename Value>
    Value Take()
    {
        if (m_iNext + sizeof(Value) > m_data.size()) {
            throw std::out_of_range("the data end too early");
        }
        Value value;
        memcpy(&value, m_data.data() + m_iNext, sizeof(value));
        m_iNext += sizeof(value);
        return value;
    }

    std::wstring TakeText()
    {
        std::wstring text;
        while (const auto ch = Take<WCHAR>()) {
            text += ch;
        }
        return text;
    }

    void Align(size_t nUnit)
    {
        m_iNext = (m_iNext + nUnit - 1) / nUnit * nUnit;
    }

    bool AtEnd() const
    {
        return m_iNext >= m_data.size();
    }

private:
    Bytes m_data;
    size_t m_iNext = 0;
};

// The program, mapped as a file of data; nothing of it runs.
class CProgram : public testing::Test
{
protected:
    CProgram()
    {
        if (m_hModule == nullptr) {
            throw std::runtime_error("cannot open the program, error " + std::to_string(GetLastError()));
        }
    }

    ~CProgram() override
    {
        FreeLibrary(m_hModule);
    }

    // A resource in US English; throws when there is none.
    Bytes Resource(PCWSTR pszType, int nId) const
    {
        const HRSRC hResource =
            FindResourceExW(m_hModule, pszType, MAKEINTRESOURCEW(nId), MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US));
        const HGLOBAL hData = hResource == nullptr ? nullptr : LoadResource(m_hModule, hResource);
        if (hData == nullptr) {
            throw std::runtime_error("there is no resource " + std::to_string(nId));
        }
        return {static_cast<const BYTE*>(LockResource(hData)), SizeofResource(m_hModule, hResource)};
    }

    // The numbers of all resources of a type; one with a name instead counts as 0.
    std::set<int> Ids(PCWSTR pszType) const
    {
        std::set<int> ids;
        const auto add = [](HMODULE, PCWSTR, PWSTR pszName, LONG_PTR lParam) -> BOOL {
            reinterpret_cast<std::set<int>*>(lParam)->insert(
                IS_INTRESOURCE(pszName) ? static_cast<int>(reinterpret_cast<ULONG_PTR>(pszName)) : 0);
            return TRUE;
        };
        EnumResourceNamesW(m_hModule, pszType, add, reinterpret_cast<LONG_PTR>(&ids));
        return ids;
    }

    const std::wstring m_path = ProgramPath();
    const HMODULE m_hModule =
        LoadLibraryExW(m_path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
};

using Resources = CProgram;

TEST_F(Resources, AreOfTheseTypesOnly)
{
    std::set<ULONG_PTR> types;
    const auto add = [](HMODULE, PWSTR pszType, LONG_PTR lParam) -> BOOL {
        reinterpret_cast<std::set<ULONG_PTR>*>(lParam)->insert(reinterpret_cast<ULONG_PTR>(pszType));
        return TRUE;
    };
    ASSERT_TRUE(EnumResourceTypesW(m_hModule, add, reinterpret_cast<LONG_PTR>(&types)));
    const auto number = [](PCWSTR pszType) { return reinterpret_cast<ULONG_PTR>(pszType); };
    EXPECT_EQ((std::set<ULONG_PTR>{number(RT_ICON), number(RT_GROUP_ICON), number(RT_DIALOG), number(RT_STRING),
                                   number(RT_RCDATA), number(RT_VERSION), number(RT_MANIFEST)}),
              types);
}

constexpr std::pair<int, PCWSTR> kTexts[] = {
    // clang-format off
    {201, L"KALVO Solvane Android Watch Installer"},
    {202, L"Turn on Wireless debugging"},
    {203,
     L"The Solvane application is now installed on the watch.   You may now turn off wireless debugging.   Use "
     L"the following steps to turn off wireless debugging:\n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Scroll down and tap Developer options.\n\n"
     L"\t3. Scroll down and turn off Wireless debugging."},
    {204, L"Turn on developer options"},
    {205,
     L"Developer options needs to be enabled on the watch for the installation.  It only needs to be turned on "
     L"during the installation and should be turned off after the installation.\n\n"
     L"Use the following steps to enable developer options: \n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Scroll down and tap About watch.\n\n"
     L"\t3. Scroll down and tap Software information.\n\n"
     L"\t4. Repeatedly tap Software version until popup saying \"Developer mode turned on.\""},
    {206, L" I have enabled developer options on the Android watch"},
    {207, L"Finished Solvane application installation"},
    {208, L"You may now close this application by pressing the Finish button."},
    {209, L" I want to install Solvane on another watch"},
    {210, L"Install Solvane client (APK file)"},
    {211,
     L"You are now ready to install a Solvane application APK file on the watch.  You may press the Next button "
     L"to install the APK file listed below or press the browse button to choose a different APK file.\n\n\n"
     L"Note: it can take up to 45 seconds for the installation process to complete.\n\n\n"
     L"Tip: if installation fails with status \"adb install - device offline\", then try pressing the Next "
     L"button again. It might take several trys for installation to complete."},
    {212, L"Status: connecting to watch at IP address %s using port %d"},
    {213, L"Status: successfully connected to watch, please press Next button"},
    {214, L"Status: unable to connect to watch at IP address %s using port %d"},
    {215, L"Pair watch to workstation"},
    {216,
     L"To use wireless debugging, you must pair your watch to your workstation using a pairing code. During the "
     L"process you will need to take note of the watch six digit pairing code and five digit pairing port "
     L"(located under the pairing code).\n\n"
     L"Use the following steps to pair your watch to your workstation:\n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Scroll down and tap Developer options.\n\n"
     L"\t3. Scroll down and tap Wireless debugging.\n\n"
     L"\t4. Scroll down and tap Pair new device.\n\n"
     L"\t5. A six digit Wi-Fi pairing code is displayed along with the IP address and port.\n\n"
     L"\t7. Note: the port will be different from port entered in previous step."},
    {217, L"Welcome to the Solvane Android watch installer"},
    {218,
     L"This application will install the Solvane Android watch client on to a Samsung Galaxy Watch.\n\n"
     L"For proper installation, the Samsung Galaxy Watch be model 5 or newer and have the most recent Android "
     L"updates installed.\n\n"
     L"The following steps will be done on the watch during the installation process:\n\n"
     L"\t1. Connect a to Wi-Fi network.\n\n"
     L"\t2. Turn on developer options.\n\n"
     L"\t3. Turn on \"Stay awake while charging\" developer option.\n\n"
     L"\t4. Turn on Wireless debugging developer option.\n\n"
     L"\t5. Pair watch to workstation.\n\n"
     L"\t6. Install Solvane client (APK file).\n\n"
     L"Click Next to continue, or About to display information about the application, or Cancel to exit the "
     L"application.\n\n"
     L"Tip: while going through these forms, you can use the Enter Key (instead of the mouse) to press the Next "
     L"button and use the Space Bar to check / uncheck checkboxes."},
    {219, L"Connect to Wi-Fi network"},
    {220,
     L"The watch and your computer must be connected to the same network.  Not all Wi-Fi access points may be "
     L"suitable for the installation.  For example you may need to use an access point whose firewall does have "
     L"\"client isolation\" enabled.\n\n"
     L"Use the following steps to connect the watch to a Wi-Fi network:\n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Tap Connections\n\n"
     L"\t3. Tap Wi-Fi\n\n"
     L"\t4. Scroll down, choose a Wi-Fi network, and enter Wi-Fi password if necessary.\n\n"},
    {221, L" I have connected the Android watch to a Wi-Fi network"},
    {222, L"Turn on Wireless debugging"},
    {223,
     L"Wireless debugging needs to be enabled on the watch for the installation.  It only needs to be enabled "
     L"during the installation and should be turned off after the installation.  During the process you will "
     L"need to take note of the watch IP address (e.g. 192.168.1.100) and port (e.g. 43210).\n\n"
     L"Use the following steps to enable Wireless debugging:\n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Scroll down and tap Developer options.\n\n"
     L"\t3. Scroll down and tap Wireless debugging (do not confuse with \"ADB debugging\").\n\n"
     L"\t4. Turn on Wireless debugging.\n\n"
     L"\t5. Scroll down and check \"Always allow on this network.\" and tap \"Allow\" button\n\n"
     L"\t6. The previous screen is now displayed, scroll down to show the watch IP address and port.\n\n"
     L"Important - if the watch's IP subnet does not match the IP subnet shown below, then your watch might not "
     L"be on the same network as your computer."},
    {224, L"Turn off developer options"},
    {225,
     L"The Solvane application is now installed on the watch.  You may now turn off developer options on the "
     L"watch.\n\n"
     L"Use the following steps to turn off developer options: \n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Scroll down and tap About watch.\n\n"
     L"\t3. Scroll down and tap Software info\n\n"
     L"\t4. Repeatedly tap Software version.\n\n"
     L"\t5. The watch model under Software version will disappear indicating developer options is turned off."},
    {226, L" I have turned off developer options on the Android watch or want to leave it turned on"},
    {227, L"Disconnect from Wi-Fi network"},
    {228,
     L"You may now turn off Wi-Fi on the watch if it is no longer required.\n\n"
     L"Use the following steps to turn off Wi-Fi on the watch:\n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Tap Connections.\n\n"
     L"\t3. Tap Wi-Fi.\n\n"
     L"\t4. Tap on the connected Wi-Fi access point.\n\n"
     L"\t5. Scroll down and tap Forget button.\n\n"
     L"\t6. Change the Wi-Fi slider to Off."},
    {229, L" I have turned off Wi-Fi on the Android watch or want to leave it on"},
    {230, L"Turn on stay awake when charging"},
    {231,
     L"It is very important to enable the \"Stay awake when charging\" developer option.  Failure to do so will "
     L"result in making it difficult to install the application.    It only needs to be enabled during the "
     L"installation and should be turned off after the installation.\n\n"
     L"Use the following steps to enable Stay awake while charging:\n\n"
     L"\t1. Plug in the watch charger and keep the watch placed on the charger\n\n"
     L"\t2. Open the watch Settings.\n\n"
     L"\t3. Scroll down and tap \"Developer options.\"\n\n"
     L"\t4. Turn on \"Stay awake while charging.\""},
    {232, L" IMPORTANT - I have turned on the \"Stay awake when charging\" developer option"},
    {233, L"Revoke ebugging authorizations"},
    {234,
     L"The Solvane application is now installed on the watch.  You may now revoke debugging authorizations (e.g. "
     L"pairings) created during the installation process.\n\n"
     L"Use the following steps to revoke debugging authorizations:\n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Scroll down and tap Developer options\n\n"
     L"\t3. Scroll down and tap \"Revoke debugging authorizations.\"\n\n"
     L"\t4. Press the blue button to confirm you are sure."},
    {235, L" I have revoked debugging authorizations or want to leave them on the watch."},
    {236, L"Turn off stay awake when charging"},
    {237,
     L"The Solvane application is now installed on the watch.  You may now turn off the \"Stay awake when "
     L"charging\" developer option.\n\n"
     L"Use the following steps to turn off \"Stay awake when charging\":\n\n"
     L"\t1. Open the watch Settings.\n\n"
     L"\t2. Scroll down and tap Developer options.\n\n"
     L"\t3. Turn off \"Stay awake when charging.\""},
    {238, L" I have turned off the \"Stay awake when charging\" option or want to leave it turned on"},
    {239, L" I have turned off Wireless debugging or want to leave it turned on"},
    {240, L"Solvane client installed"},
    {241,
     L"The Solvane client application is now installed on the watch.\n\n"
     L"Click the Next button for instructions how to undo changes made in previous steps."},
    // clang-format on
};

using Texts = CProgram;

TEST_F(Texts, AreTheseAndNoOthers)
{
    // A block of the string table holds sixteen texts, absent ones with length 0.
    std::map<int, std::wstring> texts;
    for (const int nBlock : Ids(RT_STRING)) {
        CReader reader(Resource(RT_STRING, nBlock));
        for (int i = 0; i < 16; i++) {
            std::wstring text(reader.Take<WORD>(), L'\0');
            for (WCHAR& ch : text) {
                ch = reader.Take<WCHAR>();
            }
            if (!text.empty()) {
                texts[((nBlock - 1) * 16) + i] = text;
            }
        }
    }
    for (const auto& [nId, pszText] : kTexts) {
        EXPECT_EQ(pszText, texts[nId]) << nId;
        texts.erase(nId);
    }
    EXPECT_EQ((std::map<int, std::wstring>{}), texts) << "are others";
}

constexpr DWORD kVisible = WS_CHILD | WS_VISIBLE;
constexpr DWORD kStatic = kVisible | WS_GROUP | SS_LEFT;
constexpr DWORD kButton = kVisible | WS_TABSTOP | BS_PUSHBUTTON;
constexpr DWORD kCheckBox = kVisible | WS_TABSTOP | BS_AUTOCHECKBOX;
constexpr DWORD kHiddenCheckBox = WS_CHILD | WS_TABSTOP | BS_AUTOCHECKBOX;
constexpr DWORD kNumber = kVisible | WS_TABSTOP | WS_BORDER | ES_LEFT | ES_NUMBER;
constexpr DWORD kPath = kVisible | WS_TABSTOP | WS_BORDER | ES_LEFT | ES_AUTOHSCROLL;
constexpr DWORD kAddress = kVisible | WS_TABSTOP;

constexpr DWORD kNoId = static_cast<DWORD>(-1);

// All that a template has of a control, in words.
std::wstring Control(const std::wstring& windowClass, DWORD nId, int x, int y, int cx, int cy, DWORD nStyle,
                     const std::wstring& text, DWORD nExtendedStyle = 0, DWORD nHelpId = 0, WORD nExtraBytes = 0)
{
    std::wostringstream words;
    words << windowClass << L' ' << static_cast<int>(nId) << L" at " << x << L' ' << y << L", size " << cx << L' ' << cy
          << std::hex << L", style 0x" << nStyle << L", extended style 0x" << nExtendedStyle << std::dec << L", help "
          << nHelpId << L", extra bytes " << nExtraBytes << L", text '" << text << L'\'';
    return words.str();
}

struct CDialog
{
    std::wstring m_frame; // everything but the controls, in words
    std::vector<std::wstring> m_controls;
};

// A name, or 0xFFFF and a number that stands for one.
std::wstring TakeNameOrNumber(CReader& reader)
{
    const auto ch = reader.Take<WCHAR>();
    if (ch == 0xFFFF) {
        return L"#" + std::to_wstring(reader.Take<WORD>());
    }
    return ch == L'\0' ? L"" : ch + reader.TakeText();
}

// In upper case; a compiler of resources writes a usual class as its number or as its name.
std::wstring TakeClass(CReader& reader)
{
    static const std::map<std::wstring, std::wstring> names = {
        {L"#128", L"BUTTON"}, {L"#129", L"EDIT"}, {L"#130", L"STATIC"}};
    std::wstring name = TakeNameOrNumber(reader);
    CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
    const auto it = names.find(name);
    return it == names.end() ? name : it->second;
}

std::wstring TakeControl(CReader& reader)
{
    reader.Align(sizeof(DWORD));
    const auto nHelpId = reader.Take<DWORD>();
    const auto nExtendedStyle = reader.Take<DWORD>();
    const auto nStyle = reader.Take<DWORD>();
    const auto x = reader.Take<short>();
    const auto y = reader.Take<short>();
    const auto cx = reader.Take<short>();
    const auto cy = reader.Take<short>();
    const auto nId = reader.Take<DWORD>();
    const std::wstring windowClass = TakeClass(reader);
    const std::wstring text = TakeNameOrNumber(reader);
    return Control(windowClass, nId, x, y, cx, cy, nStyle, text, nExtendedStyle, nHelpId, reader.Take<WORD>());
}

// Reads the newer of the two formats of a dialog template (DIALOGEX) with a font; throws for the older.
CDialog ReadDialog(Bytes data)
{
    CReader reader(data);
    if (reader.Take<WORD>() != 1 || reader.Take<WORD>() != 0xFFFF) {
        throw std::runtime_error("not a DLGTEMPLATEEX");
    }
    CDialog dialog;
    std::wostringstream frame;
    frame << L"help " << reader.Take<DWORD>() << std::hex << L", extended style 0x" << reader.Take<DWORD>();
    frame << L", style 0x" << reader.Take<DWORD>() << std::dec;
    const auto nControls = reader.Take<WORD>();
    frame << L", at " << reader.Take<short>() << L' ' << reader.Take<short>();
    frame << L", size " << reader.Take<short>() << L' ' << reader.Take<short>();
    frame << L", menu '" << TakeNameOrNumber(reader) << L"', class '" << TakeNameOrNumber(reader);
    frame << L"', title '" << reader.TakeText() << L"', points " << reader.Take<WORD>();
    frame << L", weight " << reader.Take<WORD>() << L", italic " << int{reader.Take<BYTE>()};
    frame << L", charset " << int{reader.Take<BYTE>()} << L", font '" << reader.TakeText() << L'\'';
    dialog.m_frame = frame.str();
    for (int i = 0; i < nControls; i++) {
        dialog.m_controls.push_back(TakeControl(reader));
    }
    reader.Align(sizeof(DWORD));
    if (!reader.AtEnd()) {
        throw std::runtime_error("more data than controls");
    }
    return dialog;
}

std::wstring Label(int x, int y, int cx, PCWSTR pszText, DWORD nId = kNoId)
{
    return Control(L"STATIC", nId, x, y, cx, 8, kStatic, pszText);
}

std::wstring Body(DWORD nId, int cy)
{
    return Control(L"STATIC", nId, 7, 7, 353, cy, kStatic, L"Static");
}

// A page with a text and a box to tick.
std::vector<std::wstring> InstructionPage(DWORD nBody, DWORD nCheck, DWORD nCheckStyle = kCheckBox)
{
    return {Body(nBody, 173), Control(L"BUTTON", nCheck, 7, 206, 295, 10, nCheckStyle, L"Check1")};
}

using Pages = CProgram;

TEST_F(Pages, AreFourteenOfOneFrameWithTheseControlsInThisOrder)
{
    const std::map<int, std::vector<std::wstring>> pages = {
        {202, InstructionPage(1010, 1012)},
        {203, InstructionPage(1014, 1015)},
        {204,
         {
             Body(1016, 173),
             Label(8, 189, 75, L"Watch IP Address"),
             Label(111, 189, 34, L"Port"),
             Control(L"SYSIPADDRESS32", 1018, 7, 201, 100, 15, kAddress, L""),
             Control(L"EDIT", 1030, 110, 201, 33, 15, kNumber | ES_AUTOHSCROLL, L""),
             Label(181, 190, 23, L"Status:"),
             Label(181, 202, 179, L"Enter watch IP address and port, then press next.", 1031),
         }},
        {206,
         {
             Body(1019, 173),
             Label(7, 177, 84, L"APK file to install on watch"),
             Control(L"EDIT", 1038, 7, 187, 297, 14, kPath, L""),
             Control(L"BUTTON", 1022, 310, 186, 50, 14, kButton, L"Browse ..."),
             Label(7, 208, 23, L"Status:"),
             Label(34, 208, 326, L"Enter path to APK and then press Next button.", 1021),
         }},
        {214, {Body(1028, 193), Control(L"BUTTON", 1039, 310, 202, 50, 14, kButton, L"About ...")}},
        {215,
         {
             Body(1034, 173),
             Label(7, 189, 43, L"Pairing Code"),
             Label(60, 190, 75, L"Watch IP Address"),
             Label(162, 189, 31, L"Port"),
             Control(L"EDIT", 1032, 7, 201, 44, 15, kNumber, L""),
             Control(L"SYSIPADDRESS32", 1035, 59, 201, 100, 15, kAddress | WS_DISABLED, L""),
             Control(L"EDIT", 1036, 161, 201, 33, 15, kNumber, L""),
             Control(L"BUTTON", 1037, 7, 173, 264, 10, kCheckBox,
                     L"Skip this step, the watch is already paired to this workstation."),
             Label(204, 190, 23, L"Status:"),
             Label(204, 202, 156, L"Enter port number and pairing code", 1033),
         }},
        {216, InstructionPage(1040, 1041, kHiddenCheckBox)},
        {217, InstructionPage(1042, 1043)},
        {218, InstructionPage(1044, 1045)},
        {219, InstructionPage(1046, 1047)},
        {220, InstructionPage(1048, 1049)},
        {221, InstructionPage(1050, 1051)},
        {222, InstructionPage(1052, 1053)},
        {224, {Body(1054, 193)}},
    };
    std::set<int> numbers;
    for (const auto& [nId, controls] : pages) {
        SCOPED_TRACE(nId);
        numbers.insert(nId);
        const CDialog dialog = ReadDialog(Resource(RT_DIALOG, nId));
        // The style is WS_CHILD, WS_CAPTION and DS_SHELLFONT.
        EXPECT_EQ(L"help 0, extended style 0x0, style 0x40c00048, at 0 0, size 367 223, menu '', class '', title '', "
                  L"points 9, weight 400, italic 0, charset 1, font 'MS Shell Dlg'",
                  dialog.m_frame);
        EXPECT_EQ(controls, dialog.m_controls);
    }
    EXPECT_EQ(numbers, Ids(RT_DIALOG));
}

using Icon = CProgram;

TEST_F(Icon, IsTheOnlyOneAndHasAnImageThatWindowsCanShowInAllUsualSizes)
{
    EXPECT_EQ(std::set<int>{206}, Ids(RT_GROUP_ICON));
    CReader reader(Resource(RT_GROUP_ICON, 206));
    EXPECT_EQ(0, reader.Take<WORD>());
    EXPECT_EQ(1, reader.Take<WORD>()) << "an icon, not a cursor";
    const auto nImages = reader.Take<WORD>();
    std::vector<int> sizes;
    for (int i = 0; i < nImages; i++) {
        const auto nWidth = reader.Take<BYTE>();
        EXPECT_EQ(nWidth, reader.Take<BYTE>());
        reader.Take<WORD>(); // colours and a reserved byte
        reader.Take<WORD>(); // planes
        const int nSize = nWidth == 0 ? 256 : nWidth;
        SCOPED_TRACE(nSize);
        sizes.push_back(nSize);
        EXPECT_EQ(32, reader.Take<WORD>()) << "bits per pixel";
        const auto cb = reader.Take<DWORD>();
        const Bytes data = Resource(RT_ICON, reader.Take<WORD>());
        EXPECT_EQ(cb, data.size());
        const HICON hIcon = CreateIconFromResourceEx(const_cast<BYTE*>(data.data()), cb, TRUE, 0x00030000, 0, 0, 0);
        ASSERT_NE(nullptr, hIcon);
        ICONINFO info{};
        ASSERT_TRUE(GetIconInfo(hIcon, &info));
        BITMAP bitmap{};
        EXPECT_NE(0, GetObjectW(info.hbmColor, sizeof(bitmap), &bitmap));
        EXPECT_EQ(nSize, bitmap.bmWidth);
        EXPECT_EQ(nSize, bitmap.bmHeight);
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        DestroyIcon(hIcon);
    }
    EXPECT_EQ((std::vector<int>{16, 20, 24, 32, 40, 48, 64, 96, 128, 256}), sizes);
}

using Version = CProgram;

TEST_F(Version, Is1400AndNamesTheMakerTheProductAndTheFile)
{
    DWORD nHandle = 0;
    std::vector<BYTE> data(GetFileVersionInfoSizeExW(0, m_path.c_str(), &nHandle));
    ASSERT_TRUE(GetFileVersionInfoExW(0, m_path.c_str(), nHandle, static_cast<DWORD>(data.size()), data.data()));
    void* pBlock = nullptr;
    UINT cb = 0;
    ASSERT_TRUE(VerQueryValueW(data.data(), L"\\", &pBlock, &cb));
    ASSERT_EQ(sizeof(VS_FIXEDFILEINFO), cb);
    const auto* pInfo = static_cast<const VS_FIXEDFILEINFO*>(pBlock);
    EXPECT_EQ(0xFEEF04BD, pInfo->dwSignature);
    EXPECT_EQ(DWORD{MAKELONG(4, 1)}, pInfo->dwFileVersionMS);
    EXPECT_EQ(0U, pInfo->dwFileVersionLS);
    EXPECT_EQ(DWORD{MAKELONG(4, 1)}, pInfo->dwProductVersionMS);
    EXPECT_EQ(0U, pInfo->dwProductVersionLS);
    EXPECT_EQ(0U, pInfo->dwFileFlags & pInfo->dwFileFlagsMask);
    EXPECT_EQ(static_cast<DWORD>(VOS_NT_WINDOWS32), pInfo->dwFileOS);
    EXPECT_EQ(static_cast<DWORD>(VFT_APP), pInfo->dwFileType);

    const std::pair<std::wstring, std::wstring> texts[] = {
        {L"CompanyName", L"KALVO"},
        {L"FileDescription", L"KALVO Solvane Android Watch Installer"},
        {L"ProductName", L"KALVO Solvane Android Watch Installer"},
        {L"OriginalFilename", L"KalvoApkInstaller.exe"},
        {L"FileVersion", L"1.4.0.0"},
        {L"ProductVersion", L"1.4.0.0"},
    };
    for (const auto& [name, expected] : texts) {
        void* pText = nullptr;
        ASSERT_TRUE(VerQueryValueW(data.data(), (L"\\StringFileInfo\\040904b0\\" + name).c_str(), &pText, &cb)) << name;
        EXPECT_EQ(expected, static_cast<PCWSTR>(pText));
    }
}

using Manifest = CProgram;

// Wine forgives what Windows does not: a name space or an attribute that is written otherwise is passed over there, or
// the program is not started at all.
TEST_F(Manifest, IsWordForWordWhatWindowsKnows)
{
    // Comments count for nothing, nor do the blanks that only lay it out.
    const Bytes data = Resource(RT_MANIFEST, 1);
    std::string text(data.begin(), data.end());
    text = std::regex_replace(text, std::regex("<!--[^]*?-->"), "");
    text = std::regex_replace(text, std::regex(R"(\s+)"), " ");
    text = std::regex_replace(text, std::regex(" ?([<>]) ?"), "$1");
    EXPECT_EQ(
        R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
        R"(<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">)"
        R"(<assemblyIdentity type="win32" name="KALVO.ApkInstaller" version="1.4.0.0" processorArchitecture="*"/>)"
        R"(<description>KALVO Solvane Android Watch Installer</description>)"
        R"(<dependency><dependentAssembly>)"
        R"(<assemblyIdentity type="win32" name="Microsoft.Windows.Common-Controls" version="6.0.0.0" )"
        R"(processorArchitecture="*" publicKeyToken="6595b64144ccf1df" language="*"/>)"
        R"(</dependentAssembly></dependency>)"
        R"(<compatibility xmlns="urn:schemas-microsoft-com:compatibility.v1"><application>)"
        R"(<supportedOS Id="{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"/>)"
        R"(</application></compatibility>)"
        R"(<trustInfo xmlns="urn:schemas-microsoft-com:asm.v3"><security><requestedPrivileges>)"
        R"(<requestedExecutionLevel level="asInvoker" uiAccess="false"/>)"
        R"(</requestedPrivileges></security></trustInfo>)"
        R"(<application xmlns="urn:schemas-microsoft-com:asm.v3"><windowsSettings>)"
        R"(<dpiAware xmlns="http://schemas.microsoft.com/SMI/2005/WindowsSettings">true</dpiAware>)"
        R"(</windowsSettings></application></assembly>)",
        text);
    EXPECT_EQ(std::set<int>{1}, Ids(RT_MANIFEST));
}

TEST_F(Manifest, IsUnderstoodByTheSystem)
{
    ACTCTXW description{};
    description.cbSize = sizeof(description);
    description.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID;
    description.lpSource = m_path.c_str();
    description.lpResourceName = MAKEINTRESOURCEW(1);
    const HANDLE hContext = CreateActCtxW(&description);
    ASSERT_NE(INVALID_HANDLE_VALUE, hContext) << "it is not well-formed, error " << GetLastError();

    ULONG_PTR nCookie = 0;
    ASSERT_TRUE(ActivateActCtx(hContext, &nCookie));
    ACTCTX_SECTION_KEYED_DATA section{};
    section.cbSize = sizeof(section);
    EXPECT_TRUE(FindActCtxSectionStringW(0, nullptr, ACTIVATION_CONTEXT_SECTION_WINDOW_CLASS_REDIRECTION,
                                         L"SysIPAddress32", &section))
        << "version 6 of the common controls";
    DeactivateActCtx(0, nCookie);

    SIZE_T cb = 0;
    ACTIVATION_CONTEXT_RUN_LEVEL_INFORMATION level{};
    EXPECT_TRUE(QueryActCtxW(0, hContext, nullptr, RunlevelInformationInActivationContext, &level, sizeof(level), &cb));
    EXPECT_EQ(ACTCTX_RUN_LEVEL_AS_INVOKER, level.RunLevel);
    EXPECT_EQ(0U, level.UiAccess);

    std::string systems(1024, '\0');
    EXPECT_TRUE(QueryActCtxW(0, hContext, nullptr, CompatibilityInformationInActivationContext, systems.data(),
                             systems.size(), &cb));
    const GUID windows10 = {0x8e0f7a12, 0xbfb3, 0x4fe8, {0xb9, 0xa5, 0x48, 0xfd, 0x50, 0xa1, 0x5a, 0x9a}};
    EXPECT_NE(std::string::npos, systems.find({reinterpret_cast<const char*>(&windows10), sizeof(windows10)}));
    ReleaseActCtx(hContext);
}

using Archive = CProgram;

TEST_F(Archive, HoldsTheThreeToolsInTheirFolderAllDeflatedPlainAndWhole)
{
    EXPECT_EQ(std::set<int>{223}, Ids(RT_RCDATA));
    const Bytes data = Resource(RT_RCDATA, 223);
    mz_zip_archive zip{};
    ASSERT_TRUE(mz_zip_reader_init_mem(&zip, data.data(), data.size(), 0));
    std::vector<std::string> names;
    mz_uint64 cb = 22; // the end of the directory
    for (mz_uint i = 0; i < mz_zip_reader_get_num_files(&zip); i++) {
        mz_zip_archive_file_stat member;
        ASSERT_TRUE(mz_zip_reader_file_stat(&zip, i, &member));
        names.emplace_back(member.m_filename);
        SCOPED_TRACE(names.back());
        EXPECT_EQ(8, member.m_method);
        EXPECT_FALSE(member.m_is_encrypted);
        EXPECT_EQ(0, member.m_bit_flag);
        EXPECT_LT(member.m_comp_size, member.m_uncomp_size);
        cb += 30 + names.back().size() + member.m_comp_size + 46 + names.back().size();

        // Extraction compares the checksum.
        std::vector<BYTE> file(static_cast<size_t>(member.m_uncomp_size));
        EXPECT_TRUE(mz_zip_reader_extract_to_mem(&zip, i, file.data(), file.size(), 0));
        EXPECT_EQ(IMAGE_DOS_SIGNATURE, CReader(file).Take<WORD>());
    }
    EXPECT_EQ((std::vector<std::string>{"platform-tools/adb.exe", "platform-tools/AdbWinApi.dll",
                                        "platform-tools/AdbWinUsbApi.dll"}),
              names);
    EXPECT_EQ(cb, data.size()) << "extra fields, comments or something between the members";
    mz_zip_reader_end(&zip);
}

// The program as it lies on disk.
class ProgramFile : public testing::Test
{
protected:
    ProgramFile()
    {
        std::ifstream file(std::filesystem::path(ProgramPath()), std::ios::binary);
        m_data.assign(std::istreambuf_iterator<char>(file), {});
        m_pHeaders = m_data.empty() ? nullptr : ImageNtHeader(m_data.data());
        if (m_pHeaders == nullptr) {
            throw std::runtime_error("not a program of Windows");
        }
    }

    // The libraries, in lower case, that must be there for the program to start.
    std::set<std::string> ImportedLibraries()
    {
        std::set<std::string> libraries;
        ULONG cb = 0;
        const auto* pImport = static_cast<const IMAGE_IMPORT_DESCRIPTOR*>(
            ImageDirectoryEntryToData(m_data.data(), FALSE, IMAGE_DIRECTORY_ENTRY_IMPORT, &cb));
        for (; pImport->Name != 0; pImport++) {
            std::string name =
                static_cast<const char*>(ImageRvaToVa(m_pHeaders, m_data.data(), pImport->Name, nullptr));
            CharLowerA(name.data());
            libraries.insert(name);
        }
        return libraries;
    }

    std::vector<char> m_data;
    IMAGE_NT_HEADERS64* m_pHeaders = nullptr;
};

TEST_F(ProgramFile, IsFor64BitWindowsWithoutAConsoleAndExecutesNoDataWhereverItLies)
{
    EXPECT_EQ(IMAGE_FILE_MACHINE_AMD64, m_pHeaders->FileHeader.Machine);
    EXPECT_EQ(IMAGE_NT_OPTIONAL_HDR64_MAGIC, m_pHeaders->OptionalHeader.Magic);
    EXPECT_EQ(IMAGE_SUBSYSTEM_WINDOWS_GUI, m_pHeaders->OptionalHeader.Subsystem);
    constexpr WORD kWanted = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA |
                             IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
    EXPECT_EQ(kWanted, m_pHeaders->OptionalHeader.DllCharacteristics & kWanted);
}

TEST_F(ProgramFile, NeedsOnlyLibrariesThatWindows10Has)
{
    // Library sets (api-ms-win-...) are names that Windows itself resolves: of the path functions, and of the
    // universal C runtime for compilers that use it.
    const std::set<std::string> known = {"advapi32.dll", "comctl32.dll",
                                         "gdi32.dll",    "iphlpapi.dll",
                                         "kernel32.dll", "msvcrt.dll",
                                         "ole32.dll",    "oleaut32.dll",
                                         "shell32.dll",  "shlwapi.dll",
                                         "user32.dll",   "version.dll",
                                         "ws2_32.dll",   "api-ms-win-core-path-l1-1-0.dll"};
    const std::set<std::string> libraries = ImportedLibraries();
    EXPECT_TRUE(libraries.contains("kernel32.dll")) << "this test's own reading";
    for (const std::string& library : libraries) {
        EXPECT_TRUE(known.contains(library) || library.starts_with("api-ms-win-crt-")) << library;
    }
    const auto& delayed = m_pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT];
    EXPECT_EQ(0U, delayed.VirtualAddress) << "nothing is looked for later either";
}

} // namespace
