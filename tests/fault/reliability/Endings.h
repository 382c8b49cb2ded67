#pragma once

// What the programs of the reliability harness tell each other by their exit codes. They stay clear
// of those that sanitizers use.

/// How a unit of work ended, in the eyes of the program that asked for it. Of several that hold,
/// the last one counts.
enum UnitEnding : int {
  kDone = 0,
  kReported = 10,          ///< an exception of the library's family
  kNoMemory = 11,          ///< std::bad_alloc
  kForeignException = 12,  ///< an exception of another family
  kMemoryLeft = 13,        ///< more is allocated than without the disturbance
  kDescriptorLeft = 14,    ///< one of the study's files is still open
  kLockLeft = 15,          ///< the lock directory is still there
};

/// What the objects of a study are found to be after a unit of work that was disturbed. All that
/// the unit doesn't touch are there and equal, but for the last two.
enum Verdict : int {
  kUntouched = 0,
  kOld,      ///< as before the unit
  kNew,      ///< as after it
  kPart,     ///< some objects of the unit as before, some as after
  kTorn,     ///< an object of the unit is half written, and the upkeep warned of it
  kLost,     ///< an object that the unit was replacing is gone
  kRefused,  ///< the study can't be opened
  kWrong,    ///< an object of an earlier unit is gone or differs, or a half one is
             ///< not told of
};

/// What became of the counters of new definitions, the object CDBCtrl, which some units store anew
/// on their way.
enum Counters : int {
  kCountersUntouched = 0,
  kCountersWhole,  ///< as before the unit or as after it
  kCountersLost,   ///< gone, and made anew by the next opening
};

struct Judgement {
  Verdict verdict = kUntouched;
  Counters counters = kCountersUntouched;
  bool neededUpkeep = false;
};

constexpr int kFirstJudgement = 100;

constexpr int CodeOf(const Judgement& of) {
  return kFirstJudgement + of.verdict + 8 * of.counters + 32 * (of.neededUpkeep ? 1 : 0);
}

constexpr Judgement JudgementOf(int code) {
  const int of = code - kFirstJudgement;
  return {static_cast<Verdict>(of % 8), static_cast<Counters>(of / 8 % 4), of / 32 != 0};
}

constexpr int kWrongUse = 64;
