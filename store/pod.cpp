#include "store/pod.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>

#include "index/dbasekey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/firstfailure.h"
#include "store/podcheck.h"
#include "store/vbdbase.h"

namespace {

constexpr unsigned int kMostRecords = 255;

/// Owns a file until it is handed on. No unique_ptr: destroying a vbDatabase may throw.
class FileOwner {
 public:
  explicit FileOwner(vbDatabase* file) : file_(file) {}
  FileOwner(const FileOwner&) = delete;
  FileOwner& operator=(const FileOwner&) = delete;
  ~FileOwner() noexcept(false) { delete file_; }
  vbDatabase* operator->() const { return file_; }
  vbDatabase* Get() const { return file_; }
  vbDatabase* HandOn() { return std::exchange(file_, nullptr); }

 private:
  vbDatabase* file_;
};

std::string LockPathFor(const std::string& dataPath) {
  constexpr std::size_t extension = 4;
  const bool cut = dataPath.size() >= extension;
  return dataPath.substr(0, cut ? dataPath.size() - extension : std::string::npos) + ".lck";
}

}  // namespace

PODIndex::PODIndex(unsigned int count) : m_Records(std::min(count, kMostRecords)) {}

PODIndex::~PODIndex() {
  for (PODIndexRecord& record : m_Records) delete record.Tree;
}

PODIndexRecord* PODIndex::Record(unsigned int n) const {
  return n < Count() ? &m_Records[n] : nullptr;
}

POD::POD(std::string dataPath) : m_strLockPath(LockPathFor(dataPath)) {}

POD::~POD() noexcept(false) {
  const bool unwinding = std::uncaught_exceptions() > 0;
  kestdb::FirstFailure failure;
  failure.Run([this] { Close(); });
  Abandon();
  if (!unwinding) failure.Rethrow();
}

void POD::Open(const std::string& dataPath, const std::string& indexPath, DatabaseKeyB& key,
               vbINT32 order, vbDatabaseAccessMode mode, int indexing, vbINT32 staticSize,
               int indexCount) try {
  if (m_nExistingFile != 0 || m_pDataFile != nullptr) Throw<CDatabaseOpen>();
  const CLock lock(this, 0);
  if (indexing != 0) {
    PrepareIndexTable(key, order, indexCount);
    m_nIndexing = indexing;
  }
  const bool exists = vbDatabase::Exists(dataPath);
  if (exists) {
    OpenDataFile(dataPath, mode);
  } else {
    CreateDataFile(dataPath, staticSize);
  }
  m_nExistingFile = exists ? 1 : 0;
  if (indexing == 0) return;
  if (exists && vbDatabase::Exists(indexPath)) {
    OpenIndex(indexPath, key, order, mode);
    return;
  }
  for (unsigned int i = 0; exists && i < m_pIndexTable->Count(); ++i) {
    m_pIndexTable->Record(i)->RebuildFlag = 1;
  }
  CreateIndex(indexPath, key, order);
}
LOG_AND_RETHROW

void POD::PrepareIndexTable(DatabaseKeyB& key, vbINT32 order, int indexCount) {
  delete m_pIndexTable;
  m_pIndexTable = nullptr;
  m_pIndexTable = new PODIndex(static_cast<unsigned int>(std::max(indexCount, 0)));
  if (PODIndexRecord* first = m_pIndexTable->Record(0); first != nullptr) {
    first->KeySize = key.KeySize() + static_cast<long>(sizeof key.Branch);
    first->Order = order;
    first->OpenFlag = 1;
  }
}

void POD::OpenDataFile(const std::string& path, vbDatabaseAccessMode mode) try {
  if (m_nExistingFile != 0 || m_pDataFile != nullptr) Throw<CDatabaseOpen>();
  const CLock lock(this, 0);
  FileOwner file(new vbDatabase);
  file->Open(path, mode);
  m_pDataFile = file.HandOn();
}
LOG_AND_RETHROW

void POD::CreateDataFile(const std::string& path, vbINT32 staticSize) try {
  if (m_nExistingFile != 0 || m_pDataFile != nullptr) Throw<CDatabaseOpen>();
  const CLock lock(this, 0);
  FileOwner file(new vbDatabase);
  file->Create(path, staticSize, 'C');
  m_pDataFile = file.HandOn();
}
LOG_AND_RETHROW

