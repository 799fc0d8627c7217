#include "PairedKeys.h"

#include <fstream>

CPairedKeys::CPairedKeys(std::filesystem::path file) : m_file(std::move(file))
{
    std::ifstream stream(m_file);
    std::string szLine;
    while (std::getline(stream, szLine)) {
        m_keys.insert(ParseAdbKey(szLine).key);
    }
}

bool CPairedKeys::Contains(const PublicKey& key) const
{
    const std::lock_guard lock(m_mutex);
    return m_keys.contains(key);
}

std::string CPairedKeys::Add(const std::string& szLine)
{
    const SAdbKey key = ParseAdbKey(szLine);
    const std::lock_guard lock(m_mutex);
    if (m_keys.insert(key.key).second && !m_file.empty()) {
        std::ofstream(m_file, std::ios::app) << szLine << '\n';
    }
    return key.szName;
}
