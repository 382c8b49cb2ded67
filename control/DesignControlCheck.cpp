#include <sys/stat.h>

#include <string>

#include "control/DesignControl.h"
#include "environment/Logging.h"
#include "environment/Utilities.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/podcheck.h"

// The validation of the settings for the chosen kind of task.

namespace {

/// The program of a run and the files through which it exchanges values.
struct Execution {
  const char* kind;  ///< "Analysis" or "Gradient", as the messages say
  std::string program;
  std::string varFile;
  std::string respFile;
};

enum class ProgramKind { Ordinary, Matlab, Script, Perl };

/// Takes the quotes off a quoted name.
void Unquote(std::string& name) {
  const std::size_t first = name.find('"');
  const std::size_t last = name.rfind('"');
  if (first == last) return;
  name.erase(last, 1);
  name.erase(first, 1);
}

bool EndsIn(const std::string& name, const char* lower, const char* upper) {
  return name.ends_with(lower) || name.ends_with(upper);
}

/// By the ending, in lower or in upper case; a mixed one is a name like any other.
ProgramKind KindOf(const std::string& program) {
  if (EndsIn(program, ".m", ".M")) return ProgramKind::Matlab;
  if (EndsIn(program, ".py", ".PY") || EndsIn(program, ".rkl", ".RKL")) return ProgramKind::Script;
  if (EndsIn(program, ".pl", ".PL")) return ProgramKind::Perl;
  return ProgramKind::Ordinary;
}

bool IsThere(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0;
}

bool CheckCharacters(const Execution& run) {
  bool holds = true;
  const auto fail = [&holds] {
    LPrint("     invalid characters.  Use ASCII characters only.\n\n");
    holds = false;
  };
  if (!CKUtil::IsASCII(run.program)) {
    LError("(Design Control): %s program filename (%s) contains\n", run.kind, run.program.c_str());
    fail();
  }
  if (!CKUtil::IsASCII(run.varFile)) {
    LError("(Design Control): %s program input filename (%s)contains\n", run.kind,
           run.varFile.c_str());
    fail();
  }
  if (!CKUtil::IsASCII(run.respFile)) {
    LError("(Design Control): %s program output (%s) filename contains\n", run.kind,
           run.respFile.c_str());
    fail();
  }
  return holds;
}

void ReportPerl(const Execution& run) {
  LError("(Design Control): %s program is a Perl file.\n", run.kind);
  LPrint("       Perl is no longer directly supported by Kestrelon.\n");
  LPrint("       If this is an old Quillscript script, please re-export\n");
  LPrint("       the script from Quillscript to automatially get a new\n");
  LPrint("       Python (.py) script.  If you still want to run the Perl\n");
  LPrint("       file, and you have Perl installed on your computer, you\n");
  LPrint("       can specify the Perl executable as the analysis program\n");
  LPrint("       and the Perl file as the command line argument.\n");
}

bool CheckProgramNamed(const Execution& run, ProgramKind kind) {
  if (run.program.empty()) {
    LError("(Design Control): %s program not specified.\n", run.kind);
    return false;
  }
  if (kind != ProgramKind::Perl) return true;
  ReportPerl(run);
  return false;
}

bool CheckProgramFound(const Execution& run, ProgramKind kind, bool useApprox, bool warnOnly) {
  if (run.program.empty() || kind == ProgramKind::Perl) return true;  // told already
  const bool found =
      kind == ProgramKind::Ordinary
          ? useApprox || COSUtil::FindExeInStringPATH(run.program, COSUtil::GetUserPATH())
          : IsThere(run.program);
  if (found) return true;
  if (warnOnly) {
    LWarn("(Design Control): %s program (%s) not found.\n", run.kind, run.program.c_str());
    return true;
  }
  LError("(Design Control): %s program (%s) not found.\n", run.kind, run.program.c_str());
  return false;
}

/// Whether a transfer file that exists can be read and written by its owner; one that doesn't is
/// no fault.
bool CheckPermissions(const Execution& run, const std::string& file, const char* text,
                      const char* unreadable, const char* unwriteable) {
  struct stat status;
  if (stat(file.c_str(), &status) != 0) return true;
  bool holds = true;
  const auto require = [&](mode_t bit, const char* fault) {
    if ((status.st_mode & bit) != 0) return;
    LError(text, run.kind, file.c_str());
    LPrint("%s", fault);
    holds = false;
  };
  require(S_IRUSR, unreadable);
  require(S_IWUSR, unwriteable);
  return holds;
}

bool CheckVarFile(const Execution& run) {
  if (run.varFile.empty()) {
    LError("(Design Control): %s variable transfer file not specified.\n", run.kind);
    return false;
  }
  return CheckPermissions(run, run.varFile, "(Design Control): %s variable transfer file (%s)",
                          "     does not have read permission.\n\n",
                          "     does not have write permission.\n\n");
}

bool CheckRespFile(const Execution& run) {
  if (run.respFile.empty()) {
    LError("(Design Control): %s response transfer file not specified.\n", run.kind);
    return false;
  }
  return CheckPermissions(run, run.respFile, "(Design Control): %s response transfer file (%s)",
                          "      does not have read permission.\n\n",
                          "      does not have write permission.\n\n");
}

}  // namespace

