// The computers that have paired with the watch.
#pragma once

#include "PublicKey.h"

#include <filesystem>
#include <mutex>
#include <vector>

// Safe to use from several threads. Holds at most MOST_KEYS keys; a further one displaces the oldest.
class CPairedKeys
{
public:
    static constexpr std::size_t MOST_KEYS = 64;

    // With a file name, starts with the keys in that file, one adb key line each, and keeps the file up to date. A file
    // that is not there yet holds no keys. Throws std::runtime_error when the file cannot be read or holds anything
    // else.
    explicit CPairedKeys(std::filesystem::path file = {});

    bool Contains(const SPublicKey& key) const;

    // A key that is known already takes the new name. Throws std::runtime_error when the file cannot be written; the
    // key is trusted all the same until the watch stops.
    void Add(SAdbKey key);

private:
    void Load();
    void Save() const;

    mutable std::mutex m_mutex;
    std::filesystem::path m_file;
    std::vector<SAdbKey> m_keys;
};
