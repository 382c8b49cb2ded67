#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>

#include "bench/PeerStore.h"

namespace {

void Require(bool holds, sqlite3* database) {
  if (!holds) throw std::runtime_error(sqlite3_errmsg(database));
}

void Execute(sqlite3* database, const std::string& text) {
  Require(sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, database);
}

/// A statement that is prepared when it is first used, and ready to be used again after each use.
class Statement {
 public:
  explicit Statement(std::string text) : text_(std::move(text)) {}
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() { Finish(); }

  sqlite3_stmt* On(sqlite3* database) {
    if (statement_ == nullptr) {
      Require(sqlite3_prepare_v2(database, text_.c_str(), -1, &statement_, nullptr) == SQLITE_OK,
              database);
    }
    return statement_;
  }

  /// Runs it to its end.
  void Run() {
    sqlite3* database = sqlite3_db_handle(statement_);
    Require(sqlite3_step(statement_) == SQLITE_DONE, database);
    sqlite3_reset(statement_);
  }

  void Finish() {
    sqlite3_finalize(statement_);
    statement_ = nullptr;
  }

 private:
  std::string text_;
  sqlite3_stmt* statement_ = nullptr;
};

class SqlitePeer : public PeerStore {
 public:
  SqlitePeer(SqliteForm form, SqliteJournal journal) : form_(form), journal_(journal) {}
  ~SqlitePeer() override { CloseIfOpen(); }

  void Open(const std::string& folder) override {
    const std::string path = folder + "/points.sqlite";
    const bool isNew = !std::filesystem::exists(path);
    Require(sqlite3_open(path.c_str(), &database_) == SQLITE_OK, database_);
    if (!isNew) return;
    if (journal_ == SqliteJournal::kWriteAhead) Execute(database_, "PRAGMA journal_mode = WAL");
    const std::string type = form_ == SqliteForm::kBlob ? "BLOB" : "TEXT";
    Execute(database_,
            "CREATE TABLE points (number INTEGER PRIMARY KEY, record " + type + " NOT NULL)");
  }
  void Close() override { CloseIfOpen(); }

  void Begin(bool writes) override { Execute(database_, writes ? "BEGIN IMMEDIATE" : "BEGIN"); }
  void End() override { Execute(database_, "COMMIT"); }

  void Store(const PeerRecord& record) override { Write(insert_, record); }
  void Update(const PeerRecord& record) override {
    Write(update_, record);
    Require(sqlite3_changes(database_) == 1, database_);
  }
  void Remove(int number) override {
    sqlite3_bind_int(remove_.On(database_), 1, number);
    remove_.Run();
  }

  PeerRecord Find(int number) override {
    sqlite3_stmt* statement = find_.On(database_);
    sqlite3_bind_int(statement, 1, number);
    Require(sqlite3_step(statement) == SQLITE_ROW, database_);
    const PeerRecord record = Record(statement);
    sqlite3_reset(statement);
    return record;
  }

  void VisitInKeyOrder(const std::function<void(const PeerRecord&)>& visit) override {
    sqlite3_stmt* statement = walk_.On(database_);
    while (sqlite3_step(statement) == SQLITE_ROW) visit(Record(statement));
    Require(sqlite3_reset(statement) == SQLITE_OK, database_);
  }

  void Compact(const std::string& folder) override {
    Open(folder);
    Execute(database_, "VACUUM");
    Close();
  }

  void Check(const std::string& folder) override {
    Open(folder);
    Statement check("PRAGMA integrity_check");
    sqlite3_stmt* statement = check.On(database_);
    Require(sqlite3_step(statement) == SQLITE_ROW, database_);
    const std::string answer(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
    if (answer != "ok") throw std::runtime_error(answer);
    check.Finish();
    Close();
  }

 private:
  void Write(Statement& prepared, const PeerRecord& record) {
    sqlite3_stmt* statement = prepared.On(database_);
    const bool blob = form_ == SqliteForm::kBlob;
    const std::string stored = blob ? ToBlob(record) : ToJson(record);
    const int size = static_cast<int>(stored.size());
    sqlite3_bind_int(statement, 1, record.number);
    if (blob) {
      sqlite3_bind_blob(statement, 2, stored.data(), size, SQLITE_STATIC);
    } else {
      sqlite3_bind_text(statement, 2, stored.data(), size, SQLITE_STATIC);
    }
    prepared.Run();
  }

  PeerRecord Record(sqlite3_stmt* statement) const {
    const void* stored = sqlite3_column_blob(statement, 0);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, 0));
    return form_ == SqliteForm::kBlob ? FromBlob(stored, size) : FromJson(stored, size);
  }

  void CloseIfOpen() {
    for (Statement* statement : {&insert_, &update_, &remove_, &find_, &walk_}) statement->Finish();
    sqlite3_close(database_);
    database_ = nullptr;
  }

  SqliteForm form_;
  SqliteJournal journal_;
  sqlite3* database_ = nullptr;
  Statement insert_{"INSERT INTO points VALUES (?1, ?2)"};
  Statement update_{"UPDATE points SET record = ?2 WHERE number = ?1"};
  Statement remove_{"DELETE FROM points WHERE number = ?1"};
  Statement find_{"SELECT record FROM points WHERE number = ?1"};
  Statement walk_{"SELECT record FROM points ORDER BY number"};
};

}  // namespace

std::unique_ptr<PeerStore> MakeSqlitePeer(SqliteForm form, SqliteJournal journal) {
  return std::make_unique<SqlitePeer>(form, journal);
}
