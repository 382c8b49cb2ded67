#include <string>
#include <vector>

#include "definition/DefinitionReport.h"
#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/assertion.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "store/walk.h"

namespace {

using kestdb::ToInt;
using Resps = std::vector<CResp>;

const char* TypeCode(const CResp& resp) {
  switch (resp.m_nType) {
    case 0:
      return " ind";
    case 1:
      return "link";
    case 2:
      return " syn";
    default:
      return "????";
  }
}

/// In the table of auxiliary definitions, which the other kinds have no code in.
const char* AuxiliaryCode(const CResp& resp) {
  return resp.m_nType == 0 ? "????" : TypeCode(resp);
}

void PrintResps(std::FILE* stream, const Resps& resps) {
  std::fprintf(stream, "                                Response Objects\n");
  kestdb::PrintBar(stream, '=');
  std::fprintf(stream, "                    Trans                       \n");
  std::fprintf(stream, "DB ID     Name      Index    Size   Type  Random\n");
  std::fprintf(stream, "-----  ----------  -------  ------  ----  ------\n");
  for (const CResp& resp : resps) {
    std::fprintf(stream, "%5d  %10.10s  %7d  %6d  %4.4s  %6.6s\n", ToInt(resp.m_nID),
                 resp.m_strName.c_str(), ToInt(resp.m_uIndex), ToInt(resp.m_uSize), TypeCode(resp),
                 kestdb::YesOrNo(resp.m_nRandom));
  }
}

void PrintRandom(std::FILE* stream, const Resps& resps) {
  kestdb::PrintSection(
      resps, [](const CResp& resp) { return resp.m_nRandom != 0; },
      [&] {
        kestdb::PrintHeading(stream, "                          Random Response Definitions\n",
                             {"DB ID     Name        Random Parameter   \n",
                              "-----  ----------  ----------------------\n"});
      },
      [&](const CResp& resp) {
        std::fprintf(stream, "%5d  %10.10s  %22.22s  ", ToInt(resp.m_nID), resp.m_strName.c_str(),
                     kestdb::RandomParameterText(resp.m_nRandomParam));
        std::fprintf(stream, "\n");
      });
}

void AssertArguments(const CResp& resp) {
  if (resp.m_nType != 1 && resp.m_nType != 2) return;
  KESTDB_ASSERT(resp.m_vnArg.size() == resp.m_vnIdx.size(), "vnArg.size() == vnIndx.size()");
  if (resp.m_nType == 2) {
    KESTDB_ASSERT(resp.m_vnArg.size() == resp.m_vnLength.size(), "vnArg.size() == vnLength.size()");
  }
}

void PrintAuxiliaries(std::FILE* stream, const Resps& resps) {
  kestdb::PrintSection(
      resps, [](const CResp& resp) { return resp.m_nAuxID >= 1; },
      [&] {
        kestdb::PrintHeading(
            stream, "                         Auxiliary Response Definitions\n",
            {"                    Auxil\n",
             "DB ID     Name      DB ID   Type               Argument/Index\n",
             "-----  ----------  -------  ----  ----------------------------------------------\n"});
      },
      [&](const CResp& resp) {
        AssertArguments(resp);
        kestdb::PrintAuxiliaryRow(stream, resp, AuxiliaryCode(resp));
      });
}

/// The bound of one side with its scale factor, stars for what is not in force.
void PrintSide(std::FILE* stream, const vbINT32& hasBound, const vbFLOAT64& bound,
               const vbINT32& hasScale, const vbFLOAT64& scale) {
  if (hasBound == 0) {
    std::fprintf(stream, "      *              *        ");
    return;
  }
  std::fprintf(stream, "%#13.5g  ", double{bound});
  if (hasScale != 0) {
    std::fprintf(stream, "%#13.5g  ", double{scale});
  } else {
    std::fprintf(stream, "      *        ");
  }
}

void PrintConstraints(std::FILE* stream, const Resps& resps) {
  kestdb::PrintSection(
      resps, [](const CResp& resp) { return resp.m_nConstraint != 0; },
      [&] {
        kestdb::PrintHeading(
            stream, "                         Constraint Response Definitions\n",
            {"DB ID     Name      Lower Bound    Scale Factor   Upper Bound    Scale Factor\n",
             "-----  ----------  -------------  -------------  -------------  -------------\n"});
      },
      [&](const CResp& resp) {
        std::fprintf(stream, "%5d  %10.10s  ", ToInt(resp.m_nID), resp.m_strName.c_str());
        PrintSide(stream, resp.m_nHasLower, resp.m_fLower, resp.m_nHasLowerScale,
                  resp.m_fLowerScale);
        PrintSide(stream, resp.m_nHasUpper, resp.m_fUpper, resp.m_nHasUpperScale,
                  resp.m_fUpperScale);
        std::fprintf(stream, "\n");
      });
}

}  // namespace

void CResp::Dump(POD* pod, std::FILE* stream) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  const Resps resps = kestdb::AllObjects<CResp>(pod);
  PrintResps(stream, resps);
  PrintRandom(stream, resps);
  PrintAuxiliaries(stream, resps);
  kestdb::PrintObjectives(stream, resps,
                          "                          Objective Response Definitions\n");
  PrintConstraints(stream, resps);
  if (resps.empty()) std::fprintf(stream, "No Response objects defined.\n");
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
