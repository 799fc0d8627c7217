#include "PairedKeys.h"

#include <algorithm>
#include <format>
#include <fstream>
#include <stdexcept>

CPairedKeys::CPairedKeys(std::filesystem::path file) : m_file(std::move(file))
{
    if (!m_file.empty() && std::filesystem::exists(m_file)) {
        Load();
    }
}

bool CPairedKeys::Contains(const SPublicKey& key) const
{
    const std::lock_guard lock(m_mutex);
    return std::ranges::find(m_keys, key, &SAdbKey::key) != m_keys.end();
}

void CPairedKeys::Add(SAdbKey key)
{
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_keys, [&](const SAdbKey& known) { return known.key == key.key; });
    if (m_keys.size() == MOST_KEYS) {
        m_keys.erase(m_keys.begin());
    }
    m_keys.push_back(std::move(key));
    if (!m_file.empty()) {
        Save();
    }
}

void CPairedKeys::Load()
{
    std::ifstream stream(m_file);
    std::string szLine;
    while (std::getline(stream, szLine)) {
        std::optional<SAdbKey> key = ParseAdbKey(szLine);
        if (!key || m_keys.size() == MOST_KEYS) {
            throw std::runtime_error(
                std::format("{}: line {} is not a key, or one too many", m_file.string(), m_keys.size() + 1));
        }
        m_keys.push_back(*std::move(key));
    }
    if (!stream.eof()) {
        throw std::runtime_error(std::format("{} cannot be read", m_file.string()));
    }
}

// The file is replaced as a whole: whoever stops the watch in between finds the old keys or the new ones.
void CPairedKeys::Save() const
{
    const std::filesystem::path unfinished = m_file.string() + ".new";
    std::ofstream stream(unfinished, std::ios::trunc);
    for (const SAdbKey& key : m_keys) {
        stream << key.szBase64 << ' ' << key.szName << '\n';
    }
    stream.close();
    std::error_code error;
    if (stream) {
        std::filesystem::rename(unfinished, m_file, error);
    }
    if (!stream || error) {
        throw std::runtime_error(std::format("{} cannot be written", m_file.string()));
    }
}
