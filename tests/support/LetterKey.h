#pragma once

#include <algorithm>
#include <cstring>

#include "index/dbasekey.h"

/// A key class besides the library's own: four letters, entries of 8 bytes.
class LetterKey : public DatabaseKeyB {
 public:
  explicit LetterKey(const char* text = "") : DatabaseKeyB(letters) {
    std::memcpy(letters, text, std::min(std::strlen(text), sizeof letters));
  }
  LetterKey(const LetterKey&) = delete;
  LetterKey& operator=(const LetterKey&) = delete;

  vbINT32 KeySize() override { return static_cast<long>(sizeof letters); }
  bool operator==(const DatabaseKeyB& other) const override { return Compare(other) == 0; }
  bool operator>(const DatabaseKeyB& other) const override { return Compare(other) > 0; }

  char letters[4] = {};

 private:
  int Compare(const DatabaseKeyB& other) const {
    return std::memcmp(letters, other.KeyData, sizeof letters);
  }
};
