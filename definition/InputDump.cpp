#include <string>
#include <vector>

#include "definition/DefinitionReport.h"
#include "definition/Input.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "store/walk.h"

namespace {

using kestdb::ToInt;
using Inputs = std::vector<CInput>;

const char* TypeCode(const CInput& input) {
  switch (input.m_nType) {
    case 0:
      return " ind";
    case 1:
      return "link";
    case 2:
      return " syn";
    case 3:
      return "cnst";
    case 4:
      return "disc";
    case 5:
      return " int";
    default:
      return "????";
  }
}

/// In the table of auxiliary definitions, which the other kinds have no code in.
const char* AuxiliaryCode(const CInput& input) {
  return input.m_nType == 0 || input.m_nType == 3 ? "????" : TypeCode(input);
}

void PrintInputs(std::FILE* stream, const Inputs& inputs) {
  std::fprintf(stream, "                                Input Objects\n");
  kestdb::PrintBar(stream, '=');
  std::fprintf(stream,
               "                   Trans                          Initial     Lower      Upper\n");
  std::fprintf(stream,
               "DB ID     Name     Index   Size   Type  Random     Value      Bound      Bound\n");
  std::fprintf(
      stream, "-----  ----------  -----  ------  ----  ------  ---------- ---------- ----------\n");
  if (inputs.empty()) std::fprintf(stream, "No Input objects defined.\n");
  for (const CInput& input : inputs) {
    std::fprintf(stream, "%5d  %10.10s  %5d  %6d  %4.4s  %6.6s  %#10.4g %#10.4g %#10.4g\n",
                 ToInt(input.m_nID), input.m_strName.c_str(), ToInt(input.m_uIndex),
                 ToInt(input.m_uSize), TypeCode(input), kestdb::YesOrNo(input.m_nRandom),
                 double{input.m_fInitial}, double{input.m_fLower}, double{input.m_fUpper});
  }
}

void PrintScaling(std::FILE* stream, const Inputs& inputs) {
  const auto scaled = [](const CInput& input) {
    const bool scalable = input.m_nType == 0 || input.m_nType == 4 || input.m_nType == 5;
    return scalable && input.m_nUserScale != 0;
  };
  kestdb::PrintSection(
      inputs, scaled,
      [&] {
        kestdb::PrintHeading(
            stream,
            "                             User Supplied Scaling                              \n",
            {"                     Scale   \n", "DB ID     Name       Factor  \n",
             "-----  ----------  ----------\n"});
      },
      [&](const CInput& input) {
        std::fprintf(stream, "%5d  %10.10s  %#10.4g\n", ToInt(input.m_nID), input.m_strName.c_str(),
                     double{input.m_fScale});
      });
}

void PrintRandom(std::FILE* stream, const Inputs& inputs) {
  kestdb::PrintSection(
      inputs, [](const CInput& input) { return input.m_nRandom != 0; },
      [&] {
        kestdb::PrintHeading(
            stream, "                            Random Input Definitions\n",
            {"DB ID     Name        Random Parameter       Random Distribution\n",
             "-----  ----------  ----------------------  ----------------------\n"});
      },
      [&](const CInput& input) {
        std::fprintf(stream, "%5d  %10.10s  %22.22s  %22.22s\n", ToInt(input.m_nID),
                     input.m_strName.c_str(), kestdb::RandomParameterText(input.m_nRandomParam),
                     kestdb::DistributionText(input.m_nDistribution));
      });
}

void PrintAuxiliaries(std::FILE* stream, const Inputs& inputs) {
  kestdb::PrintSection(
      inputs, [](const CInput& input) { return input.m_nAuxID >= 1; },
      [&] {
        kestdb::PrintHeading(
            stream, "                           Auxiliary Input Definitions\n",
            {"                    Auxil\n",
             "DB ID     Name      DB ID   Type               Argument DB_ID/Index\n",
             "-----  ----------  -------  ----  ----------------------------------------------\n"});
      },
      [&](const CInput& input) { kestdb::PrintAuxiliaryRow(stream, input, AuxiliaryCode(input)); });
}

}  // namespace

void CInput::Dump(POD* pod, std::FILE* stream) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  const Inputs inputs = kestdb::AllObjects<CInput>(pod);
  PrintInputs(stream, inputs);
  PrintScaling(stream, inputs);
  PrintRandom(stream, inputs);
  PrintAuxiliaries(stream, inputs);
  kestdb::PrintObjectives(stream, inputs,
                          "                            Objective Input Definitions\n");
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
