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
    int Extract(const std::vector<ZipEntry>& entries, const std::string& strFolder)
    {
        const int nResult = ExtractOpen(entries, strFolder);
        EXPECT_EQ(mz_zip_get_mode(&m_archive), MZ_ZIP_MODE_INVALID) << "the archive is still open";
        return nResult;
    }

    int Extract(const std::vector<ZipEntry>& entries)
    {
        return Extract(entries, m_folder.Path().string());
    }

    int ExtractOpen(const std::vector<ZipEntry>& entries, const std::string& strFolder)
    {
        const StoredZip zip(entries);
        m_bytes = zip.Bytes();
        m_archive = {};
        EXPECT_TRUE(mz_zip_reader_init_mem(&m_archive, m_bytes.data(), m_bytes.size(), 0));
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
    std::string m_bytes;
    mz_zip_archive m_archive = {};
};

TEST_F(ZipExtraction, FilesAndTheirFoldersAppearBelowTheFolder)
{
    EXPECT_EQ(Extract({{"top.txt", "one"}, {"a/b/c/deep.bin", std::string("\0two\n", 5)}, {"a/side.txt", ""}}), 0);
    EXPECT_EQ(Found(), (Names{"top.txt", "a/", "a/b/", "a/b/c/", "a/b/c/deep.bin", "a/side.txt"}));
    EXPECT_EQ(Text("top.txt"), "one");
    EXPECT_EQ(Text("a/b/c/deep.bin"), std::string("\0two\n", 5));
    EXPECT_EQ(Text("a/side.txt"), "");
}

TEST_F(ZipExtraction, TheFolderItselfIsMadeWithEveryFolderOnTheWay)
{
    EXPECT_EQ(Extract({{"x", "1"}}, (m_folder.Path() / "new" / "newer").string()), 0);
    EXPECT_EQ(Found(), (Names{"new/", "new/newer/", "new/newer/x"}));
}

TEST_F(ZipExtraction, TheFolderMayEndInASeparator)
{
    EXPECT_EQ(Extract({{"x", "1"}}, m_folder.Path().string() + "\\"), 0);
    EXPECT_EQ(Extract({{"y", "1"}}, m_folder.Path().string() + "/"), 0);
    EXPECT_EQ(Found(), (Names{"x", "y"}));
}

TEST_F(ZipExtraction, AnExistingFileIsOverwritten)
{
    WriteTextFile(m_folder.Path() / "x", "old and longer");
    EXPECT_EQ(Extract({{"x", "new"}}), 0);
    EXPECT_EQ(Text("x"), "new");
}

