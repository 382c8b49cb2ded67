#pragma once

#include <string>
#include <vector>

#include "store/api.h"
#include "store/vbscalar.h"
#include "store/vpersist.h"

/// What the persisted classes have in common but what has to know the class: each derives from
/// this with itself as the argument. Its source file names the class's constants, key fields and
/// stored fields once (store/PersistentClassImpl.h), and all of this follows.
template <class Class>
class vbPersistentClass : public vbPersistent {
 public:
  using vbPersistent::vbPersistent;

  void Read(vbINT32 address) override;
  bool Write() override;
  unsigned long ObjectLength() override;
  bool CheckKey() override;
  char* MakeKey(char* buffer) override;
  vbINT32 GetVBClassID() override;
  unsigned int GetVBClassIndex() override;
  std::string GetVBClassName() override;
  int GetVBClassVer() override;

  /// Walks over the data file and, with `add`, enters each object of the class into its tree, else
  /// checks that the tree has its key. An object that no record of the class can be read from is
  /// warned about and left out. The number of the others.
  /// THROWS CNullPtr, CNoIndex, CNoObjectsExist for a data file without blocks, CChecksum,
  /// CAddKey, CDuplicateEntry, CIndexError when the tree lacks a key.
  static int RebuildIndex(POD* pod, bool add);

 protected:
  std::vector<vbINT32> KeyWords() const override;
};

/// The class ID is a thousand for each class index, counted from 1.
constexpr vbINT32 vbClassIDOf(const vbINT32& classIndex) {
  return 1000 * (classIndex + 1);
}
