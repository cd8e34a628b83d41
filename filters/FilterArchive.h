#pragma once
#include <string>

// Reading of filter archives (.mvr): a headerless run of records, integers little-endian u32.
//   "FILE" nameLength name payloadSize payload   one file, name relative to the target folder
//   "EMTY"                                       the folder is empty: make it
// A packed file with the archive extension is itself unpacked into a folder of its own name.
// The program has no writer.

inline constexpr const char* kArchiveExtension = "mvr";

// Bits of the result; 0 means every record was unpacked.
enum ArchiveStatus : int {
    kArchiveOk = 0,
    kArchiveNotOpened = 1, // the archive (or resource) could not be read at all
    kArchiveTruncated = 2, // the input ended inside a record; the last file is cut short
    kArchiveBadRecord = 4, // an unknown tag or an impossible name length ended the reading
    kArchiveNameRefused = 8, // a record would have written outside the target and was skipped
    kArchiveWriteFailed = 16, // a file or folder could not be made (or no target was given)
    kArchiveTooDeep = 32, // archives nested beyond the limit were left packed
};

// Unpacks the whole archive into targetFolder, nested archives included; these are deleted once
// unpacked. Existing files of the same name are replaced. Nothing is ever written outside the
// target: a name that is absolute, holds a ".." part, or leads through a symbolic link is
// skipped. A damaged archive keeps every record before the damage. An empty archive makes no
// folder.
int extractArchive(const std::string& archivePath, const std::string& targetFolder);

// The same for an archive in the program's resources (":/prefs/..."): it is copied to a
// "tempbundle.mvr" in a private temporary folder, unpacked, and deleted.
int extractResourceArchive(const std::string& resourcePath, const std::string& targetFolder);