/// Makes the index file by `start(file)`, and the tree of class index i, with the tag `tag(i)`, at
/// its slot of the static area, each slot as large as the file header. With `create` the trees are
/// new and empty. Nothing of it stays when a step fails.
template <class Start, class Tag>
void POD::AttachIndex(DatabaseKeyB& key, vbINT32 order, int create, Start start, Tag tag) {
  if (m_pIndexTable == nullptr) Throw<CNoIndexSystem>();
  if (m_pIndexFile != nullptr) Throw<CDatabaseOpen>();
  const CLock lock(this, 0);
  FileOwner file(new vbDatabase);
  file->SetWholeTransfers();
  start(*file.Get());
  const long slot = static_cast<long>(file->FileHeaderSize());
  std::vector<std::unique_ptr<vBtree>> trees;
  for (long i = 0; i < static_cast<long>(m_pIndexTable->Count()); ++i) {
    trees.push_back(std::make_unique<vBtree>(key, order, tag(i)));
    trees.back()->InitBtree(file.Get(), create, slot * (i + 1));
  }
  for (unsigned int i = 0; i < m_pIndexTable->Count(); ++i) {
    PODIndexRecord& record = *m_pIndexTable->Record(i);
    record.Tree = trees[i].release();
    record.OpenFlag = 1;
  }
  m_pIndexFile = file.HandOn();
}

void POD::OpenIndex(const std::string& path, DatabaseKeyB& key, vbINT32 order,
                    vbDatabaseAccessMode mode) try {
  const auto open = [&](vbDatabase& file) { file.Open(path, mode); };
  // The stored header takes the place of this tag at once.
  AttachIndex(key, order, 0, open, [](long i) { return 1000 * (i + 1); });
}
LOG_AND_RETHROW

void POD::CreateIndex(const std::string& path, DatabaseKeyB& key, vbINT32 order) try {
  const auto create = [&](vbDatabase& file) {
    file.Create(path, static_cast<long>(file.FileHeaderSize() * m_pIndexTable->Count()), 'C');
  };
  AttachIndex(key, order, 1, create, [](long i) { return i; });
}
LOG_AND_RETHROW

void POD::Close() try {
  if (m_pDataFile == nullptr && m_pIndexFile == nullptr && m_pIndexTable == nullptr) return;
  const CLock lock(this, 0);
  kestdb::FirstFailure failure;
  failure.Run([this] { CloseDataFile(); });
  failure.Run([this] { CloseIndex(); });
  failure.Rethrow();
}
LOG_AND_RETHROW

void POD::CloseDataFile() try {
  if (m_pDataFile == nullptr) return;
  const CLock lock(this, 0);
  const FileOwner file(std::exchange(m_pDataFile, nullptr));
  file->Close();
}
LOG_AND_RETHROW

void POD::CloseIndex() try {
  if (m_pIndexTable == nullptr || m_pIndexFile == nullptr) return;
  const CLock lock(this, 0);
  const FileOwner file(std::exchange(m_pIndexFile, nullptr));
  const std::unique_ptr<PODIndex> table(std::exchange(m_pIndexTable, nullptr));
  for (unsigned int i = 0; i < table->Count(); ++i) table->Record(i)->Tree->Close();
  file->Close();
}
LOG_AND_RETHROW

void POD::Release() {
  ReleaseDataFile();
  ReleaseIndexFile();
}

void POD::ReleaseIndexFile() {
  m_pIndexFile = nullptr;
  m_pIndexTable = nullptr;
}

void POD::Abandon() {
  if (m_pDataFile != nullptr) m_pDataFile->Abandon();
  if (m_pIndexFile != nullptr) m_pIndexFile->Abandon();
  delete std::exchange(m_pDataFile, nullptr);
  delete std::exchange(m_pIndexFile, nullptr);
  delete std::exchange(m_pIndexTable, nullptr);
}

vBtree* POD::Index(unsigned int n) const {
  if (m_pIndexTable == nullptr) return nullptr;
  const PODIndexRecord* record = m_pIndexTable->Record(n);
  return record == nullptr ? nullptr : record->Tree;
}

void kestdb::RequireIndexed(const POD* pod) {
  if (pod == nullptr) Throw<CNullPtr>();
  if (pod->Indexing() != 1) Throw<CNoIndex>();
  if (pod->DataFile() == nullptr || pod->IndexFile() == nullptr) Throw<CNullPtr>();
}

void kestdb::RequireReportable(const POD* pod, const std::FILE* stream) {
  RequireIndexed(pod);
  if (stream == nullptr) Throw<CNullPtr>();
}
