#pragma once

#include <string>
#include <vector>

#include "store/api.h"
#include "store/vbdfptr.h"
#include "store/vbscalar.h"

class DatabaseKeyB;
class vBtree;
class vbDatabase;

inline constexpr vbINT32 POD_DEFAULT_KEY_SIZE{64};
inline constexpr vbINT32 POD_DEFAULT_ORDER{29};

/// What a POD knows of the index of one class. Key size and order are told for the first class
/// only; the trees themselves know the true ones.
struct PODIndexRecord {
  vBtree* Tree = nullptr;  ///< owned by the table
  vbINT32 KeySize{POD_DEFAULT_KEY_SIZE};
  vbINT32 Order{POD_DEFAULT_ORDER};
  vbINT32 SpareAddress{-1};
  int OpenFlag = 0;     ///< 1 while the tree is attached
  int RebuildFlag = 0;  ///< 1 when the index has to be rebuilt from the data file
};

/// The index table of a database: a record for each persistent class, by its class index.
class KESTDB_API PODIndex {
 public:
  /// At most 255 records.
  explicit PODIndex(unsigned int count);
  PODIndex(const PODIndex&) = delete;
  PODIndex& operator=(const PODIndex&) = delete;
  ~PODIndex();

  unsigned int Count() const { return static_cast<unsigned int>(m_Records.size()); }
  /// Null beyond the count.
  PODIndexRecord* Record(unsigned int n) const;

 private:
  mutable std::vector<PODIndexRecord> m_Records;
};

/// An open study: owns its data file, its index file and the trees of all classes. Made by
/// OpenDatabase; every persistent object is constructed with a pointer to it.
class KESTDB_API POD {
 public:
  /// Opens nothing. The lock path is the data path with ".lck" for its last four characters.
  explicit POD(std::string dataPath);
  POD(const POD&) = delete;
  POD& operator=(const POD&) = delete;

  /// Closes both files. THROWS what Close throws, unless another exception is in flight; the files
  /// are closed in any case.
  ~POD() noexcept(false);

  /// Opens the data file or makes a new one, and the same, with `indexing` not 0, for the index
  /// file with `indexCount` trees. With an old data file and no index file the new index is empty,
  /// and all rebuild flags are raised. `staticSize` is the static area of a new data file.
  /// THROWS CDatabaseOpen and the failures of vbDatabase, vBtree and CLock.
  void Open(const std::string& dataPath, const std::string& indexPath, DatabaseKeyB& key,
            vbINT32 order, vbDatabaseAccessMode mode, int indexing, vbINT32 staticSize,
            int indexCount);

  void OpenDataFile(const std::string& path, vbDatabaseAccessMode mode);
  void CreateDataFile(const std::string& path, vbINT32 staticSize);

  /// THROW CNoIndexSystem without an index table, CDatabaseOpen.
  void OpenIndex(const std::string& path, DatabaseKeyB& key, vbINT32 order,
                 vbDatabaseAccessMode mode);
  void CreateIndex(const std::string& path, DatabaseKeyB& key, vbINT32 order);

  /// Writes all headers and closes. A file is closed also when that fails.
  void Close();
  void CloseDataFile();
  void CloseIndex();

  /// Hand what is owned to the caller without closing it.
  void Release();
  void ReleaseDataFile() { m_pDataFile = nullptr; }
  void ReleaseIndexFile();

  /// Closes both files as they are, without writing to them: for a study that can't be locked.
  void Abandon();

  /// The tree of a class, null beyond the table.
  vBtree* Index(unsigned int n) const;

  vbDatabase* DataFile() const { return m_pDataFile; }
  vbDatabase* IndexFile() const { return m_pIndexFile; }
  PODIndex* IndexTable() const { return m_pIndexTable; }
  int Indexing() const { return m_nIndexing; }
  const std::string& LockPath() const { return m_strLockPath; }
  bool LockHeld() const { return m_bLockHeld; }

 private:
  friend class CLock;

  void PrepareIndexTable(DatabaseKeyB& key, vbINT32 order, int indexCount);
  template <class Start, class Tag>
  void AttachIndex(DatabaseKeyB& key, vbINT32 order, int create, Start start, Tag tag);

  vbDatabase* m_pDataFile = nullptr;
  vbDatabase* m_pIndexFile = nullptr;
  PODIndex* m_pIndexTable = nullptr;
  int m_nExistingFile = 0;  ///< 1 after Open opened an old data file
  int m_nIndexing = 0;
  bool m_bLockHeld = false;
  std::string m_strLockPath;
};
