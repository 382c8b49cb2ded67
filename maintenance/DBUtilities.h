#pragma once

#include <string>

#include "maintenance/vbdstats.h"
#include "store/api.h"

// Upkeep of the files of a study: checks, reports, rebuilds, and the clearing of stale locks, made
// of the steps of vbdstats.h. For a study that no process has open. Each run is told in the log
// between a Start and an End line, also when it fails. All pass on the failures of the file layer.

/// Checks the header and all blocks of a data file. The argument is the path of the file.
/// THROWS CNoFileExists, CFileRead, CFileNotWriteable by the owner's permissions, CFileNotReady for
/// a file of revision A, CWrongFileType, CFileCorrupt, CFileLock.
KESTDB_API void KFileCheck(const std::string& path);

/// Reports on a data file of any revision, with `walk` also the totals of its blocks.
/// THROWS as KFileCheck, but for CFileNotReady.
KESTDB_API void KFileStats(const std::string& path, bool walk);

/// Makes a compact copy of a data file, of the current revision, and puts it in the file's place.
/// From a damaged file it takes what it finds: an object whose checksum disagrees is warned about
/// and copied as it stands. The index no longer fits then: call KIndexRebuildCheck next.
///
/// Up to the moment when the old file is removed, it is untouched by any failure. A process that
/// dies right after that leaves the study in "PATH.new": rename that file to PATH.
/// THROWS as KFileStats, CFileCorrupt when there is nothing to take though the file isn't empty,
/// CAccessViolation when the old file can't be replaced.
KESTDB_API void KFileRebuild(const std::string& path);

/// Clears the advisory lock in the header of a data or index file whose owner died. The lock
/// directory of a study is cleared by CLock::ForceUnlock.
/// THROWS CNoFileExists, CFileOpen, CFileLock, CFileSeek, CFileRead, CWrongFileType, CFileWrite,
/// CFileClose.
KESTDB_API void KForceUnlock(const std::string& path);

/// With `rebuild`, makes a new index file from the data file, else compares the two: whether every
/// object of the data file is found by its key. The argument is the path of the study without an
/// extension. When a rebuild fails, the old index file stays as NAME.kx.old.
/// THROWS as KFileCheck, CFileExists and CFileCreation when the old index file can't be put aside,
/// and the failures of RebuildIndex (store/PersistentClass.h).
KESTDB_API void KIndexRebuildCheck(const std::string& name, bool rebuild);

/// Reports the header of every tree. The argument is as above; the flag has no effect.
KESTDB_API void KIndexStats(const std::string& name, bool);
