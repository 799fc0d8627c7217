// What becomes of an archive's entries, on real folders and, where only the paths matter, on
// recorded ones.

#include "tools/ZipExtraction.h"

#include "tests/kit/TemporaryFolder.h"
#include "tests/kit/Test.h"
#include "tests/unit/tools/StoredZip.h"

#include <cerrno>
#include <direct.h>
#include <set>

using namespace kit;

namespace {

using Names = std::set<std::string>;
using Entries = std::vector<ZipEntry>;
using Paths = std::vector<std::string>;

class ZipExtraction : public Test
{
protected:
    ~ZipExtraction() override
    {
        if (m_archive.m_pState != nullptr) {
            mz_zip_reader_end(&m_archive);
        }
    }

    // Extracts from memory. The archive is closed afterwards, whatever came out of it.
    int Extract(const Entries& entries, const std::string& strFolder)
    {
        const int nResult = ExtractOpen(entries, strFolder);
        EXPECT_EQ(mz_zip_get_mode(&m_archive), MZ_ZIP_MODE_INVALID) << "the archive is still open";
        return nResult;
    }

    int Extract(const Entries& entries)
    {
        return Extract(entries, m_folder.Path().string());
    }

    int ExtractOpen(const Entries& entries, const std::string& strFolder)
    {
        m_strBytes = StoredZip(entries);
        m_archive = {};
        EXPECT_TRUE(mz_zip_reader_init_mem(&m_archive, m_strBytes.data(), m_strBytes.size(), 0));
        return ExtractAllEntries(&m_archive, strFolder.c_str());
    }

    // Everything below the folder, with slashes; folders end in one.
    Names Found() const
    {
        Names names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder.Path())) {
            names.insert(relative(entry.path(), m_folder.Path()).generic_string() + (entry.is_directory() ? "/" : ""));
        }
        return names;
    }

    std::string Text(const char* pszName) const
    {
        return ReadTextFile(m_folder.Path() / pszName);
    }

    TemporaryFolder m_folder;
    std::string m_strBytes;
    mz_zip_archive m_archive = {};
};

TEST_F(ZipExtraction, FilesKeepTheirContentAndOverwriteOthers)
{
    WriteTextFile(m_folder.Path() / "top.txt", "old and longer");
    EXPECT_EQ(Extract({{"top.txt", "one"}, {"a/b/c/deep.bin", std::string("\0two\n", 5)}, {"a/side.txt", ""}}), 0);
    EXPECT_EQ(Found(), (Names{"top.txt", "a/", "a/b/", "a/b/c/", "a/b/c/deep.bin", "a/side.txt"}));
    EXPECT_EQ(Text("top.txt"), "one");
    EXPECT_EQ(Text("a/b/c/deep.bin"), std::string("\0two\n", 5));
    EXPECT_EQ(Text("a/side.txt"), "");
}

TEST_F(ZipExtraction, TheFolderItselfIsMadeAndMayEndInASeparator)
{
    EXPECT_EQ(Extract({{"x", "1"}}, (m_folder.Path() / "new" / "newer").string()), 0);
    EXPECT_EQ(Extract({{"y", "1"}}, m_folder.Path().string() + "\\"), 0);
    EXPECT_EQ(Extract({{"z", "1"}}, m_folder.Path().string() + "/"), 0);
    EXPECT_EQ(Found(), (Names{"new/", "new/newer/", "new/newer/x", "y", "z"}));
}

TEST_F(ZipExtraction, NoEntryLandsOutsideTheFolder)
{
    const std::string strInner = (m_folder.Path() / "in" / "ner").string();
    EXPECT_EQ(Extract({{"../../up.txt", "1"},
                       {"..\\..\\down.txt", "2"},
                       {"a/../../../side.txt", "3"},
                       {"/../root.txt", "4"},
                       {"./../dot.txt", "5"}},
                      strInner),
              0);
    EXPECT_EQ(Found(), (Names{"in/", "in/ner/", "in/ner/up.txt", "in/ner/down.txt", "in/ner/a/", "in/ner/a/side.txt",
                              "in/ner/root.txt", "in/ner/dot.txt"}));
}

// The host system that made an entry and its attributes tell a link from a file.
constexpr uint16_t HostSystem(unsigned n)
{
    return static_cast<uint16_t>((n << 8) | 20);
}
constexpr uint32_t nUnixLink = 0120777U << 16;
constexpr uint32_t nUnixFile = 0100644U << 16;

