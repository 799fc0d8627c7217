// What every test of a running watch starts from.
#pragma once

#include "Computer.h"
#include "Journal.h"
#include "Watch.h"

#include <gtest/gtest.h>
#include <memory>

// A folder of its own, and a watch on 127.0.0.1 at ports that the system chooses, started by Start.
class CWatchTest : public testing::Test
{
protected:
    CWatchTest();
    ~CWatchTest() override;

    // Ends the one before, if there is one.
    void Start();

    void PairWith(const CComputer& computer);

    // A connection to the debugging port, not yet greeted.
    CAdbLink Link() const;

    // Pairs a new computer and connects it, up to the device's greeting.
    CAdbLink PairedLink();

    std::string StoredPackage() const;

    std::filesystem::path m_folder;
    SOptions m_options;
    CJournal m_journal;
    std::unique_ptr<CWatch> m_pWatch;
};
