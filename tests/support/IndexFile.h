#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TreeFile.h"

/// The key of a number.
inline KSBKey NumberKey(long number) {
  return {NumberName(number).c_str(), NumberAddress(number), kNumberClass};
}

/// The number of a key, whose name may lack its terminator when it comes from a damaged file.
inline long NumberOf(const KSBKey& key) {
  const std::string name(key.ObjectName, strnlen(key.ObjectName, sizeof key.ObjectName));
  return std::atol(name.c_str());
}

/// An index file of its own for a test, with one tree whose keys are numbers.
template <class File = vbDatabase>
class IndexFileOf {
 public:
  /// An empty tree in a new file.
  explicit IndexFileOf(long order = 32) : tree_(NewTree(order)) {
    file_.Create(Path(), kTreeHeap - kTreeHeader, 'C');
    tree_->InitBtree(&file_, 1, kTreeHeader);
  }
  explicit IndexFileOf(const TreeFile& bytes, vbDatabaseAccessMode mode = vbReadWrite) {
    Replace(bytes, mode);
  }
  IndexFileOf(const IndexFileOf&) = delete;
  IndexFileOf& operator=(const IndexFileOf&) = delete;
  ~IndexFileOf() { file_.Abandon(); }

  /// Closes the file without a word and goes on with these bytes.
  void Replace(const TreeFile& bytes, vbDatabaseAccessMode mode = vbReadWrite) {
    file_.Abandon();
    // A new file: some file systems bring one that is overwritten to the disk at once.
    std::filesystem::remove(Path());
    WriteBytes(Path(), bytes.Bytes());
    file_.Open(Path(), mode);
    // The order and the tag are those of the file then.
    tree_ = NewTree(9);
    tree_->InitBtree(&file_, 0, kTreeHeader);
  }

  std::string Path() const { return folder_ / "index.kx"; }
  File& Database() { return file_; }
  vBtree& operator*() { return *tree_; }
  vBtree* operator->() { return tree_.get(); }

  /// The file as it is, without the headers that are in memory.
  TreeFile Stored() {
    std::fflush(file_.Stream());
    return TreeFile(ReadBytes(Path()));
  }
  /// The file with them.
  TreeFile Current() {
    tree_->Flush();
    return Stored();
  }

  void Insert(long number) {
    KSBKey key = NumberKey(number), work;
    tree_->Insert(key, work, false);
  }
  void Delete(long number) {
    KSBKey key = NumberKey(number), work;
    tree_->Delete(key, work, false);
  }
  void LazyDelete(long number) {
    KSBKey key = NumberKey(number), work;
    tree_->LazyDelete(key, work, false);
  }

  bool Holds(long number) {
    KSBKey key(NumberName(number).c_str(), -1, -1), work;
    return tree_->Find(key, work, true) && key.ObjectAddress == NumberAddress(number);
  }
  std::optional<long> First() {
    KSBKey key;
    return Found(tree_->FindFirst(key, true), key);
  }
  std::optional<long> Last() {
    KSBKey key;
    return Found(tree_->FindLast(key, true), key);
  }
  std::optional<long> Next(long number) {
    KSBKey key = NumberKey(number), work;
    return Found(tree_->FindNext(key, work, true), key);
  }
  std::optional<long> Previous(long number) {
    KSBKey key = NumberKey(number), work;
    return Found(tree_->FindPrev(key, work, true), key);
  }

 private:
  static std::unique_ptr<vBtree> NewTree(long order) {
    KSBKey key;
    return std::make_unique<vBtree>(key, order, kNumberClass);
  }
  static std::optional<long> Found(bool found, const KSBKey& key) {
    return found ? std::optional(NumberOf(key)) : std::nullopt;
  }

  TempFolder folder_;
  File file_;
  std::unique_ptr<vBtree> tree_;
};

using IndexFile = IndexFileOf<>;
