// The computers that have paired with the watch.
#pragma once

#include "PublicKey.h"

#include <filesystem>
#include <mutex>
#include <set>

// Safe to use from several threads.
class CPairedKeys
{
public:
    // With a file name, starts with the keys in that file, one adb key line each, and adds new ones to it. A file that
    // is not there yet holds no keys. Throws std::runtime_error when the file cannot be read or holds anything else.
    explicit CPairedKeys(std::filesystem::path file);

    bool Contains(const PublicKey& key) const;

    // Takes an adb key line and returns the name in it. Throws std::runtime_error when it is none, or when the file
    // cannot be written.
    std::string Add(const std::string& szLine);

private:
    mutable std::mutex m_mutex;
    std::filesystem::path m_file;
    std::set<PublicKey> m_keys;
};