bool CDesignControl::CheckExeParams(bool warnOnly, bool gradient, bool skip) const try {
  if (skip) return true;
  Execution run{gradient ? "Gradient" : "Analysis", m_strProgram, m_strVarFile, m_strRespFile};
  if (gradient && m_nTaskType == 0) {
    run.program = m_DGO.m_strGradProgram;
    run.varFile = m_DGO.m_strGradVarFile;
    run.respFile = m_DGO.m_strGradRespFile;
  }
  Unquote(run.program);
  Unquote(run.varFile);
  Unquote(run.respFile);
  const ProgramKind kind = KindOf(run.program);

  bool holds = CheckCharacters(run);
  holds = CheckProgramNamed(run, kind) && holds;
  holds = CheckProgramFound(run, kind, m_nUseApprox != 0, warnOnly) && holds;
  // A MATLAB program exchanges values by a protocol of its own.
  if (kind == ProgramKind::Matlab) return holds;
  holds = CheckVarFile(run) && holds;
  return CheckRespFile(run) && holds;
}
LOG_AND_RETHROW

namespace {

/// The counts that the settings are checked against.
struct StudySize {
  int vars, discreteVars, combinatorial, indResp, objectives;
  int analysedPoints, userPoints, lockedPoints, random, randResp;

  /// Every random response takes a pair of responses that no analysis has to give.
  bool NeedsProgram() const {
    const long free = randResp > 0 ? 2L * randResp - 1 : 0;
    return indResp > free;
  }
};

/// A response surface task without independent responses goes on as a gradient task.
void SwitchWithoutResponses(CDesignControl& control, const StudySize& size) {
  if (control.m_nTaskType != 1) return;
  if (size.indResp > 0 && size.indResp > 2L * size.randResp - 1) return;
  LWarn("(Design Control): Independent responses not defined.");
  LPrint("     Approximate Optimization (RSA) cannot generate approximations\n");
  LPrint("     without independent responses.\n");
  LPrint("     Switching to Direct Optimization (DGO).\n\n");
  control.m_nTaskType = 0;
  control.PutObject();
}

bool CheckTaskType(POD* pod, CDesignControl& control, bool warnOnly, bool skip,
                   const StudySize& size) {
  const auto checkProgram = [&](bool needed, bool gradient) {
    return !needed || control.CheckExeParams(warnOnly, gradient, skip);
  };
  bool holds = true;
  switch (control.m_nTaskType) {
    case 0:
      holds = checkProgram(size.NeedsProgram(), control.m_DGO.m_nIGRAD == 1);
      return control.m_DGO.CheckParams(warnOnly, skip, size.indResp, size.random) && holds;
    case 1:
      holds = checkProgram(size.NeedsProgram(), false);
      holds = control.m_RSA.CheckParams(warnOnly, skip, size.vars, size.indResp, size.userPoints,
                                        size.random) &&
              holds;
      control.PutObject();  // with the limits of points that the check filled in
      return holds;
    case 2: {
      const bool runs =
          control.m_DOE.m_nTask != 0 && (control.m_DOE.m_nMethod != 11 || size.analysedPoints != 0);
      holds = checkProgram(runs, false);
      return control.m_DOE.CheckParams(pod, warnOnly, skip, size.vars, size.indResp,
                                       size.analysedPoints, size.lockedPoints, size.random) &&
             holds;
    }
    case 3:
      holds = checkProgram(size.NeedsProgram(), false);
      return control.m_NGO.CheckParams(warnOnly, skip, size.vars, size.indResp, size.discreteVars,
                                       size.userPoints, size.random) &&
             holds;
    case 4:
      holds = checkProgram(size.NeedsProgram(), false);
      return control.m_ANL.CheckParams(warnOnly, skip, size.vars, size.indResp, size.discreteVars,
                                       size.random) &&
             holds;
    default:
      LError("(Design Control):  Invalid task type (%d).\n",
             static_cast<int>(long{control.m_nTaskType}));
      return false;
  }
}

}  // namespace

bool CDesignControl::CheckDesignControl(POD* pod, bool warnOnly, bool skipPrograms, int nVars,
                                        int nDiscreteVars, int nCombinatorial, int nIndResp,
                                        int nObjectives, int nAnalysedPoints, int nUserPoints,
                                        int nLockedPoints, int nRandom, int nRandResp) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CDesignControl control(pod);
  if (!control.GetObject()) Throw<CObjectNotFound>();
  const StudySize size{nVars,           nDiscreteVars, nCombinatorial, nIndResp, nObjectives,
                       nAnalysedPoints, nUserPoints,   nLockedPoints,  nRandom,  nRandResp};
  SwitchWithoutResponses(control, size);
  bool holds = true;
  if (control.m_nTaskType != 2 && control.m_nTaskType != 4 && size.objectives < 1) {
    LError("(Design Control): Objective not defined.\n");
    holds = false;
  }
  if (control.m_nTaskType == 2 && size.combinatorial >= 1) {
    LError("(Design Control): Combinatroial design variables can not be used with DOE.\n");
    holds = false;
  }
  return CheckTaskType(pod, control, warnOnly, skipPrograms, size) && holds;
}
LOG_AND_RETHROW
