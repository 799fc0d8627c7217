// The file that an installed package ends up in.
#pragma once

#include "Bytes.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

class CDiskError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// A package on its way into `store`. Until Keep, the bytes lie in a file of their own beside it, which goes with this
// object: whoever reads `store` sees a whole package or the one before, however many installs run or break off.
// The constructor, Append and Keep throw CDiskError when the disk does not play along.
class CPackageFile
{
public:
    explicit CPackageFile(std::filesystem::path store);
    ~CPackageFile();

    CPackageFile(const CPackageFile&) = delete;
    CPackageFile& operator=(const CPackageFile&) = delete;

    void Append(ByteView bytes);
    void Keep();

private:
    std::filesystem::path m_store;
    std::filesystem::path m_unfinished;
    std::ofstream m_stream;
};
