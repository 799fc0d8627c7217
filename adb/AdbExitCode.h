// What an adb run came to: one number, with a name and a message for the user.
#pragma once

#include "app/ground/Platform.h"

// The failures that Android's package manager names, letter for letter as it prints them: value,
// name, message.
#define ADB_PACKAGE_MANAGER_OUTCOMES(ROW)                                                                              \
    ROW(302, INSTALL_FAILED_ALREADY_EXISTS, "The package is already installed.")                                       \
    ROW(303, INSTALL_FAILED_INVALID_APK, "The package archive file is invalid.")                                       \
    ROW(304, INSTALL_FAILED_INVALID_URI, "The URI passed in is invalid.")                                              \
    ROW(305, INSTALL_FAILED_INSUFFICIENT_STORAGE,                                                                      \
        "The package manager service found that the device didn't have enough storage space to install the app.")      \
    ROW(306, INSTALL_FAILED_DUPLICATE_PACKAGE, "A package is already installed with the same name.")                   \
    ROW(307, INSTALL_FAILED_NO_SHARED_USER, "The requested shared user does not exist.")                               \
    ROW(308, INSTALL_FAILED_UPDATE_INCOMPATIBLE,                                                                       \
        "A previously installed package of the same name has a different signature than the new package(and "          \
        "the old package's data was not removed.")                                                                     \
    ROW(309, INSTALL_FAILED_SHARED_USER_INCOMPATIBLE,                                                                  \
        "The new package is requested a shared user which is already installed on the device and does not have "       \
        "matching signature.")                                                                                         \
    ROW(310, INSTALL_FAILED_MISSING_SHARED_LIBRARY, "The new package uses a shared library that is not available.")    \
    ROW(311, INSTALL_FAILED_REPLACE_COULDNT_DELETE,                                                                    \
        "[The new package could not repelace the old package because the old package could not be deleted.]")          \
    ROW(312, INSTALL_FAILED_DEXOPT,                                                                                    \
        "The new package failed while optimizing and validating its dex files, either because there was not "          \
        "enough storage or the validation failed.")                                                                    \
    ROW(313, INSTALL_FAILED_OLDER_SDK,                                                                                 \
        "The new package failed because the current SDK version is older than that required by the package.")          \
    ROW(314, INSTALL_FAILED_CONFLICTING_PROVIDER,                                                                      \
        "The new package failed because it contains a content provider with the same authority as a provider "         \
        "already installed in the system.")                                                                            \
    ROW(315, INSTALL_FAILED_NEWER_SDK,                                                                                 \
        "The new package failed because the current SDK version is newer than that required by the package.")          \
    ROW(316, INSTALL_FAILED_TEST_ONLY,                                                                                 \
        "The new package failed because it has specified that it is a test-only package and the caller has not "       \
        "supplied the INSTALL_ALLOW_TEST flag.")                                                                       \
    ROW(317, INSTALL_FAILED_CPU_ABI_INCOMPATIBLE,                                                                      \
        "The package being installed contains native code, but none that is compatible with the device's CPU_ABI.")    \
    ROW(318, INSTALL_FAILED_MISSING_FEATURE, "The new package uses a feature that is not available.")                  \
    ROW(319, INSTALL_FAILED_CONTAINER_ERROR, "A secure container mount point couldn't be accessed on external media.") \
    ROW(320, INSTALL_FAILED_INVALID_INSTALL_LOCATION,                                                                  \
        "The new package couldn't be installed in the specified install location.")                                    \
    ROW(321, INSTALL_FAILED_MEDIA_UNAVAILABLE,                                                                         \
        "The new package couldn't be installed in the specified install location because the media is not available.") \
    ROW(322, INSTALL_FAILED_VERIFICATION_TIMEOUT,                                                                      \
        "The new package couldn't be installed because the verification timed out.")                                   \
    ROW(323, INSTALL_FAILED_VERIFICATION_FAILURE,                                                                      \
        "The new package couldn't be installed because the verification did not succeed.")                             \
    ROW(324, INSTALL_FAILED_PACKAGE_CHANGED, "The package changed from what the calling program expected.")            \
    ROW(325, INSTALL_FAILED_UID_CHANGED, "The new package is assigned a different UID than it previously held.")       \
    ROW(326, INSTALL_FAILED_VERSION_DOWNGRADE,                                                                         \
        "The new package has an older version code than the currently installed package.")                             \
    ROW(327, INSTALL_PARSE_FAILED_NOT_APK,                                                                             \
        "adb install - The parser was given a path that is not a file, or does not end with the expected "             \
        "'.apk' extension.")                                                                                           \
    ROW(328, INSTALL_PARSE_FAILED_BAD_MANIFEST,                                                                        \
        "adb install - The parser was unable to retrieve the AndroidManifest.xml file.")                               \
    ROW(329, INSTALL_PARSE_FAILED_UNEXPECTED_EXCEPTION,                                                                \
        "adb install - The parser encountered an unexpected exception.")                                               \
    ROW(330, INSTALL_PARSE_FAILED_NO_CERTIFICATES,                                                                     \
        "adb install - The parser did not find any certificates in the .apk.")                                         \
    ROW(331, INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES,                                                           \
        "adb install - The parser found inconsistent certificates on the files in the .apk.")                          \
    ROW(332, INSTALL_PARSE_FAILED_CERTIFICATE_ENCODING,                                                                \
        "adb install - The parser encountered a CertificateEncodingException in one of the files in the.apk.")         \
    ROW(333, INSTALL_PARSE_FAILED_BAD_PACKAGE_NAME,                                                                    \
        "adb install - The parser encountered a bad or missing package name in the manifest.")                         \
    ROW(334, INSTALL_PARSE_FAILED_BAD_SHARED_USER_ID,                                                                  \
        "adb install - The parser encountered a bad shared user id name in the manifest.")                             \
    ROW(335, INSTALL_PARSE_FAILED_MANIFEST_MALFORMED,                                                                  \
        "adb install - The parser encountered some structural problem in the manifest.")                               \
    ROW(336, INSTALL_PARSE_FAILED_MANIFEST_EMPTY,                                                                      \
        "adb install - The parser did not find any actionable tags (instrumentation or application) in the manifest.") \
    ROW(337, INSTALL_FAILED_INTERNAL_ERROR,                                                                            \
        "adb install - The system failed to install the package because of system issues.")                            \
    ROW(338, INSTALL_FAILED_USER_RESTRICTED,                                                                           \
        "adb install - The system failed to install the package because the user is restricted from installing apps.") \
    ROW(339, INSTALL_FAILED_DUPLICATE_PERMISSION,                                                                      \
        "adb install - failed to install - The system failed to install the package because it is attempting "         \
        "to define a permission that is already defined by some existing package.")                                    \
    ROW(340, INSTALL_FAILED_NO_MATCHING_ABIS,                                                                          \
        "adb install - failed to install - The system failed to install the package because its packaged "             \
        "native code did not match any of the ABIs supported by the system.")                                          \
    ROW(341, INSTALL_FAILED_ABORTED, "adb install - failed to install - The system aborted the install")