std::string NameThatIsCut()
{
    std::string strName = "a/";
    for (int n = 0; n < 300; ++n) {
        strName += "./";
    }
    return strName;
}

struct Archive
{
    PCSTR pszName;
    Entries entries;
    Names found;
    int nResult = 0;
};

const Archive kArchives[] = {
    {"Empty", {}, {}},
    {"DotComponentsAreDropped", {{"./a/./b", "1"}, {"c/../d", "2"}, {".\\e", "3"}}, {"a/", "a/b", "c/", "c/d", "e"}},
    {"NamesThatOnlyBeginWithADotAreKept",
     {{".a/.b", "1"}, {"..c/d", "2"}, {"e/..f", "3"}, {"g.h/i", "4"}, {"...j/k", "5"}},
     {".a/", ".a/.b", "..c/", "..c/d", "e/", "e/..f", "g.h/", "g.h/i", "...j/", "...j/k"}},
    {"LeadingSeparatorsAreDropped", {{"/a", "1"}, {"\\b", "2"}, {"//\\/c/d", "3"}}, {"a", "b", "c/", "c/d"}},
    {"BackslashesSeparateAsSlashesDo", {{"a\\b/c\\d.txt", "1"}}, {"a/", "a/b/", "a/b/c/", "a/b/c/d.txt"}},
    {"DoubledSeparatorsCountOnce", {{"a//b\\\\c.txt", "1"}}, {"a/", "a/b/", "a/b/c.txt"}},
    {"DirectoryEntriesMakeFolders", {{"a/b/"}, {"c\\d/"}, {"e/", "", 0, 0x10}}, {"a/", "a/b/", "c/", "c/d/", "e/"}},
    {"ADirectoryIsToldByTheEndOfANameThatIsCut", {{NameThatIsCut()}}, {"a/"}},
    {"AnEntryWithTheDirectoryAttributeMakesOnlyItsParents", {{"a/b", "text", 0, 0x10}}, {"a/"}},
    {"OtherAttributesMakeNoDirectory", {{"a", "1", 0, 0x20}, {"b", "2", 0, 0x0F}}, {"a", "b"}},
    {"SymbolicLinksAreSkippedAndFilesAreNot",
     {{"a/unix", "/etc/passwd", HostSystem(3), nUnixLink},
      {"mac", "x", HostSystem(19), nUnixLink},
      {"bit", "x", HostSystem(3), 1U << 29},
      {"unix file", "1", HostSystem(3), nUnixFile},
      {"mac file", "2", HostSystem(19), nUnixFile}},
     {"a/", "unix file", "mac file"}},
    {"TheLinkBitOfOtherHostsMeansNothing",
     {{"dos", "1", HostSystem(0), nUnixLink},
      {"ntfs", "2", HostSystem(10), nUnixLink},
      {"low", "3", 3, nUnixLink},
      {"more", "4", HostSystem(7), nUnixLink}},
     {"dos", "ntfs", "low", "more"}},
    {"ADamagedFileStopsIt", {{"good", "1"}, {"bad", "2", 0, 0, 1}, {"never", "3"}}, {"good"}, -19},
    {"ANameOfNothingButDotsStopsIt", {{"..", "1"}}, {}, -19},
    {"AnEntryWithoutNameStopsIt", {{"good", "1"}, {"", "2"}, {"never", "3"}}, {"good"}, -2},
    {"AnUnreadableRecordStopsIt", {{"good", "1"}, {"torn", "2", 0, 0, 0, true}, {"never", "3"}}, {"good"}, -3},
};

class ExtractedArchive : public ZipExtraction, public testing::WithParamInterface<Archive>
{
};

