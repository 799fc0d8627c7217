#include "PairedKeys.h"

#include <fstream>
#include <stdexcept>

CPairedKeys::CPairedKeys(std::filesystem::path file) : m_file(std::move(file))
{
    std::ifstream stream(m_file);
    std::string szLine;
    while (std::getline(stream, szLine)) {
        m_keys.insert(ParseAdbKey(szLine).key);
    }
    if (std::filesystem::exists(m_file) && !stream.eof()) {
        throw std::runtime_error(m_file.string() + " cannot be read");
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
    if (!m_file.empty() && !m_keys.contains(key.key)) {
        std::ofstream file(m_file, std::ios::app);
        if (!(file << szLine << '\n').flush()) {
            throw std::runtime_error(m_file.string() + " cannot be written");
        }
    }
    m_keys.insert(key.key);
    return key.szName;
}
