#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "bench/PeerStore.h"

namespace {

void Require(bool holds) {
  if (!holds) throw std::runtime_error("the plain file");
}

/// A plain file of records, the first at its start: what any store has to move at least. It knows
/// no keys, no free room and no damage.
class PlainPeer : public PeerStore {
 public:
  ~PlainPeer() override {
    if (file_ != nullptr) std::fclose(file_);
  }

  void Open(const std::string& folder) override {
    const std::string path = folder + "/points";
    file_ = std::fopen(path.c_str(), std::filesystem::exists(path) ? "r+b" : "w+b");
    Require(file_ != nullptr);
  }
  void Close() override {
    Require(std::fclose(file_) == 0);
    file_ = nullptr;
  }

  void Begin(bool writes) override { writes_ = writes; }
  void End() override {
    if (writes_) Require(std::fflush(file_) == 0 && fsync(fileno(file_)) == 0);
  }

  void Store(const PeerRecord& record) override { Append(record); }
  void Update(const PeerRecord& record) override {
    Seek(record.number);
    Append(record);
  }
  PeerRecord Find(int number) override {
    Seek(number);
    char blob[kBlobSize];
    Require(std::fread(blob, sizeof blob, 1, file_) == 1);
    return FromBlob(blob, sizeof blob);
  }

  void VisitInKeyOrder(const std::function<void(const PeerRecord&)>& visit) override {
    std::rewind(file_);
    char blob[kBlobSize];
    while (std::fread(blob, sizeof blob, 1, file_) == 1) visit(FromBlob(blob, sizeof blob));
  }

  bool HasUpkeep() const override { return false; }
  void Remove(int) override {}
  void Compact(const std::string&) override {}
  bool HasCheck() const override { return false; }
  void Check(const std::string&) override {}

 private:
  void Seek(int number) {
    Require(std::fseek(file_, static_cast<long>(kBlobSize) * (number - 1), SEEK_SET) == 0);
  }
  void Append(const PeerRecord& record) {
    const std::string blob = ToBlob(record);
    Require(std::fwrite(blob.data(), blob.size(), 1, file_) == 1);
  }

  std::FILE* file_ = nullptr;
  bool writes_ = false;
};

}  // namespace

std::unique_ptr<PeerStore> MakePlainPeer() {
  return std::make_unique<PlainPeer>();
}