// Every outcome: value, name, message. The values are shown to the user and never renumbered; they
// are grouped in hundreds by the command that yields them.
#define ADB_OUTCOMES(ROW)                                                                                              \
    ROW(0, ADB_SUCCESS, "Success")                                                                                     \
    ROW(2, ADB_CREATE_FAILED, "CConsoleProcess::CreateProcess() failed")                                               \
    ROW(3, ADB_READSTDOUT_FAILED, "CConsoleProcess::ReadStandardOutput() failed")                                      \
    ROW(4, ADB_GETEXITCODE_FAILED, "CConsoleProcess::GetExitCode() failed")                                            \
    ROW(5, ADB_CLOSE_FAILED, "CConsoleProcess::Close() failed")                                                        \
    ROW(6, ADB_PARSE_ERROR, "Error parsing command output")                                                            \
    ROW(100, CONNECT_ALREADY_CONNECTED, "adb connect - already connected")                                             \
    ROW(101, CONNECT_CANNOT_CONNECT, "adb connect - cannot connect")                                                   \
    ROW(102, CONNECT_FAILED_TO_AUTHENTICATE, "adb connect - failed to authenticate")                                   \
    ROW(300, INSTALL_FAILED, "Install failed.")                                                                        \
    ROW(301, INSTALL_FAILED_KALVO_UNKNOWN_ERROR, "Unknown error, please report this message to KALVO.")                \
    ADB_PACKAGE_MANAGER_OUTCOMES(ROW)                                                                                  \
    ROW(342, INSTALL_FAILED_STAT, "adb install - failed to stat")                                                      \
    ROW(343, INSTALL_MORE_THAN_ONE_DEVICE, "adb install - more than one Android device attached")                      \
    ROW(344, INSTALL_DEVICE_OFFLINE, "adb install - device offline")                                                   \
    ROW(345, INSTALL_NO_DEVICES_FOUND, "adb install - no devices found")                                               \
    ROW(400, KILL_SEVER_NOT_STARTED, "adb kill-server - server not started")                                           \
    ROW(500, PAIR_ALREADY_PAIRED, "adb pair - already paired")                                                         \
    ROW(501, PAIR_FAILED, "adb pair - pair failed")                                                                    \
    ROW(600, START_SERVER_ALREADY_STARTED, "adb start-server - server already started")

enum ADB_EXIT_CODE : int
{
#define ADB_OUTCOME_VALUE(value, name, message) name = (value),
    ADB_OUTCOMES(ADB_OUTCOME_VALUE)
#undef ADB_OUTCOME_VALUE
};

// Static texts, never freed or changed.
struct ADB_EXIT_CODE_ENTRY
{
    PCWSTR pszName;
    PCWSTR pszMessage;
};

// Copies the code's name and message into entry. False, and entry untouched, for a code without row.
bool LookupAdbExitCode(ADB_EXIT_CODE nCode, ADB_EXIT_CODE_ENTRY& entry);

// The code's name and message for the user, both "Unknown ADB Exit Code" for a code without row.
ADB_EXIT_CODE_ENTRY DescribeAdbExitCode(ADB_EXIT_CODE nCode);
