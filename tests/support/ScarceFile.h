#pragma once

#include <limits>
#include <vector>

#include "store/vbdbase.h"

/// A block file that keeps account of what is allocated, and in which only the first `left`
/// allocations succeed.
class ScarceFile : public vbDatabase {
 public:
  struct Request {
    unsigned long size;
    vbDatabaseReclaimMethod method;
  };

  vbINT32 Alloc(unsigned long size, vbDatabaseReclaimMethod method) override {
    requests.push_back({size, method});
    if (left <= 0) return 0;
    --left;
    return vbDatabase::Alloc(size, method);
  }

  int left = std::numeric_limits<int>::max();
  std::vector<Request> requests;
};
