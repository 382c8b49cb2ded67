#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/fault/CaseRunner.h"
#include "tests/fault/KnownObjects.h"
#include "tests/fault/Traces.h"

/// One use of a study whose files may be damaged, and the verdict on it.
class Visit {
 public:
  /// `objects` are those stored, `triples` the IDs in the tree of the triple records, `changed` the
  /// address of an object of which nothing is expected.
  Visit(std::string base, const std::vector<KnownObject>& objects, const std::vector<int>& triples,
        long changed);

  CaseResult Run();

 private:
  enum class Found { Right, Missing, Wrong, Failed };

  template <class Step>
  void Try(Step step);
  template <class Step>
  void TryLocked(Step step);
  void Fail(const std::string& what);
  void Lose(const std::string& what);

  bool IsOfAnotherVersion() const;
  void ReadPoints();
  void Read();
  void Write();
  void ReadAll();
  void ReadAgain();
  Found ReadByKey(const KnownObject& object);
  void CountAgain(Kind kind, int change);
  void WalkObjects(Kind kind);
  template <class Record>
  std::vector<long> Forwards(Record& record);
  template <class Record>
  std::vector<long> Backwards(Record& record, long last);
  template <class Record>
  void ReadAtAddress(Record& record, long address);
  void WalkKeys(Kind kind);
  void Add(const KnownObject& object);
  void Remove(const KnownObject& object);
  void Close();

  void CheckTraces(const Traces& traces);
  bool IsExempt(const KnownObject& object) const;
  std::vector<long> AddressesOf(Kind kind) const;
  CaseResult Verdict() const;

  std::string base_;
  const std::vector<KnownObject>& objects_;
  const std::vector<int>& triples_;
  long changed_;
  std::size_t dataSize_ = 0;
  std::size_t indexSize_ = 0;

  std::vector<Found> first_;  // what came of reading each object
  int exceptions_ = 0;
  bool silentRead_ = false;
  std::string failure_;
  std::string loss_;
  std::string exception_;
  std::string spread_;
};