TEST_P(ExtractedArchive, LeavesTheseFilesAndIsClosed)
{
    EXPECT_EQ(Extract(GetParam().entries), GetParam().nResult);
    EXPECT_EQ(Found(), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(Zip, ExtractedArchive, testing::ValuesIn(kArchives), kByName);

TEST_F(ZipExtraction, AFileThatIsNotWrittenWholeIsDeletedAgain)
{
    const REPLACED(DeleteFileW) remove(InTurn(PassOn(), Returns(FALSE, ERROR_SHARING_VIOLATION)));
    EXPECT_EQ(Extract({{"a/J\xC3\xB6rg", "2", 0, 0, 1}}), -19);
    EXPECT_EQ(remove.Arg<0>(), (m_folder.Path() / L"a/J\u00F6rg").wstring());
    EXPECT_EQ(Found(), Names{"a/"});
    // Where that fails it is the same failure.
    EXPECT_EQ(Extract({{"bad", "2", 0, 0, 1}}), -19);
    EXPECT_EQ(Found(), (Names{"a/", "bad"}));
}

TEST_F(ZipExtraction, AFileWhereAFolderMustBeStopsTheExtraction)
{
    WriteTextFile(m_folder.Path() / "a", "file");
    EXPECT_EQ(Extract({{"a/b.txt", "1"}}), -19); // "a" exists, so only its content cannot be made
    EXPECT_EQ(Found(), Names{"a"});
}

// The runtime's answer to a folder that cannot be made.
auto FailsWith(int nError)
{
    return [nError](const wchar_t*) {
        errno = nError;
        return -1;
    };
}

TEST_F(ZipExtraction, AFolderThatCannotBeMadeStopsTheExtraction)
{
    const REPLACED(_wmkdir) makeFolder(InTurn(FailsWith(EACCES), FailsWith(ENOENT)));
    EXPECT_EQ(Extract({{"a/b.txt", "1"}}), -23);
    EXPECT_EQ(Extract({{"a/b.txt", "1"}}), -23);
    EXPECT_EQ(Found(), Names());
}

TEST_F(ZipExtraction, ATooLongFolderIsRefusedAndTheArchiveLeftOpen)
{
    const REPLACED(_wmkdir) makeFolder(Never());
    EXPECT_EQ(ExtractOpen({{"x", "1"}}, std::string(512, 'a')), -2);
    EXPECT_EQ(mz_zip_get_mode(&m_archive), MZ_ZIP_MODE_READING);
    EXPECT_TRUE(mz_zip_reader_end(&m_archive));
}

// What is tried, in order, when nothing on disk is touched.
class ExtractionPaths : public ZipExtraction
{
protected:
    // The folders that are made for one entry.
    Paths Folders(const std::string& strFolder, const std::string& strName)
    {
        const size_t nBefore = m_makeFolder.Calls();
        EXPECT_EQ(Extract({{strName, "1"}}, strFolder), -19);
        Paths folders;
        for (size_t n = nBefore; n < m_makeFolder.Calls(); ++n) {
            folders.push_back(Narrow(m_makeFolder.Arg<0>(n)));
        }
        return folders;
    }

    REPLACED(_wmkdir) m_makeFolder { Maybe(Returns(0)) };
    REPLACED(_wfopen_s) m_open { Returns(errno_t(EACCES)) };
    REPLACED(DeleteFileW) m_delete { Returns(FALSE, ERROR_FILE_NOT_FOUND) };
};

struct PathRow
{
    PCSTR pszName;
    std::string strFolder;
    std::string strEntry;
    Paths made;
    std::string strFile;
};

const std::string str505(505, 'n');
const std::string str507(507, 'n');

const PathRow kPathRows[] = {
    {"EveryFolderFromTheOutermost",
     "C:\\a\\b",
     "c/d\\e",
     {"C:\\a", "C:\\a\\b", "C:\\a\\b\\c", "C:\\a\\b\\c/d"},
     "C:\\a\\b\\c/d\\e"},
    {"NotTheRootOfADrive", "C:", "x", {}, "C:\\x"},
    {"ASecondSeparatorBehindTheDrive", "C:\\\\one", "x", {"C:\\", "C:\\\\one"}, "C:\\\\one\\x"},
    {"NotALeadingSeparator", "/one", "x", {"/one"}, "/one\\x"},
    {"ASecondLeadingSeparator", "\\\\one", "x", {"\\", "\\\\one"}, "\\\\one\\x"},
    {"OneOfOneLetter", "a\\b", "x", {"a", "a\\b"}, "a\\b\\x"},
    {"NoneForTheRoot", "", "x", {}, "\\x"},
    {"NotTheRootItself", "", "..", {}, "\\"},
    // The file system would pass over these by itself, but for their length.
    {"NoDotsAndLeadingSeparators", "C:\\r", "\\//./a/../b/./c", {"C:\\r", "C:\\r\\a", "C:\\r\\a/b"}, "C:\\r\\a/b/c"},
    {"NothingElseSeparates",
     "C:\\r",
     "~a~../b:../c",
     {"C:\\r", "C:\\r\\~a~..", "C:\\r\\~a~../b:.."},
     "C:\\r\\~a~../b:../c"},
    {"NoneTwiceBehindASeparator", "C:\\r/", "x", {"C:\\r"}, "C:\\r/x"},
    {"TheColonMustBeSecond", "ab:\\x", "y", {"ab:", "ab:\\x"}, "ab:\\x\\y"},
    {"APathIsCutTo511Bytes", "C:\\r", str507, {"C:\\r"}, "C:\\r\\" + str505 + "n"},
    {"APathOf511BytesIsWhole", "C:\\r", str505 + "x", {"C:\\r"}, "C:\\r\\" + str505 + "x"},
    {"AFolderOf511BytesIsAccepted", "C:\\" + str507 + "f", "x", {}, "C:\\" + str507 + "f"},
    {"AFolderOf510BytesLeavesNoRoom", "C:\\" + str507, "x", {"C:\\" + str507}, "C:\\" + str507 + "\\"},
};

class ExtractionPath : public ExtractionPaths, public testing::WithParamInterface<PathRow>
{
};

TEST_P(ExtractionPath, IsMadeOfFolderAndName)
{
    EXPECT_EQ(Folders(GetParam().strFolder, GetParam().strEntry), GetParam().made);
    EXPECT_EQ(Narrow(m_open.Arg<1>()), GetParam().strFile);
    EXPECT_EQ(m_open.Arg<2>(), L"wb");
}

INSTANTIATE_TEST_SUITE_P(Zip, ExtractionPath, testing::ValuesIn(kPathRows), kByName);

TEST_F(ExtractionPaths, OnlyLettersNameADrive)
{
    for (const char ch : std::string("AMZamz@[`{1")) {
        const std::string strRoot = {ch, ':'};
        const Paths made = isalpha(ch) ? Paths{strRoot + "\\x"} : Paths{strRoot, strRoot + "\\x"};
        EXPECT_EQ(Folders(strRoot + "\\x", "y"), made);
    }
}

TEST_F(ExtractionPaths, NamesAreUtf8)
{
    const REPLACED(MultiByteToWideChar) widen;
    EXPECT_EQ(Folders("C:\\J\xC3\xB6rg", "\xE6\x89\x8B/x"),
              (Paths{"C:\\J\xC3\xB6rg", "C:\\J\xC3\xB6rg\\\xE6\x89\x8B"}));
    for (size_t n = 0; n < widen.Calls(); ++n) {
        EXPECT_EQ(widen.Arg<0>(n), static_cast<UINT>(CP_UTF8));
        EXPECT_EQ(widen.Arg<1>(n), 0u); // the system takes no other flags with this code page
    }
}

// An archive in a file: closing it can fail.
class ClosingTheArchive : public ZipExtraction
{
protected:
    ClosingTheArchive()
        : m_close([this](FILE* pFile) {
              const int nResult = m_close.Next(pFile);
              return pFile == m_pArchiveFile ? EOF : nResult;
          })
    {
    }

    int ExtractFile(const Entries& entries)
    {
        const std::filesystem::path path = m_folder.Path() / "archive.zip";
        WriteTextFile(path, StoredZip(entries));
        m_archive = {};
        EXPECT_TRUE(mz_zip_reader_init_file(&m_archive, path.string().c_str(), 0));
        m_pArchiveFile = mz_zip_get_cfile(&m_archive);
        return ExtractAllEntries(&m_archive, (m_folder.Path() / "out").string().c_str());
    }

    FILE* m_pArchiveFile = nullptr;
    REPLACED(fclose) m_close;
};

TEST_F(ClosingTheArchive, ThatFailsIsAllThatIsTold)
{
    EXPECT_EQ(ExtractFile({{"x", "1"}}), -25);
    EXPECT_EQ(Text("out/x"), "1");
    EXPECT_EQ(ExtractFile({}), -25) << "of nothing";
    EXPECT_EQ(ExtractFile({{"x", "1", 0, 0, 1}}), -25) << "of a damaged file";
    EXPECT_EQ(ExtractFile({{"", "1"}}), -25) << "of an entry without name";
    EXPECT_EQ(ExtractFile({{"torn", "2", 0, 0, 0, true}}), -25) << "of an unreadable record";
    const REPLACED(_wmkdir) makeFolder(FailsWith(EACCES));
    EXPECT_EQ(ExtractFile({{"x", "1"}}), -25) << "of a folder that cannot be made";
}

} // namespace
