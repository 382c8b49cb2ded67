#pragma once

// What the programs of the reliability harness tell each other by their exit codes. They stay clear
// of those that sanitizers use.

/// How a unit of work ended, in the eyes of the program that asked for it.
enum UnitEnding : int {
  kDone = 0,
  kReported = 10,          ///< an exception of the library's family
  kForeignException = 11,  ///< an exception of another family
  kDescriptorLeft = 12,
  kLockLeft = 13,
};

/// What a study is found to be after a unit of work that was disturbed. All objects that the unit
/// doesn't touch are there and equal, but for the last two.
enum Verdict : int {
  kOld = 30,      ///< as before the unit
  kNew = 31,      ///< as after it
  kPart = 32,     ///< some objects of the unit as before, some as after
  kTorn = 33,     ///< an object of the unit is half written, and the upkeep warned of it
  kLost = 34,     ///< an object that the unit was replacing is gone
  kRefused = 35,  ///< the study can't be opened
  kWrong = 36,    ///< an object of an earlier unit is gone or differs, or a half one is not told of
};

/// Added to a verdict for which no upkeep was needed.
constexpr int kWithoutUpkeep = 10;

constexpr int kWrongUse = 64;
