#include <lmdb.h>

#include <filesystem>
#include <stdexcept>

#include "bench/PeerStore.h"

namespace {

/// Room for some millions of records; the file grows with what is stored.
constexpr std::size_t kMapSize = std::size_t{1} << 32;

void Require(int result) {
  if (result != MDB_SUCCESS) throw std::runtime_error(mdb_strerror(result));
}

class LmdbPeer : public PeerStore {
 public:
  ~LmdbPeer() override { CloseIfOpen(); }

  void Open(const std::string& folder) override {
    Require(mdb_env_create(&environment_));
    Require(mdb_env_set_mapsize(environment_, kMapSize));
    Require(mdb_env_open(environment_, DataPath(folder).c_str(), MDB_NOSUBDIR, 0644));
  }
  void Close() override { CloseIfOpen(); }

  void Begin(bool writes) override {
    Require(mdb_txn_begin(environment_, nullptr, writes ? 0 : MDB_RDONLY, &transaction_));
    Require(mdb_dbi_open(transaction_, nullptr, MDB_INTEGERKEY, &points_));
  }
  void End() override { Require(mdb_txn_commit(transaction_)); }

  void Store(const PeerRecord& record) override { Put(record, MDB_NOOVERWRITE); }
  void Update(const PeerRecord& record) override { Put(record, 0); }
  void Remove(int number) override {
    MDB_val key = KeyOf(number);
    Require(mdb_del(transaction_, points_, &key, nullptr));
  }

  PeerRecord Find(int number) override {
    MDB_val key = KeyOf(number);
    MDB_val value{};
    Require(mdb_get(transaction_, points_, &key, &value));
    return FromBlob(value.mv_data, value.mv_size);
  }

  void VisitInKeyOrder(const std::function<void(const PeerRecord&)>& visit) override {
    MDB_cursor* cursor = nullptr;
    Require(mdb_cursor_open(transaction_, points_, &cursor));
    MDB_val key{};
    MDB_val value{};
    while (mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == MDB_SUCCESS) {
      visit(FromBlob(value.mv_data, value.mv_size));
    }
    mdb_cursor_close(cursor);
  }

  void Compact(const std::string& folder) override {
    const std::string path = DataPath(folder);
    Open(folder);
    Require(mdb_env_copy2(environment_, (path + ".new").c_str(), MDB_CP_COMPACT));
    Close();
    std::filesystem::rename(path + ".new", path);
  }

  bool HasCheck() const override { return false; }
  void Check(const std::string&) override {}

 private:
  static std::string DataPath(const std::string& folder) { return folder + "/points.mdb"; }

  /// The key points to the argument.
  static MDB_val KeyOf(int& number) { return {sizeof number, &number}; }

  void Put(const PeerRecord& record, unsigned flags) {
    int number = record.number;
    std::string blob = ToBlob(record);
    MDB_val key = KeyOf(number);
    MDB_val value{blob.size(), blob.data()};
    Require(mdb_put(transaction_, points_, &key, &value, flags));
  }

  void CloseIfOpen() {
    if (environment_ != nullptr) mdb_env_close(environment_);
    environment_ = nullptr;
  }

  MDB_env* environment_ = nullptr;
  MDB_txn* transaction_ = nullptr;
  MDB_dbi points_ = 0;
};

}  // namespace

std::unique_ptr<PeerStore> MakeLmdbPeer() {
  return std::make_unique<LmdbPeer>();
}
