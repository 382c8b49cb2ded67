#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "tests/fault/CaseRunner.h"
#include "tests/fault/pairs/ObjectList.h"

// What a user does with the two files of a study that may not belong together, or not be what they
// say they are.

/// What came of asking for objects.
struct Tally {
  int right = 0;
  int absent = 0;   ///< not found, with nothing told
  int refused = 0;  ///< an exception
  int wrong = 0;    ///< served with other values, under a key of another object, or twice
  int back = 0;     ///< served, but not in the data file

  bool operator==(const Tally&) const = default;
};

/// "3 right, 1 absent"; "-" when nothing was asked for.
std::string Words(const Tally& tally);
std::ostream& operator<<(std::ostream& stream, const Tally& tally);

/// What came of a course. It lies in memory that processes share.
struct Findings {
  static constexpr std::size_t kText = 96;

  // What the exception or the log says, empty when there is nothing to tell.
  char opened[kText];
  char fileCheck[kText];
  char indexCheck[kText];
  char fileRebuild[kText];
  char indexRebuild[kText];

  Tally byKey;
  Tally inIndexOrder;
  Tally inFileOrder;
  Tally atLast;  ///< by key, behind the rebuilds

  bool isOpen;       ///< the study could be opened
  bool told;         ///< an exception, or the log, told of a fault
  bool refused;      ///< the rebuilds didn't come to their end
  int gone;          ///< objects that the data file lacks at last, told only with `refused`
  char lost[kText];  ///< the first object that isn't right, and why
};

/// One study, and the courses that can be taken with it. Each starts from the files as they are and
/// is told in `findings`.
class Course {
 public:
  struct Known {
    std::vector<ListedObject> objects;  ///< of the data file
    std::vector<ListedObject> others;   ///< keys that are not
    /// What the user does when the upkeep, or the open behind it, is refused.
    std::function<void(const std::string& base)> setRight;
    long changed = 0;  ///< the address of an object that counts for nothing
  };

  Course(std::string base, const Known& known, Findings& findings);
  Course(const Course&) = delete;
  Course& operator=(const Course&) = delete;
  ~Course();

  /// Opens the study, reads every object by its key and in both orders, closes.
  void Read();
  /// Both checks.
  void Check();
  /// Rebuilds both files, once more behind `setRight` when that is refused; then reads by key.
  void Rebuild();
  /// Opens and closes the study.
  void Open();
  /// Opens the study, stores every object of the data file once more, as it is, and closes.
  void Update();

 private:
  class Scratch;
  enum class Got : std::uint8_t { Right, Absent, Refused, Wrong };

  template <class Step>
  bool Try(Step step, char* text);
  bool RebuildBoth();
  bool OpenAtLast();
  void CountGone();
  void ReadByKey(Tally& tally);
  void ReadInIndexOrder();
  void ReadInFileOrder();
  Got Ask(const ListedObject& object);
  const ListedObject* Find(long classID, const std::string& key) const;
  void Judge(vbPersistent& object, const std::string& own, std::vector<const ListedObject*>& seen,
             Tally& tally);
  bool IsChanged(const ListedObject& listed) const;
  bool IsAsListed(vbPersistent& object, const ListedObject& listed);
  void CountLeft(long classID, const std::vector<const ListedObject*>& seen, bool ended,
                 Tally& tally) const;
  void Lose(const std::string& what);
  void Close();

  std::string base_;
  const Known& known_;
  Findings& findings_;
  std::unique_ptr<Scratch> scratch_;
};

/// How a course ended. Behind a rebuild, every object has to be right or, where that was refused,
/// in the data file still.
CaseResult VerdictOnReading(const Findings& findings);
CaseResult VerdictOnRebuild(const Findings& findings, std::size_t objects);
/// How all of them ended together, for files with a lie in them. `objects` is the number of those
/// that count. What is lost has to be told; with a sound data file, nothing may be lost at last.
CaseResult VerdictOnForgery(const Findings& findings, std::size_t objects, bool dataIsSound);
