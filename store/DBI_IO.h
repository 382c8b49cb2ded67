#pragma once

#include <string>

#include "store/api.h"
#include "store/vbdfptr.h"

class POD;

/// The front door: one open study for each process.

/// The open study; null when there is none.
extern KESTDB_API POD* pPOD;

/// Opens the study `name`, or makes a new one: `name`.ksb and `name`.kx. `name` may carry the
/// extension ".ksb" or ".KSB". A study that is open is closed before. A fresh study holds its
/// singleton objects; one that lacks them gets them.
///
/// The environment variable KEST_NOIOBUF, whatever its value, switches the buffering of the files
/// off.
///
/// THROWS CNonASCIIDatabase, CReadOnlyFile and CFileNotWriteable for a file that its owner can't
/// read or write, and what POD::Open throws. After a failure no study is open.
KESTDB_API void OpenDatabase(const std::string& name);

/// Closes the open study, if there is one. THROWS what POD::Close throws; the study then stays
/// open.
KESTDB_API void CloseDatabase();

KESTDB_API bool IsOpen();
KESTDB_API POD* GetPOD();

/// The version of the data file at `path`, -1 when there is no such file. REQUIRES an open study,
/// or one on the way, whose lock it takes.
/// THROWS CNullPtr without one, CFileOpen, CFileRead, CFileClose.
KESTDB_API int GetDBVersion(std::string& path);

/// The version of this library: 6, 21 and 0. Any pointer may be null.
KESTDB_API void GetKSBVersion(int* major, int* minor, int* patch);
