#include "task/SubjectReport.h"

#include "definition/DefinitionReport.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/TableReport.h"
#include "task/Task.h"
#include "task/TaskReport.h"

const char* kestdb::SubjectLabel(const vbINT32& kind) {
  switch (kind) {
    case vbIndependentVar:
      return " IDVar ";
    case vbLinkedVar:
      return " LDVar ";
    case vbSyntheticVar:
      return " SDVar ";
    case vbIndependentResp:
      return " IResp ";
    case vbLinkedResp:
      return " LResp ";
    case vbSyntheticResp:
      return " SResp ";
    default:
      return "ERROR";
  }
}

kestdb::Subjects::Subjects(POD* pod, int task)
    : vars_(pod), resps_(pod), hasVars_(LoadByID(vars_, task)), hasResps_(LoadByID(resps_, task)) {}

std::vector<std::string> kestdb::Subjects::Name(const vbINT32& kind,
                                                const vbINT32& position) const {
  switch (kind) {
    case vbIndependentVar:
    case vbLinkedVar:
    case vbSyntheticVar:
      if (!hasVars_) Throw<CObjectNotFound>();
      return NamePieces(VariableName(vars_, ToInt(kind), position));
    case vbIndependentResp:
    case vbLinkedResp:
    case vbSyntheticResp:
      if (!hasResps_) Throw<CObjectNotFound>();
      return NamePieces(resps_.GetName(ToInt(kind), ToInt(position)));
    default:
      return NamePieces("");
  }
}

void kestdb::PrintRestOfName(std::FILE* stream, const std::vector<std::string>& pieces) {
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    std::fprintf(stream, "%-14.14s\n", pieces[i].c_str());
  }
}
