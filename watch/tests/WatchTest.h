// What every test of a running watch starts from.
#pragma once

#include "Computer.h"
#include "Journal.h"
#include "Watch.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

// A folder of its own, and a watch on 127.0.0.1 at ports that the system chooses, started by Start.
class CWatchTest : public testing::Test
{
protected:
    CWatchTest();
    ~CWatchTest() override;

    void Start();
    void Stop();

    // Another way to say that a computer has paired.
    void PairWith(const CComputer& computer);

    // Pairs a new computer and connects it, up to the device's greeting.
    CAdbLink PairedLink();

    // What lies in the folder, in order of names.
    std::vector<std::string> FolderContents() const;

    std::string StoredPackage() const;

    std::filesystem::path m_folder;
    SOptions m_options;
    CJournal m_journal;
    std::unique_ptr<CWatch> m_pWatch;
};

// Bytes that look random and are the same every time.
ByteVector RandomBytes(std::size_t nSize, unsigned nSeed);
