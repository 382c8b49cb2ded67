#pragma once

#include <cstdio>
#include <string>

#include "store/api.h"

/// A thin layer over buffered stdio streams, through which all file access of the library goes.
/// The functions report by their results and never throw (but for std::bad_alloc).

/// The handle of an open file. Made by vbdFPTRCreate and vbdFPTROpen, freed by vbdFPTRClose.
struct vbdFPTR {
  std::FILE* Stream = nullptr;
};

/// 0 opens for reading only, any other value for reading and writing.
enum vbDatabaseAccessMode : int { vbReadOnly = 0, vbReadWrite = 2 };

enum vbDatabaseSeekMode : int { vbSeekBegin = 0, vbSeekCurrent = 1, vbSeekEnd = 2 };

/// True when streams are to be opened unbuffered; OpenDatabase sets it from the environment.
extern KESTDB_API bool isNoBufSet;

KESTDB_API bool vbdFPTRExists(const std::string& path);

/// The file's size in bytes, or -1 when there is no such file.
KESTDB_API long vbdFPTRFileSize(const std::string& path);

/// Creates or truncates; null when the stream can't be opened.
KESTDB_API vbdFPTR* vbdFPTRCreate(const std::string& path);

/// Opens an existing file; null when the stream can't be opened.
KESTDB_API vbdFPTR* vbdFPTROpen(const std::string& path, vbDatabaseAccessMode mode);

/// 0 on success, and `f` is freed. 1 when the last bytes could not be brought to the file: the
/// stream is gone then, but `f` is still the caller's, and a second call frees it.
KESTDB_API int vbdFPTRClose(vbdFPTR* f);

/// 0 on success, 1 on failure.
KESTDB_API int vbdFPTRFlush(vbdFPTR* f);

/// Flushes, and waits until the file is on the disk: 0 on success, 1 on failure.
KESTDB_API int vbdFPTRSync(vbdFPTR* f);

/// 0 when `size` bytes were read, 2 when fewer, 1 for a null handle.
KESTDB_API int vbdFPTRRead(vbdFPTR* f, void* buffer, unsigned int size);

/// 0 when `size` bytes were written, 1 when fewer or for a null handle.
KESTDB_API int vbdFPTRWrite(vbdFPTR* f, const void* buffer, unsigned int size);

/// 0 on success, 1 for a null handle, -1 on failure and for an unknown mode.
/// Kept: vbSeekEnd moves from the current position, as vbSeekCurrent does.
KESTDB_API int vbdFPTRSeek(vbdFPTR* f, long offset, vbDatabaseSeekMode mode);

/// The position in the file, -1 on failure and for a null handle.
KESTDB_API long vbdFPTRTell(vbdFPTR* f);

/// The length of the open file in bytes, -1 on failure and for a null handle. Bytes that still
/// wait in the stream's buffer don't count.
KESTDB_API long vbdFPTRLength(vbdFPTR* f);

/// Forgets what the stream has read ahead, so that the next read sees what other processes wrote.
KESTDB_API void vbdFPTRRefresh(vbdFPTR* f);

/// Drops bytes that could not be written, so that they are not tried again at every later call.
KESTDB_API void vbdFPTRDiscard(vbdFPTR* f);
