#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/fault/CaseRunner.h"
#include "tests/fault/Damage.h"
#include "tests/fault/EveryClassStudy.h"

/// What came of the upkeep of a damaged study, from the best to the worst.
enum class Salvage : std::uint8_t {
  Clean,          ///< all was as stored, and nothing was told
  Reported,       ///< all was as stored; a check told of damage, the rebuilds had nothing to tell
  Full,           ///< all was as stored after a rebuild that told of damage
  NamedLoss,      ///< an object was lost, and a rebuild or the reading of it told so
  NamedByCheck,   ///< an object was lost, and only a check told of damage
  Refused,        ///< a rebuild refused to work
  SilentlyWrong,  ///< an object was lost, and nothing told of it
};

/// One run of all upkeep over a study whose files may be damaged, and the verdict on it: check,
/// rebuilds, opening, and every object read, all the steps that a user with a damaged study takes.
/// For a damaged index file, the two files are compared in place of the rebuild of the data file.
class Upkeep {
 public:
  /// The files are BASE.ksb and BASE.kx.
  Upkeep(std::string base, const EveryClassStudy& study, const Damage& damage);

  CaseResult Run();

 private:
  struct Read {
    std::unique_ptr<vbPersistent> object;
    bool right = false;
  };

  template <class Step>
  bool Try(Step step);
  void Fail(const std::string& what);

  void Check();
  bool RebuildData();
  void Compare();
  bool RebuildIndex();
  void ReadAll();
  std::vector<Read> ReadObjects();
  bool IsAsStored(Read& read, const StoredObject& stored);
  bool IsItselfDamaged(const StoredObject& object) const;
  void Close();
  CaseResult Verdict() const;

  std::string base_;
  std::string dataPath_;
  const EveryClassStudy& study_;
  const Damage& damage_;
  int faults_ = 0;   ///< that the steps told of
  int atCheck_ = 0;  ///< those of them told by checks
  bool refused_ = false;
  std::string lost_;
  std::string wrongly_;  ///< lost though its own block was sound
  std::string failure_;
};

/// The upkeep of `files`, which are those of the study with that damage.
CaseResult UpkeepOf(const EveryClassStudy& study, const Damage& damage, const FilePair& files);

/// Runs the upkeep with each damage, prints how many ended how, and in which fields damage was the
/// cause of a loss. Fails the test for each that ended in no lawful way.
void UpkeepAll(const EveryClassStudy& study, const std::vector<Damage>& damages,
               const std::string& title);