TEST_F(ZipExtraction, AnEmptyArchiveIsExtractedAndClosed)
{
    EXPECT_EQ(Extract({}), 0);
    EXPECT_EQ(Found(), Names());
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

TEST_F(ZipExtraction, DotComponentsAreDropped)
{
    EXPECT_EQ(Extract({{"./a/./b.txt", "1"}, {"c/../d.txt", "2"}, {".\\e.txt", "3"}}), 0);
    EXPECT_EQ(Found(), (Names{"a/", "a/b.txt", "c/", "c/d.txt", "e.txt"}));
}

TEST_F(ZipExtraction, NamesThatOnlyBeginWithADotAreKept)
{
    EXPECT_EQ(Extract({{".hidden/.a", "1"}, {"..b/c", "2"}, {"d/..e", "3"}, {"f.g/h", "4"}, {"...x/y", "5"}}), 0);
    EXPECT_EQ(Found(),
              (Names{".hidden/", ".hidden/.a", "..b/", "..b/c", "d/", "d/..e", "f.g/", "f.g/h", "...x/", "...x/y"}));
}

TEST_F(ZipExtraction, LeadingSeparatorsAreDropped)
{
    EXPECT_EQ(Extract({{"/a.txt", "1"}, {"\\b.txt", "2"}, {"//\\/c/d.txt", "3"}}), 0);
    EXPECT_EQ(Found(), (Names{"a.txt", "b.txt", "c/", "c/d.txt"}));
}

TEST_F(ZipExtraction, BackslashesSeparateAsSlashesDo)
{
    EXPECT_EQ(Extract({{"a\\b/c\\d.txt", "1"}}), 0);
    EXPECT_EQ(Found(), (Names{"a/", "a/b/", "a/b/c/", "a/b/c/d.txt"}));
}

TEST_F(ZipExtraction, DoubledSeparatorsCountOnce)
{
    EXPECT_EQ(Extract({{"a//b\\\\c.txt", "1"}}), 0);
    EXPECT_EQ(Found(), (Names{"a/", "a/b/", "a/b/c.txt"}));
}

TEST_F(ZipExtraction, DirectoryEntriesMakeTheirFolders)
{
    EXPECT_EQ(Extract({{"a/b/"}, {"c\\d/"}, {"e/", "", 0, 0x10}}), 0);
    EXPECT_EQ(Found(), (Names{"a/", "a/b/", "c/", "c/d/", "e/"}));
}

TEST_F(ZipExtraction, ADirectoryIsToldByTheEndOfANameThatIsCut)
{
    std::string strName = "a/";
    for (int n = 0; n < 300; ++n) {
        strName += "./";
    }
    EXPECT_EQ(Extract({{strName}}), 0);
    EXPECT_EQ(Found(), Names{"a/"});
}

TEST_F(ZipExtraction, AnEntryWithTheDirectoryAttributeMakesOnlyItsParents)
{
    EXPECT_EQ(Extract({{"a/b", "text", 0, 0x10}}), 0);
    EXPECT_EQ(Found(), Names{"a/"});
}

TEST_F(ZipExtraction, OtherAttributesMakeNoDirectory)
{
    EXPECT_EQ(Extract({{"a", "1", 0, 0x20}, {"b", "2", 0, 0x0F}}), 0);
    EXPECT_EQ(Found(), (Names{"a", "b"}));
}

// The host system that made an entry and its attributes tell a link from a file.
constexpr uint16_t HostSystem(unsigned n)
{
    return static_cast<uint16_t>((n << 8) | 20);
}
constexpr uint32_t nUnixLink = 0120777U << 16;
constexpr uint32_t nUnixFile = 0100644U << 16;

TEST_F(ZipExtraction, SymbolicLinksAreSkipped)
{
    EXPECT_EQ(Extract({{"a/unix", "/etc/passwd", HostSystem(3), nUnixLink},
                       {"mac", "x", HostSystem(19), nUnixLink},
                       {"bit", "x", HostSystem(3), 1U << 29},
                       {"after", "1"}}),
              0);
    EXPECT_EQ(Found(), (Names{"a/", "after"}));
}

TEST_F(ZipExtraction, FilesOfTheSameHostsAreExtracted)
{
    EXPECT_EQ(Extract({{"unix", "1", HostSystem(3), nUnixFile}, {"mac", "2", HostSystem(19), nUnixFile}}), 0);
    EXPECT_EQ(Found(), (Names{"unix", "mac"}));
}

TEST_F(ZipExtraction, TheLinkBitOfOtherHostsMeansNothing)
{
    EXPECT_EQ(Extract({{"dos", "1", HostSystem(0), nUnixLink},
                       {"ntfs", "2", HostSystem(10), nUnixLink},
                       {"low", "3", 3, nUnixLink},
                       {"more", "4", HostSystem(7), nUnixLink}}),
              0);
    EXPECT_EQ(Found(), (Names{"dos", "ntfs", "low", "more"}));
}

TEST_F(ZipExtraction, ADamagedFileStopsTheExtraction)
{
    EXPECT_EQ(Extract({{"good", "1"}, {"bad", "2", 0, 0, 1}, {"never", "3"}}), -19);
    EXPECT_EQ(Found(), Names{"good"});
}

TEST_F(ZipExtraction, AFileThatIsNotWrittenWholeIsDeletedAgain)
{
    const REPLACED(DeleteFileW) remove;
    EXPECT_EQ(Extract({{"a/J\xC3\xB6rg", "2", 0, 0, 1}}, m_folder.Path().string()), -19);
    EXPECT_EQ(remove.Arg<0>(), (m_folder.Path() / L"a/J\u00F6rg").wstring());
    EXPECT_EQ(Found(), Names{"a/"});
}

TEST_F(ZipExtraction, AFileThatCannotBeDeletedAgainIsTheSameFailure)
{
    const REPLACED(DeleteFileW) remove(Returns(FALSE, ERROR_SHARING_VIOLATION));
    EXPECT_EQ(Extract({{"bad", "2", 0, 0, 1}}), -19);
    EXPECT_EQ(Found(), Names{"bad"});
}

TEST_F(ZipExtraction, ANameThatIsNothingButDotsCannotBeExtracted)
{
    EXPECT_EQ(Extract({{"..", "1"}}), -19);
    EXPECT_EQ(Found(), Names());
}

TEST_F(ZipExtraction, AFileWhereAFolderMustBeStopsTheExtraction)
{
    WriteTextFile(m_folder.Path() / "a", "file");
    EXPECT_EQ(Extract({{"a/b.txt", "1"}}), -19); // "a" exists, so only its content cannot be made
    EXPECT_EQ(Found(), Names{"a"});
}

TEST_F(ZipExtraction, AnEntryWithoutNameStopsTheExtraction)
{
    EXPECT_EQ(Extract({{"good", "1"}, {"", "2"}, {"never", "3"}}), -2);
    EXPECT_EQ(Found(), Names{"good"});
}

TEST_F(ZipExtraction, AnUnreadableRecordStopsTheExtraction)
{
    EXPECT_EQ(Extract({{"good", "1"}, {"torn", "2", 0, 0, 0, true}, {"never", "3"}}), -3);
    EXPECT_EQ(Found(), Names{"good"});
}

TEST_F(ZipExtraction, AFolderThatCannotBeMadeStopsTheExtraction)
{
    for (const int nError : {EACCES, ENOENT}) {
        const REPLACED(_wmkdir) makeFolder([nError](const wchar_t*) {
            errno = nError;
            return -1;
        });
        EXPECT_EQ(Extract({{"a/b.txt", "1"}}), -23);
    }
    EXPECT_EQ(Found(), Names());
}

TEST_F(ZipExtraction, ATooLongFolderIsRefusedAndTheArchiveLeftOpen)
{
    REPLACED(_wmkdir) makeFolder;
    makeFolder.Optional();
    EXPECT_EQ(ExtractOpen({{"x", "1"}}, std::string(512, 'a')), -2);
    EXPECT_EQ(mz_zip_get_mode(&m_archive), MZ_ZIP_MODE_READING);
    EXPECT_EQ(makeFolder.Calls(), 0u);
    EXPECT_TRUE(mz_zip_reader_end(&m_archive));
}

// What is tried, in order, when nothing on disk is touched.
class ExtractionPaths : public ZipExtraction
{
protected:
    ExtractionPaths()
    {
        m_makeFolder.Optional();
        m_open.Optional();
        m_delete.Optional();
    }

    std::vector<std::wstring> Folders(const std::string& strFolder, const std::string& strName)
    {
        EXPECT_EQ(Extract({{strName, "1"}}, strFolder), -19);
        std::vector<std::wstring> folders;
        for (size_t n = 0; n < m_makeFolder.Calls(); ++n) {
            folders.push_back(m_makeFolder.Arg<0>(n));
        }
        return folders;
    }

    REPLACED(_wmkdir) m_makeFolder { Returns(0) };
    REPLACED(_wfopen_s) m_open { Returns(errno_t(EACCES)) };
    REPLACED(DeleteFileW) m_delete { Returns(FALSE, ERROR_FILE_NOT_FOUND) };
};

TEST_F(ExtractionPaths, EveryFolderIsMadeFromTheOutermost)
{
    EXPECT_EQ(Folders("C:\\one\\two", "a/b\\c.txt"),
              (std::vector<std::wstring>{L"C:\\one", L"C:\\one\\two", L"C:\\one\\two\\a", L"C:\\one\\two\\a/b"}));
    EXPECT_EQ(m_open.Arg<1>(), L"C:\\one\\two\\a/b\\c.txt");
    EXPECT_EQ(m_open.Arg<2>(), L"wb");
}

TEST_F(ExtractionPaths, TheRootOfADriveIsNotMade)
{
    EXPECT_EQ(Folders("C:", "x"), std::vector<std::wstring>());
    EXPECT_EQ(m_open.Arg<1>(), L"C:\\x");
}

TEST_F(ExtractionPaths, ASecondSeparatorBehindTheDriveIsAFolder)
{
    EXPECT_EQ(Folders("C:\\\\one", "x"), (std::vector<std::wstring>{L"C:\\", L"C:\\\\one"}));
}

TEST_F(ExtractionPaths, ALeadingSeparatorIsNoFolder)
{
    EXPECT_EQ(Folders("/one", "x"), (std::vector<std::wstring>{L"/one"}));
}

TEST_F(ExtractionPaths, ASecondLeadingSeparatorIsAFolder)
{
    EXPECT_EQ(Folders("\\\\one", "x"), (std::vector<std::wstring>{L"\\", L"\\\\one"}));
}

TEST_F(ExtractionPaths, AOneLetterFolderIsMade)
{
    EXPECT_EQ(Folders("a\\b", "x"), (std::vector<std::wstring>{L"a", L"a\\b"}));
}

TEST_F(ExtractionPaths, AnEmptyFolderIsTheRoot)
{
    EXPECT_EQ(Folders("", "x"), std::vector<std::wstring>());
    EXPECT_EQ(m_open.Arg<1>(), L"\\x");
}

// The file system would pass over these by itself, but for their length.
TEST_F(ExtractionPaths, DotsAndLeadingSeparatorsAreNotInThem)
{
    EXPECT_EQ(Folders("C:\\r", "\\//./a/../b/./c.txt"),
              (std::vector<std::wstring>{L"C:\\r", L"C:\\r\\a", L"C:\\r\\a/b"}));
    EXPECT_EQ(m_open.Arg<1>(), L"C:\\r\\a/b/c.txt");
}

TEST_F(ExtractionPaths, NothingElseSeparatesNames)
{
    EXPECT_EQ(Folders("C:\\r", "~a~../b:../c"),
              (std::vector<std::wstring>{L"C:\\r", L"C:\\r\\~a~..", L"C:\\r\\~a~../b:.."}));
    EXPECT_EQ(m_open.Arg<1>(), L"C:\\r\\~a~../b:../c");
}

TEST_F(ExtractionPaths, TheRootItselfIsNoFolderToMake)
{
    EXPECT_EQ(Folders("", ".."), std::vector<std::wstring>());
    EXPECT_EQ(m_open.Arg<1>(), L"\\");
}

TEST_F(ExtractionPaths, OnlyLettersNameADrive)
{
    for (const char chDrive : {'A', 'M', 'Z', 'a', 'm', 'z'}) {
        Folders(chDrive + std::string(":\\x"), "y");
    }
    EXPECT_EQ(m_makeFolder.Calls(), 6u);
    EXPECT_EQ(m_makeFolder.Arg<0>(0), L"A:\\x");
    EXPECT_EQ(m_makeFolder.Arg<0>(5), L"z:\\x");
    const size_t nBefore = m_makeFolder.Calls();
    for (const char chNoDrive : {'@', '[', '`', '{', '1'}) {
        Folders(chNoDrive + std::string(":\\x"), "y");
    }
    EXPECT_EQ(m_makeFolder.Calls() - nBefore, 10u);
    EXPECT_EQ(m_makeFolder.Arg<0>(nBefore), L"@:");
    EXPECT_EQ(m_makeFolder.Arg<0>(nBefore + 8), L"1:");
}

TEST_F(ExtractionPaths, TheColonMustBeSecond)
{
    EXPECT_EQ(Folders("ab:\\x", "y"), (std::vector<std::wstring>{L"ab:", L"ab:\\x"}));
}

TEST_F(ExtractionPaths, NamesAreUtf8)
{
    const REPLACED(MultiByteToWideChar) widen;
    EXPECT_EQ(Folders("C:\\J\xC3\xB6rg", "\xE6\x89\x8B/x"),
              (std::vector<std::wstring>{L"C:\\J\u00F6rg", L"C:\\J\u00F6rg\\\u624B"}));
    for (size_t n = 0; n < widen.Calls(); ++n) {
        EXPECT_EQ(widen.Arg<0>(n), static_cast<UINT>(CP_UTF8));
        EXPECT_EQ(widen.Arg<1>(n), 0u); // the system takes no other flags with this code page
    }
}

TEST_F(ExtractionPaths, AFullPathIsCutTo511Bytes)
{
    Folders("C:\\r", std::string(508, 'n'));
    EXPECT_EQ(m_open.Arg<1>(), L"C:\\r\\" + std::wstring(506, L'n'));
}

TEST_F(ExtractionPaths, APathOf511BytesIsWhole)
{
    Folders("C:\\r", std::string(505, 'n') + "x");
    EXPECT_EQ(m_open.Arg<1>(), L"C:\\r\\" + std::wstring(505, L'n') + L"x");
}

TEST_F(ExtractionPaths, AFolderOf511BytesIsAccepted)
{
    const std::string strFolder = "C:\\" + std::string(508, 'f');
    EXPECT_EQ(Folders(strFolder, "x"), std::vector<std::wstring>());
    EXPECT_EQ(m_open.Arg<1>(), std::wstring(strFolder.begin(), strFolder.end()));
}

TEST_F(ExtractionPaths, AFolderOf510BytesLeavesNoRoomForANameEither)
{
    const std::string strFolder = "C:\\" + std::string(507, 'f');
    const std::wstring wide(strFolder.begin(), strFolder.end());
    EXPECT_EQ(Folders(strFolder, "x"), std::vector<std::wstring>{wide});
    EXPECT_EQ(m_open.Arg<1>(), wide + L"\\");
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

    int ExtractFile(const std::vector<ZipEntry>& entries)
    {
        const std::filesystem::path path = m_folder.Path() / "archive.zip";
        WriteTextFile(path, StoredZip(entries).Bytes());
        EXPECT_TRUE(mz_zip_reader_init_file(&m_archive, path.string().c_str(), 0));
        m_pArchiveFile = mz_zip_get_cfile(&m_archive);
        return ExtractAllEntries(&m_archive, (m_folder.Path() / "out").string().c_str());
    }

    FILE* m_pArchiveFile = nullptr;
    REPLACED(fclose) m_close;
};

TEST_F(ClosingTheArchive, ThatFailsFailsTheExtraction)
{
    EXPECT_EQ(ExtractFile({{"x", "1"}}), -25);
    EXPECT_EQ(Text("out/x"), "1");
}

TEST_F(ClosingTheArchive, ThatFailsFailsTheExtractionOfNothingToo)
{
    EXPECT_EQ(ExtractFile({}), -25);
}

TEST_F(ClosingTheArchive, ThatFailsIsAllThatIsToldOfADamagedFile)
{
    EXPECT_EQ(ExtractFile({{"x", "1", 0, 0, 1}}), -25);
}

TEST_F(ClosingTheArchive, ThatFailsIsAllThatIsToldOfAnEntryWithoutName)
{
    EXPECT_EQ(ExtractFile({{"", "1"}}), -25);
}

TEST_F(ClosingTheArchive, ThatFailsIsAllThatIsToldOfAnUnreadableRecord)
{
    EXPECT_EQ(ExtractFile({{"torn", "2", 0, 0, 0, true}}), -25);
}

TEST_F(ClosingTheArchive, ThatFailsIsAllThatIsToldOfAFolderThatCannotBeMade)
{
    const REPLACED(_wmkdir) makeFolder([](const wchar_t*) {
        errno = EACCES;
        return -1;
    });
    EXPECT_EQ(ExtractFile({{"x", "1"}}), -25);
}

} // namespace
