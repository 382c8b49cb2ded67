#include "tests/fault/reliability/Stage.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace fs = std::filesystem;

namespace {

std::vector<std::string> LinesOf(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

/// THROWS unless the command ends well.
void RequireProcess(const std::vector<std::string>& command, const Settings& settings,
                    const std::string& log) {
  const Ended ended = RunProcess(command, settings, log);
  if (ended.code == kDone && ended.signal == 0) return;
  for (const std::string& line : LinesOf(log)) std::fprintf(stderr, "%s\n", line.c_str());
  throw std::runtime_error("undisturbed, it fails: " + command.at(1) + ' ' + command.at(2));
}

std::string InWords(int ending) {
  switch (ending) {
    case kNoMemory:
      return "std::bad_alloc where memory is not short";
    case kForeignException:
      return "an exception of another family";
    case kMemoryLeft:
      return "memory is left";
    case kDescriptorLeft:
      return "a descriptor is left";
    case kLockLeft:
      return "the lock is left";
    default:
      return "the unit ended with code " + std::to_string(ending);
  }
}

bool IsEnding(int code) {
  return code == kDone || (code >= kReported && code <= kLockLeft);
}

bool IsJudgement(int code) {
  return code >= kFirstJudgement && code <= CodeOf({kWrong, kCountersLost, true});
}

Outcome Died(const Ended& ended) {
  Outcome outcome;
  outcome.end = ended.Hung() ? Outcome::End::Hung : Outcome::End::Crashed;
  outcome.what = ended.Hung() ? "hang" : "crash";
  return outcome;
}

}  // namespace

Stage::Stage(std::string folder, std::string study)
    : folder_(std::move(folder)), study_(std::move(study)) {
  fs::create_directories(folder_);
}

void Stage::Provide(const std::string& unit) {
  std::ofstream(Log(), std::ios::trunc);
  fs::create_directories(folder_ + "/case");
  for (const auto& entry : fs::directory_iterator(folder_ + "/case")) fs::remove_all(entry);
  if (unit == "create") return;
  for (const char* extension : {".ksb", ".kx"}) {
    fs::copy_file(study_ + extension, Study() + extension);
  }
}

Ended Stage::Run(const std::string& worker, const std::string& unit,
                 const Settings& settings) const {
  return RunProcess({worker, "run", unit, Study()}, settings, Log());
}

Undisturbed Stage::Rehearse(const std::string& worker, const std::string& unit,
                            const Settings& settings) {
  Undisturbed undisturbed;
  undisturbed.before = folder_ + "/before." + unit;
  undisturbed.after = folder_ + "/after." + unit;
  Provide(unit);
  Require({worker, "snapshot", "open", Study(), undisturbed.before}, settings);
  Provide(unit);
  const std::string counts = folder_ + "/counts";
  Settings all = settings;
  all.emplace_back("KESTDB_FAULT_COUNTS", counts);
  Require({worker, "run", unit, Study()}, all);
  Require({worker, "snapshot", unit, Study(), undisturbed.after}, settings);
  std::ifstream file(counts);
  for (long count = 0; file >> count;) undisturbed.counts.push_back(count);
  return undisturbed;
}

void Stage::Require(const std::vector<std::string>& command, const Settings& settings) const {
  RequireProcess(command, settings, Log());
}

std::vector<std::string> Stage::LastWords() const {
  std::vector<std::string> lines = LinesOf(Log());
  constexpr std::size_t most = 6;
  if (lines.size() > most) lines.erase(lines.begin(), lines.end() - most);
  return lines;
}

// ---- Judging ----

Ended Stage::AskJudge(const std::string& worker, const std::string& unit, const std::string& study,
                      const Undisturbed& undisturbed, const char* end) const {
  return RunProcess({worker, "judge", unit, study, undisturbed.before, undisturbed.after, end},
                    SanitizerSettings(false), Log());
}

/// What the judge says of a run of which `outcome` is known already.
Outcome Stage::Judged(const Ended& ended, Outcome outcome) const {
  if (ended.signal != 0 || !IsJudgement(ended.code)) return Died(ended);
  const Judgement judgement = JudgementOf(ended.code);
  const Verdict verdict = judgement.verdict;
  if (outcome.end == Outcome::End::Unchanged) {
    if (verdict == kNew) return outcome;
    outcome.end = Outcome::End::Wrong;
    outcome.what = "no failure was reported, verdict " + std::to_string(verdict);
    return outcome;
  }
  outcome.judgement = judgement;
  if (verdict == kWrong || (verdict == kRefused && !outcome.isNewStudy)) {
    outcome.what = "verdict " + std::to_string(verdict);
  }
  return outcome;
}

Outcome Stage::Judge(const std::string& worker, const std::string& unit,
                     const Undisturbed& undisturbed, const Ended& ended) const {
  Outcome outcome;
  outcome.isNewStudy = unit == "create";
  if (ended.signal == SIGKILL) {
    outcome.end = Outcome::End::Killed;
    return Judged(AskJudge(worker, unit, Study(), undisturbed, "killed"), outcome);
  }
  if (ended.signal != 0 || !IsEnding(ended.code)) return Died(ended);
  if (ended.code == kDone) {
    outcome.end = Outcome::End::Unchanged;
    return Judged(AskJudge(worker, unit, Study(), undisturbed, "done"), outcome);
  }
  if (ended.code != kReported && ended.code != kNoMemory) {
    outcome.what = InWords(ended.code);
    return outcome;
  }
  outcome.end = Outcome::End::Reported;
  outcome.noMemory = ended.code == kNoMemory;
  // A copy first: how it fares with a user who takes no notice of the failure.
  fs::remove_all(folder_ + "/copy");
  fs::copy(folder_ + "/case", folder_ + "/copy");
  const Ended retried = AskJudge(worker, unit, folder_ + "/copy/s", undisturbed, "retried");
  if (retried.signal != 0 || !IsJudgement(retried.code)) return Died(retried);
  outcome.isBadRetry = JudgementOf(retried.code).verdict == kWrong;
  return Judged(AskJudge(worker, unit, Study(), undisturbed, "reported"), outcome);
}

// ---- Beside it ----

void PrepareStudy(const std::string& worker, const std::string& study, int points,
                  const std::string& log) {
  fs::create_directories(fs::path(study).parent_path());
  RequireProcess({worker, "prepare", study, std::to_string(points)}, SanitizerSettings(false), log);
}

Settings SanitizerSettings(bool leaks) {
  const char* given = std::getenv("ASAN_OPTIONS");
  std::string options = given != nullptr ? std::string(given) + ':' : "";
  options +=
      "verify_asan_link_order=0:allocator_may_return_null=1:leak_check_"
      "at_exit=0:";
  options += leaks ? "detect_leaks=1" : "detect_leaks=0";
  return {{"ASAN_OPTIONS", options}};
}
