// What every step of the check is given.
#pragma once

#include "check/Answers.h"
#include "check/Folders.h"

struct CHECK
{
    CAnswers& answers;
    const std::wstring& szThrough; // see Installer.h
    const CWorkFolder& work;
    // The installer, a copy in a folder of its own in the work folder, with a package beside it.
    CPath program;
};

struct STEP
{
    PCWSTR pszId;     // by which the command line chooses it
    PCWSTR pszName;   // as the user reads it
    PCWSTR pszGroups; // the groups of the claims that it looks at, between blanks
    void (*pfnRun)(CHECK& check);
};

void CheckUnits(CHECK& check);      // Units.cpp
void CheckSystem(CHECK& check);     // System.cpp
void CheckFirstPages(CHECK& check); // FirstPages.cpp
void CheckWorkingPages(CHECK& check);
void CheckLastPages(CHECK& check);  // LastPages.cpp
void CheckAdb(CHECK& check);        // Adb.cpp
void CheckDeployment(CHECK& check); // Deployment.cpp
void CheckInstances(CHECK& check);  // Instances.cpp
void CheckEnds(CHECK& check);       // Ends.cpp
void CheckLoader(CHECK& check);     // Loader.cpp
