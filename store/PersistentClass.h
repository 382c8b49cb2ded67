#pragma once

#include <string>

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
};

/// The class ID is a thousand for each class index, counted from 1.
constexpr vbINT32 vbClassIDOf(const vbINT32& classIndex) {
  return 1000 * (classIndex + 1);
}
