#pragma once

#include <cstdio>
#include <string>

#include "store/api.h"
#include "store/vbscalar.h"

class vbDatabase;

// What a block file looks like from outside: can it be used, is its header sound, what blocks does
// it hold. They work on data and index files, see nothing of objects, and only read. Reports go to
// the log, those with a stream to the stream. For a file that no other process has open.

/// Whether the file is there and its owner may read and write it; reports by exception.
/// THROWS CNoFileExists, CFileRead, CFileNotWriteable.
KESTDB_API void KStatus(const std::string& path);

/// Checks the signature and the start of the heap, with `full` all of the header.
/// THROWS CNullPtr, CWrongFileType for another signature, CFileCorrupt when a value is wrong.
KESTDB_API void PreCheck(vbDatabase* db, bool full);

/// Goes over all blocks and reports their totals, with `perBlock` each block.
/// THROWS CNullPtr, CFileCorrupt when there is no good block behind a bad one.
KESTDB_API void VBStatistics(vbDatabase* db, bool perBlock);

/// Reports on the block at a block address. THROWS CNullPtr, CSync when there is none.
KESTDB_API void VBStats(std::FILE* out, vbDatabase* db, vbINT32 address);

/// Reports on the whole file. THROWS CNullPtr, CFileNotReady for a file that was closed, and
/// std::out_of_range for one that never was open (vbDatabase::GetSignature).
KESTDB_API void VBDStats(std::FILE* out, vbDatabase* db);

/// The library's own version of the format. THROWS CNullPtr.
KESTDB_API void EchoVBDVersion(std::FILE* out);
