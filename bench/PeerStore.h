#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/PeerRecord.h"

/// A store of the comparison. Its files lie in one folder. Failures are exceptions.
class PeerStore {
 public:
  PeerStore() = default;
  PeerStore(const PeerStore&) = delete;
  PeerStore& operator=(const PeerStore&) = delete;
  virtual ~PeerStore() = default;

  /// Opens what is in the folder, or makes an empty store there.
  virtual void Open(const std::string& folder) = 0;
  virtual void Close() = 0;

  /// A unit of work. At the end of one that writes, all is on the disk.
  virtual void Begin(bool writes) = 0;
  virtual void End() = 0;

  // In a unit.
  virtual void Store(const PeerRecord& record) = 0;
  virtual PeerRecord Find(int number) = 0;
  virtual void VisitInKeyOrder(const std::function<void(const PeerRecord&)>& visit) = 0;
  virtual void Update(const PeerRecord& record) = 0;

  /// Whether the store can remove and compact.
  virtual bool HasUpkeep() const { return true; }
  /// In a unit.
  virtual void Remove(int number) = 0;
  /// Of the closed store: gives the room of removed records back to the system.
  virtual void Compact(const std::string& folder) = 0;

  virtual bool HasCheck() const { return true; }
  /// Of the closed store: checks all that the store can check; throws when something is found.
  virtual void Check(const std::string& folder) = 0;
};

struct PeerKind {
  std::string name;
  std::function<std::unique_ptr<PeerStore>()> make;
};

enum class SqliteJournal { kDefault, kWriteAhead };
enum class SqliteForm { kBlob, kJson };

std::unique_ptr<PeerStore> MakeKestDBPeer();
std::unique_ptr<PeerStore> MakeSqlitePeer(SqliteForm form, SqliteJournal journal);
std::unique_ptr<PeerStore> MakeLmdbPeer();
std::unique_ptr<PeerStore> MakePlainPeer();
