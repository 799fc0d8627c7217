// Unpacks a zip archive so that nothing of it lands outside the given folder.
#pragma once

#include <miniz.h>

// Extracts every entry of an archive opened for reading below pszFolder (UTF-8, at most 511 bytes
// and the terminator), creating folders as needed. Symbolic links are skipped; "." and ".." in
// entry names are dropped. Closes the archive, except when the folder path is too long.
//
// Returns 0, or
//   -2   the folder path is too long, or an entry has no name
//   -3   an entry's record cannot be read
//   -19  an entry cannot be extracted; what there is of its file is deleted
//   -23  a folder cannot be created
//   -25  the archive cannot be closed, whatever happened before
int ExtractAllEntries(mz_zip_archive* pArchive, const char* pszFolder);
