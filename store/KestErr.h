#pragma once

#include <concepts>
#include <exception>

#include "store/api.h"

/// The root of all failures that the library throws. It has a fixed size and owns nothing, so that
/// throwing and copying it takes no memory.
class KESTDB_API CKestErr : public std::exception {
 public:
  /// Keeps the first 511 characters of `text`. `sourceFile` is kept as the pointer it is and has to
  /// outlive the exception. Logs itself through LNewException, unless `sourceFile` is null.
  CKestErr(const char* sourceFile, int sourceLine, const char* text);
  CKestErr(const CKestErr&) = default;
  CKestErr& operator=(const CKestErr&) = default;
  ~CKestErr() override;

  const char* what() const noexcept override;

  int line;
  const char* file;
  char message[512];
};

/// Every failure of the database; only CDiscreteSetErr stands outside.
class KESTDB_API CEngErr : public CKestErr {
 public:
  CEngErr(const char* sourceFile, int sourceLine, const char* text);
  CEngErr(const CEngErr&) = default;
  CEngErr& operator=(const CEngErr&) = default;
  ~CEngErr() override;
};

/// The failures by class, base class and what().
// clang-format off
#define KESTDB_FAILURES(FAILURE) \
  FAILURE(CAccessViolation,    CEngErr,  "Access Violation") \
  FAILURE(CAddKey,             CEngErr,  "Could not add key") \
  FAILURE(CBadClassID,         CEngErr,  "Bad class ID") \
  FAILURE(CBadObjectAddress,   CEngErr,  "Bad object address") \
  FAILURE(CBlockAlloc,         CEngErr,  "Block allocation") \
  FAILURE(CChecksum,           CEngErr,  "Checksum error") \
  FAILURE(CDatabaseOpen,       CEngErr,  "Database already open") \
  FAILURE(CDiscreteSetErr,     CKestErr, "DiscreteSetErr") \
  FAILURE(CDuplicateEntry,     CEngErr,  "Duplicate entry") \
  FAILURE(CFileClose,          CEngErr,  "File close error") \
  FAILURE(CFileCorrupt,        CEngErr,  "File corrupt") \
  FAILURE(CFileCreation,       CEngErr,  "File creation error") \
  FAILURE(CFileExists,         CEngErr,  "File already exists") \
  FAILURE(CFileInsertion,      CEngErr,  "Error inserting database entry") \
  FAILURE(CFileLock,           CEngErr,  "Error locking the file") \
  FAILURE(CFileNotReady,       CEngErr,  "File not ready") \
  FAILURE(CFileNotWriteable,   CEngErr,  "File not writeable") \
  FAILURE(CFileOpen,           CEngErr,  "File open error") \
  FAILURE(CFilePosition,       CEngErr,  "Cannot obtain the current file position") \
  FAILURE(CFileRead,           CEngErr,  "File read error") \
  FAILURE(CFileRemove,         CEngErr,  "File not removed") \
  FAILURE(CFileSeek,           CEngErr,  "FileSeekError") \
  FAILURE(CFileUnlock,         CEngErr,  "Error release the file lock") \
  FAILURE(CFileWrite,          CEngErr,  "File write error") \
  FAILURE(CFindResult,         CEngErr,  "Could not find Result object") \
  FAILURE(CGetObject,          CEngErr,  "Could not get object") \
  FAILURE(CIndexError,         CEngErr,  "Index file does not match the data file") \
  FAILURE(CInvalidArgument,    CEngErr,  "Function/method object is invalid") \
  FAILURE(CInvalidKey,         CEngErr,  "Invalid key") \
  FAILURE(CInvalidSubject,     CEngErr,  "Subject type is invalid") \
  FAILURE(CInvalidType,        CEngErr,  "Object type is invalid") \
  FAILURE(CLockViolation,      CEngErr,  "Lock violation.\nYou may have to manually unlock the database using the Kestrelon GUI.") \
  FAILURE(CMakeTask,           CEngErr,  "Task could not be created - data error found") \
  FAILURE(CMemoryAlloc,        CEngErr,  "Memory allocation error") \
  FAILURE(CNoDatabaseOpen,     CEngErr,  "No database open") \
  FAILURE(CNoFileExists,       CEngErr,  "No file exists") \
  FAILURE(CNoIndex,            CEngErr,  "No index") \
  FAILURE(CNoIndexSystem,      CEngErr,  "Indexing subsystem missing") \
  FAILURE(CNoObjectsExist,     CEngErr,  "No objects exist") \
  FAILURE(CNonASCIIDatabase,   CEngErr,  "Database filename contains invalid characters.  Use ASCII characters only.") \
  FAILURE(CNullPtr,            CEngErr,  "Null pointer found") \
  FAILURE(CObjectNotAdded,     CEngErr,  "Object not added") \
  FAILURE(CObjectNotFound,     CEngErr,  "Object not found") \
  FAILURE(CObjectNotRemoved,   CEngErr,  "Object not removed") \
  FAILURE(CReadOnlyFile,       CEngErr,  "ReadOnlyFile") \
  FAILURE(CRecordLock,         CEngErr,  "Error locking a record") \
  FAILURE(CRecordLockAccess,   CEngErr,  "The record lock cannot be accessed") \
  FAILURE(CStackFull,          CEngErr,  "Stack full") \
  FAILURE(CSync,               CEngErr,  "Synchronization error") \
  FAILURE(CWrongFileType,      CEngErr,  "Wrong file type")
// clang-format on

#define KESTDB_DECLARE_FAILURE(Class, Base, text)  \
  class KESTDB_API Class : public Base {           \
   public:                                         \
    Class(const char* sourceFile, int sourceLine); \
    Class(const Class&) = default;                 \
    Class& operator=(const Class&) = default;      \
    ~Class() override;                             \
  };

KESTDB_FAILURES(KESTDB_DECLARE_FAILURE)
#undef KESTDB_DECLARE_FAILURE

/// Throws a failure that names the caller's source file and line: `Throw<CFileOpen>();`
template <std::derived_from<CKestErr> Error>
[[noreturn]] void Throw(const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  throw Error(file, line);
}

namespace kestdb {

/// Only within a handler: logs that the exception passed this place, through LException or, when
/// it is no std::exception, LGenException, and throws it on unchanged.
[[noreturn]] KESTDB_API void LogAndRethrow(const char* file, int line);

}  // namespace kestdb

/// The tail of every function of substance, so that the log holds the path of a failure:
///
///     void f() try {
///       ...
///     }
///     LOG_AND_RETHROW
#define LOG_AND_RETHROW                        \
  catch (...) {                                \
    kestdb::LogAndRethrow(__FILE__, __LINE__); \
  }
