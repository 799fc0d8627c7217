// The outcomes with their names and messages, as the users know them.

#include "adb/AdbExitCode.h"

#include "tests/kit/Test.h"

#include <algorithm>

using namespace kit;

namespace {

struct Outcome
{
    int nCode;
    PCWSTR pszName;
    PCWSTR pszMessage;
};

constexpr Outcome kOutcomes[] = {
    {0, L"ADB_SUCCESS", L"Success"},
    {2, L"ADB_CREATE_FAILED", L"CConsoleProcess::CreateProcess() failed"},
    {3, L"ADB_READSTDOUT_FAILED", L"CConsoleProcess::ReadStandardOutput() failed"},
    {4, L"ADB_GETEXITCODE_FAILED", L"CConsoleProcess::GetExitCode() failed"},
    {5, L"ADB_CLOSE_FAILED", L"CConsoleProcess::Close() failed"},
    {6, L"ADB_PARSE_ERROR", L"Error parsing command output"},
    {100, L"CONNECT_ALREADY_CONNECTED", L"adb connect - already connected"},
    {101, L"CONNECT_CANNOT_CONNECT", L"adb connect - cannot connect"},
    {102, L"CONNECT_FAILED_TO_AUTHENTICATE", L"adb connect - failed to authenticate"},
    {300, L"INSTALL_FAILED", L"Install failed."},
    {301, L"INSTALL_FAILED_KALVO_UNKNOWN_ERROR", L"Unknown error, please report this message to KALVO."},
    {302, L"INSTALL_FAILED_ALREADY_EXISTS", L"The package is already installed."},
    {303, L"INSTALL_FAILED_INVALID_APK", L"The package archive file is invalid."},
    {304, L"INSTALL_FAILED_INVALID_URI", L"The URI passed in is invalid."},
    {305, L"INSTALL_FAILED_INSUFFICIENT_STORAGE",
     L"The package manager service found that the device didn't have enough storage space to install the "
     L"app."},
    {306, L"INSTALL_FAILED_DUPLICATE_PACKAGE", L"A package is already installed with the same name."},
    {307, L"INSTALL_FAILED_NO_SHARED_USER", L"The requested shared user does not exist."},
    {308, L"INSTALL_FAILED_UPDATE_INCOMPATIBLE",
     L"A previously installed package of the same name has a different signature than the new package(and "
     L"the old package's data was not removed."},
    {309, L"INSTALL_FAILED_SHARED_USER_INCOMPATIBLE",
     L"The new package is requested a shared user which is already installed on the device and does not "
     L"have matching signature."},
    {310, L"INSTALL_FAILED_MISSING_SHARED_LIBRARY", L"The new package uses a shared library that is not available."},
    {311, L"INSTALL_FAILED_REPLACE_COULDNT_DELETE",
     L"[The new package could not repelace the old package because the old package could not be deleted.]"},
    {312, L"INSTALL_FAILED_DEXOPT",
     L"The new package failed while optimizing and validating its dex files, either because there was not "
     L"enough storage or the validation failed."},
    {313, L"INSTALL_FAILED_OLDER_SDK",
     L"The new package failed because the current SDK version is older than that required by the package."},
    {314, L"INSTALL_FAILED_CONFLICTING_PROVIDER",
     L"The new package failed because it contains a content provider with the same authority as a provider "
     L"already installed in the system."},
    {315, L"INSTALL_FAILED_NEWER_SDK",
     L"The new package failed because the current SDK version is newer than that required by the package."},
    {316, L"INSTALL_FAILED_TEST_ONLY",
     L"The new package failed because it has specified that it is a test-only package and the caller has "
     L"not supplied the INSTALL_ALLOW_TEST flag."},
    {317, L"INSTALL_FAILED_CPU_ABI_INCOMPATIBLE",
     L"The package being installed contains native code, but none that is compatible with the device's "
     L"CPU_ABI."},
    {318, L"INSTALL_FAILED_MISSING_FEATURE", L"The new package uses a feature that is not available."},
    {319, L"INSTALL_FAILED_CONTAINER_ERROR", L"A secure container mount point couldn't be accessed on external media."},
    {320, L"INSTALL_FAILED_INVALID_INSTALL_LOCATION",
     L"The new package couldn't be installed in the specified install location."},
    {321, L"INSTALL_FAILED_MEDIA_UNAVAILABLE",
     L"The new package couldn't be installed in the specified install location because the media is not "
     L"available."},
    {322, L"INSTALL_FAILED_VERIFICATION_TIMEOUT",
     L"The new package couldn't be installed because the verification timed out."},
    {323, L"INSTALL_FAILED_VERIFICATION_FAILURE",
     L"The new package couldn't be installed because the verification did not succeed."},
    {324, L"INSTALL_FAILED_PACKAGE_CHANGED", L"The package changed from what the calling program expected."},
    {325, L"INSTALL_FAILED_UID_CHANGED", L"The new package is assigned a different UID than it previously held."},
    {326, L"INSTALL_FAILED_VERSION_DOWNGRADE",
     L"The new package has an older version code than the currently installed package."},
    {327, L"INSTALL_PARSE_FAILED_NOT_APK",
     L"adb install - The parser was given a path that is not a file, or does not end with the expected "
     L"'.apk' extension."},
    {328, L"INSTALL_PARSE_FAILED_BAD_MANIFEST",
     L"adb install - The parser was unable to retrieve the AndroidManifest.xml file."},
    {329, L"INSTALL_PARSE_FAILED_UNEXPECTED_EXCEPTION",
     L"adb install - The parser encountered an unexpected exception."},
    {330, L"INSTALL_PARSE_FAILED_NO_CERTIFICATES",
     L"adb install - The parser did not find any certificates in the .apk."},
    {331, L"INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES",
     L"adb install - The parser found inconsistent certificates on the files in the .apk."},
    {332, L"INSTALL_PARSE_FAILED_CERTIFICATE_ENCODING",
     L"adb install - The parser encountered a CertificateEncodingException in one of the files in the.apk."},
    {333, L"INSTALL_PARSE_FAILED_BAD_PACKAGE_NAME",
     L"adb install - The parser encountered a bad or missing package name in the manifest."},
    {334, L"INSTALL_PARSE_FAILED_BAD_SHARED_USER_ID",
     L"adb install - The parser encountered a bad shared user id name in the manifest."},
    {335, L"INSTALL_PARSE_FAILED_MANIFEST_MALFORMED",
     L"adb install - The parser encountered some structural problem in the manifest."},
    {336, L"INSTALL_PARSE_FAILED_MANIFEST_EMPTY",
     L"adb install - The parser did not find any actionable tags (instrumentation or application) in the "
     L"manifest."},
    {337, L"INSTALL_FAILED_INTERNAL_ERROR",
     L"adb install - The system failed to install the package because of system issues."},
    {338, L"INSTALL_FAILED_USER_RESTRICTED",
     L"adb install - The system failed to install the package because the user is restricted from "
     L"installing apps."},
    {339, L"INSTALL_FAILED_DUPLICATE_PERMISSION",
     L"adb install - failed to install - The system failed to install the package because it is attempting "
     L"to define a permission that is already defined by some existing package."},
    {340, L"INSTALL_FAILED_NO_MATCHING_ABIS",
     L"adb install - failed to install - The system failed to install the package because its packaged "
     L"native code did not match any of the ABIs supported by the system."},
    {341, L"INSTALL_FAILED_ABORTED", L"adb install - failed to install - The system aborted the install"},
    {342, L"INSTALL_FAILED_STAT", L"adb install - failed to stat"},
    {343, L"INSTALL_MORE_THAN_ONE_DEVICE", L"adb install - more than one Android device attached"},
    {344, L"INSTALL_DEVICE_OFFLINE", L"adb install - device offline"},
    {345, L"INSTALL_NO_DEVICES_FOUND", L"adb install - no devices found"},
    {400, L"KILL_SEVER_NOT_STARTED", L"adb kill-server - server not started"},
    {500, L"PAIR_ALREADY_PAIRED", L"adb pair - already paired"},
    {501, L"PAIR_FAILED", L"adb pair - pair failed"},
    {600, L"START_SERVER_ALREADY_STARTED", L"adb start-server - server already started"},
};

class AdbExitCode : public Test
{
};

TEST_F(AdbExitCode, EveryOutcomeHasItsNameAndMessage)
{
    for (const Outcome& outcome : kOutcomes) {
        ADB_EXIT_CODE_ENTRY entry = {};
        ASSERT_TRUE(LookupAdbExitCode(static_cast<ADB_EXIT_CODE>(outcome.nCode), entry)) << outcome.nCode;
        EXPECT_STREQ(entry.pszName, outcome.pszName) << outcome.nCode;
        EXPECT_STREQ(entry.pszMessage, outcome.pszMessage) << outcome.nCode;
    }
}

TEST_F(AdbExitCode, NoOtherNumberIsAnOutcome)
{
    for (int nCode = -10; nCode < 2000; ++nCode) {
        const bool bKnown = std::ranges::count(kOutcomes, nCode, &Outcome::nCode) == 1;
        ADB_EXIT_CODE_ENTRY entry = {L"name", L"message"};
        EXPECT_EQ(LookupAdbExitCode(static_cast<ADB_EXIT_CODE>(nCode), entry), bKnown) << nCode;
        if (!bKnown) {
            EXPECT_STREQ(entry.pszName, L"name");
            EXPECT_STREQ(entry.pszMessage, L"message");
        }
    }
}

TEST_F(AdbExitCode, TheNamesInTheCodeHaveTheirValues)
{
#define EXPECT_VALUE(value, name) EXPECT_EQ(static_cast<int>(name), value)
    EXPECT_VALUE(0, ADB_SUCCESS);
    EXPECT_VALUE(2, ADB_CREATE_FAILED);
    EXPECT_VALUE(3, ADB_READSTDOUT_FAILED);
    EXPECT_VALUE(4, ADB_GETEXITCODE_FAILED);
    EXPECT_VALUE(5, ADB_CLOSE_FAILED);
    EXPECT_VALUE(6, ADB_PARSE_ERROR);
    EXPECT_VALUE(100, CONNECT_ALREADY_CONNECTED);
    EXPECT_VALUE(101, CONNECT_CANNOT_CONNECT);
    EXPECT_VALUE(102, CONNECT_FAILED_TO_AUTHENTICATE);
    EXPECT_VALUE(300, INSTALL_FAILED);
    EXPECT_VALUE(301, INSTALL_FAILED_KALVO_UNKNOWN_ERROR);
    EXPECT_VALUE(302, INSTALL_FAILED_ALREADY_EXISTS);
    EXPECT_VALUE(303, INSTALL_FAILED_INVALID_APK);
    EXPECT_VALUE(304, INSTALL_FAILED_INVALID_URI);
    EXPECT_VALUE(305, INSTALL_FAILED_INSUFFICIENT_STORAGE);
    EXPECT_VALUE(306, INSTALL_FAILED_DUPLICATE_PACKAGE);
    EXPECT_VALUE(307, INSTALL_FAILED_NO_SHARED_USER);
    EXPECT_VALUE(308, INSTALL_FAILED_UPDATE_INCOMPATIBLE);
    EXPECT_VALUE(309, INSTALL_FAILED_SHARED_USER_INCOMPATIBLE);
    EXPECT_VALUE(310, INSTALL_FAILED_MISSING_SHARED_LIBRARY);
    EXPECT_VALUE(311, INSTALL_FAILED_REPLACE_COULDNT_DELETE);
    EXPECT_VALUE(312, INSTALL_FAILED_DEXOPT);
    EXPECT_VALUE(313, INSTALL_FAILED_OLDER_SDK);
    EXPECT_VALUE(314, INSTALL_FAILED_CONFLICTING_PROVIDER);
    EXPECT_VALUE(315, INSTALL_FAILED_NEWER_SDK);
    EXPECT_VALUE(316, INSTALL_FAILED_TEST_ONLY);
    EXPECT_VALUE(317, INSTALL_FAILED_CPU_ABI_INCOMPATIBLE);
    EXPECT_VALUE(318, INSTALL_FAILED_MISSING_FEATURE);
    EXPECT_VALUE(319, INSTALL_FAILED_CONTAINER_ERROR);
    EXPECT_VALUE(320, INSTALL_FAILED_INVALID_INSTALL_LOCATION);
    EXPECT_VALUE(321, INSTALL_FAILED_MEDIA_UNAVAILABLE);
    EXPECT_VALUE(322, INSTALL_FAILED_VERIFICATION_TIMEOUT);
    EXPECT_VALUE(323, INSTALL_FAILED_VERIFICATION_FAILURE);
    EXPECT_VALUE(324, INSTALL_FAILED_PACKAGE_CHANGED);
    EXPECT_VALUE(325, INSTALL_FAILED_UID_CHANGED);
    EXPECT_VALUE(326, INSTALL_FAILED_VERSION_DOWNGRADE);
    EXPECT_VALUE(327, INSTALL_PARSE_FAILED_NOT_APK);
    EXPECT_VALUE(328, INSTALL_PARSE_FAILED_BAD_MANIFEST);
    EXPECT_VALUE(329, INSTALL_PARSE_FAILED_UNEXPECTED_EXCEPTION);
    EXPECT_VALUE(330, INSTALL_PARSE_FAILED_NO_CERTIFICATES);
    EXPECT_VALUE(331, INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES);
    EXPECT_VALUE(332, INSTALL_PARSE_FAILED_CERTIFICATE_ENCODING);
    EXPECT_VALUE(333, INSTALL_PARSE_FAILED_BAD_PACKAGE_NAME);
    EXPECT_VALUE(334, INSTALL_PARSE_FAILED_BAD_SHARED_USER_ID);
    EXPECT_VALUE(335, INSTALL_PARSE_FAILED_MANIFEST_MALFORMED);
    EXPECT_VALUE(336, INSTALL_PARSE_FAILED_MANIFEST_EMPTY);
    EXPECT_VALUE(337, INSTALL_FAILED_INTERNAL_ERROR);
    EXPECT_VALUE(338, INSTALL_FAILED_USER_RESTRICTED);
    EXPECT_VALUE(339, INSTALL_FAILED_DUPLICATE_PERMISSION);
    EXPECT_VALUE(340, INSTALL_FAILED_NO_MATCHING_ABIS);
    EXPECT_VALUE(341, INSTALL_FAILED_ABORTED);
    EXPECT_VALUE(342, INSTALL_FAILED_STAT);
    EXPECT_VALUE(343, INSTALL_MORE_THAN_ONE_DEVICE);
    EXPECT_VALUE(344, INSTALL_DEVICE_OFFLINE);
    EXPECT_VALUE(345, INSTALL_NO_DEVICES_FOUND);
    EXPECT_VALUE(400, KILL_SEVER_NOT_STARTED);
    EXPECT_VALUE(500, PAIR_ALREADY_PAIRED);
    EXPECT_VALUE(501, PAIR_FAILED);
    EXPECT_VALUE(600, START_SERVER_ALREADY_STARTED);
#undef EXPECT_VALUE
}

TEST_F(AdbExitCode, TextsAreStatic)
{
    for (const Outcome& outcome : kOutcomes) {
        ADB_EXIT_CODE_ENTRY first = {};
        ADB_EXIT_CODE_ENTRY second = {};
        LookupAdbExitCode(static_cast<ADB_EXIT_CODE>(outcome.nCode), first);
        LookupAdbExitCode(static_cast<ADB_EXIT_CODE>(outcome.nCode), second);
        EXPECT_EQ(first.pszName, second.pszName);
        EXPECT_EQ(first.pszMessage, second.pszMessage);
    }
}

TEST_F(AdbExitCode, AnOutcomeIsDescribedByItsRow)
{
    const ADB_EXIT_CODE_ENTRY entry = DescribeAdbExitCode(static_cast<ADB_EXIT_CODE>(600));
    EXPECT_STREQ(entry.pszName, L"START_SERVER_ALREADY_STARTED");
    EXPECT_STREQ(entry.pszMessage, L"adb start-server - server already started");
}

TEST_F(AdbExitCode, AnythingElseIsDescribedAsUnknown)
{
    for (const int nCode : {1, 7, -1, 301 + 45, 601, INT_MAX, INT_MIN}) {
        const ADB_EXIT_CODE_ENTRY entry = DescribeAdbExitCode(static_cast<ADB_EXIT_CODE>(nCode));
        EXPECT_STREQ(entry.pszName, L"Unknown ADB Exit Code");
        EXPECT_STREQ(entry.pszMessage, L"Unknown ADB Exit Code");
    }
}

} // namespace
