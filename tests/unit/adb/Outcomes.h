// Every outcome as the users know it: number, name and message; and its name in the code.
#pragma once

#include "adb/AdbExitCode.h"

struct Outcome
{
    int nNumber;
    ADB_EXIT_CODE nCode;
    PCWSTR pszName;
    PCWSTR pszMessage;
};

inline constexpr Outcome kOutcomes[] = {
#define OUTCOME(number, name, message) {number, name, L"" #name, L"" message}
    OUTCOME(0, ADB_SUCCESS, "Success"),
    OUTCOME(2, ADB_CREATE_FAILED, "CConsoleProcess::CreateProcess() failed"),
    OUTCOME(3, ADB_READSTDOUT_FAILED, "CConsoleProcess::ReadStandardOutput() failed"),
    OUTCOME(4, ADB_GETEXITCODE_FAILED, "CConsoleProcess::GetExitCode() failed"),
    OUTCOME(5, ADB_CLOSE_FAILED, "CConsoleProcess::Close() failed"),
    OUTCOME(6, ADB_PARSE_ERROR, "Error parsing command output"),
    OUTCOME(100, CONNECT_ALREADY_CONNECTED, "adb connect - already connected"),
    OUTCOME(101, CONNECT_CANNOT_CONNECT, "adb connect - cannot connect"),
    OUTCOME(102, CONNECT_FAILED_TO_AUTHENTICATE, "adb connect - failed to authenticate"),
    OUTCOME(300, INSTALL_FAILED, "Install failed."),
    OUTCOME(301, INSTALL_FAILED_KALVO_UNKNOWN_ERROR, "Unknown error, please report this message to KALVO."),
    OUTCOME(302, INSTALL_FAILED_ALREADY_EXISTS, "The package is already installed."),
    OUTCOME(303, INSTALL_FAILED_INVALID_APK, "The package archive file is invalid."),
    OUTCOME(304, INSTALL_FAILED_INVALID_URI, "The URI passed in is invalid."),
    OUTCOME(305, INSTALL_FAILED_INSUFFICIENT_STORAGE,
            "The package manager service found that the device didn't have enough storage space to install the app."),
    OUTCOME(306, INSTALL_FAILED_DUPLICATE_PACKAGE, "A package is already installed with the same name."),
    OUTCOME(307, INSTALL_FAILED_NO_SHARED_USER, "The requested shared user does not exist."),
    OUTCOME(308, INSTALL_FAILED_UPDATE_INCOMPATIBLE,
            "A previously installed package of the same name has a different signature than the new package(and the "
            "old package's data was not removed."),
    OUTCOME(309, INSTALL_FAILED_SHARED_USER_INCOMPATIBLE,
            "The new package is requested a shared user which is already installed on the device and does not have "
            "matching signature."),
    OUTCOME(310, INSTALL_FAILED_MISSING_SHARED_LIBRARY, "The new package uses a shared library that is not available."),
    OUTCOME(311, INSTALL_FAILED_REPLACE_COULDNT_DELETE,
            "[The new package could not repelace the old package because the old package could not be deleted.]"),
    OUTCOME(312, INSTALL_FAILED_DEXOPT,
            "The new package failed while optimizing and validating its dex files, either because there was not enough "
            "storage or the validation failed."),
    OUTCOME(313, INSTALL_FAILED_OLDER_SDK,
            "The new package failed because the current SDK version is older than that required by the package."),
    OUTCOME(314, INSTALL_FAILED_CONFLICTING_PROVIDER,
            "The new package failed because it contains a content provider with the same authority as a provider "
            "already installed in the system."),
    OUTCOME(315, INSTALL_FAILED_NEWER_SDK,
            "The new package failed because the current SDK version is newer than that required by the package."),
    OUTCOME(316, INSTALL_FAILED_TEST_ONLY,
            "The new package failed because it has specified that it is a test-only package and the caller has not "
            "supplied the INSTALL_ALLOW_TEST flag."),
    OUTCOME(317, INSTALL_FAILED_CPU_ABI_INCOMPATIBLE,
            "The package being installed contains native code, but none that is compatible with the device's CPU_ABI."),
    OUTCOME(318, INSTALL_FAILED_MISSING_FEATURE, "The new package uses a feature that is not available."),
    OUTCOME(319, INSTALL_FAILED_CONTAINER_ERROR,
            "A secure container mount point couldn't be accessed on external media."),
    OUTCOME(320, INSTALL_FAILED_INVALID_INSTALL_LOCATION,
            "The new package couldn't be installed in the specified install location."),
    OUTCOME(321, INSTALL_FAILED_MEDIA_UNAVAILABLE,
            "The new package couldn't be installed in the specified install location because the media is not "
            "available."),
    OUTCOME(322, INSTALL_FAILED_VERIFICATION_TIMEOUT,
            "The new package couldn't be installed because the verification timed out."),
    OUTCOME(323, INSTALL_FAILED_VERIFICATION_FAILURE,
            "The new package couldn't be installed because the verification did not succeed."),
    OUTCOME(324, INSTALL_FAILED_PACKAGE_CHANGED, "The package changed from what the calling program expected."),
    OUTCOME(325, INSTALL_FAILED_UID_CHANGED, "The new package is assigned a different UID than it previously held."),
    OUTCOME(326, INSTALL_FAILED_VERSION_DOWNGRADE,
            "The new package has an older version code than the currently installed package."),
    OUTCOME(327, INSTALL_PARSE_FAILED_NOT_APK,
            "adb install - The parser was given a path that is not a file, or does not end with the expected '.apk' "
            "extension."),
    OUTCOME(328, INSTALL_PARSE_FAILED_BAD_MANIFEST,
            "adb install - The parser was unable to retrieve the AndroidManifest.xml file."),
    OUTCOME(329, INSTALL_PARSE_FAILED_UNEXPECTED_EXCEPTION,
            "adb install - The parser encountered an unexpected exception."),
    OUTCOME(330, INSTALL_PARSE_FAILED_NO_CERTIFICATES,
            "adb install - The parser did not find any certificates in the .apk."),
    OUTCOME(331, INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES,
            "adb install - The parser found inconsistent certificates on the files in the .apk."),
    OUTCOME(332, INSTALL_PARSE_FAILED_CERTIFICATE_ENCODING,
            "adb install - The parser encountered a CertificateEncodingException in one of the files in the.apk."),
    OUTCOME(333, INSTALL_PARSE_FAILED_BAD_PACKAGE_NAME,
            "adb install - The parser encountered a bad or missing package name in the manifest."),
    OUTCOME(334, INSTALL_PARSE_FAILED_BAD_SHARED_USER_ID,
            "adb install - The parser encountered a bad shared user id name in the manifest."),
    OUTCOME(335, INSTALL_PARSE_FAILED_MANIFEST_MALFORMED,
            "adb install - The parser encountered some structural problem in the manifest."),
    OUTCOME(336, INSTALL_PARSE_FAILED_MANIFEST_EMPTY,
            "adb install - The parser did not find any actionable tags (instrumentation or application) in the "
            "manifest."),
    OUTCOME(337, INSTALL_FAILED_INTERNAL_ERROR,
            "adb install - The system failed to install the package because of system issues."),
    OUTCOME(338, INSTALL_FAILED_USER_RESTRICTED,
            "adb install - The system failed to install the package because the user is restricted from installing "
            "apps."),
    OUTCOME(339, INSTALL_FAILED_DUPLICATE_PERMISSION,
            "adb install - failed to install - The system failed to install the package because it is attempting to "
            "define a permission that is already defined by some existing package."),
    OUTCOME(340, INSTALL_FAILED_NO_MATCHING_ABIS,
            "adb install - failed to install - The system failed to install the package because its packaged native "
            "code did not match any of the ABIs supported by the system."),
    OUTCOME(341, INSTALL_FAILED_ABORTED, "adb install - failed to install - The system aborted the install"),
    OUTCOME(342, INSTALL_FAILED_STAT, "adb install - failed to stat"),
    OUTCOME(343, INSTALL_MORE_THAN_ONE_DEVICE, "adb install - more than one Android device attached"),
    OUTCOME(344, INSTALL_DEVICE_OFFLINE, "adb install - device offline"),
    OUTCOME(345, INSTALL_NO_DEVICES_FOUND, "adb install - no devices found"),
    OUTCOME(400, KILL_SEVER_NOT_STARTED, "adb kill-server - server not started"),
    OUTCOME(500, PAIR_ALREADY_PAIRED, "adb pair - already paired"),
    OUTCOME(501, PAIR_FAILED, "adb pair - pair failed"),
    OUTCOME(600, START_SERVER_ALREADY_STARTED, "adb start-server - server already started"),
#undef OUTCOME
};
