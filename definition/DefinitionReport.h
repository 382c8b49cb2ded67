// Private to the library, not installed.
#pragma once

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include "store/report.h"
#include "store/vbscalar.h"

// What the reports of Inputs and of responses share.

namespace kestdb {

inline const char* YesOrNo(const vbINT32& flag) {
  return flag != 0 ? "  Yes " : "  No  ";
}

/// The text for a parameter of a distribution.
const char* RandomParameterText(const vbINT32& parameter);

/// The text for a distribution.
const char* DistributionText(long distribution);

/// A title between two bars, and the lines of a table's head.
void PrintHeading(std::FILE* stream, const char* title, std::initializer_list<const char*> lines);

/// Prints a section about those definitions that `chosen` picks, or nothing when there are none.
template <class Definition, class Chosen, class Heading, class Row>
void PrintSection(const std::vector<Definition>& all, Chosen chosen, Heading heading, Row row) {
  if (std::none_of(all.begin(), all.end(), chosen)) return;
  heading();
  for (const Definition& definition : all) {
    if (chosen(definition)) row(definition);
  }
}

/// The arguments of a linked or synthetic definition, separated by commas.
std::string ArgumentText(bool linked, const std::vector<vbINT32>& arguments,
                         const std::vector<vbINT32>& indexes, const std::vector<vbINT32>& lengths);

/// The row of a definition in the table of auxiliary definitions.
template <class Definition>
void PrintAuxiliaryRow(std::FILE* stream, const Definition& definition, const char* code) {
  std::fprintf(stream, "%5d  %10.10s  %7d  %4.4s  ", ToInt(definition.m_nID),
               definition.m_strName.c_str(), ToInt(definition.m_nAuxID), code);
  const bool linked = definition.m_nType == 1;
  if (!linked && definition.m_nType != 2) {
    std::fprintf(stream, "\n");
    return;
  }
  PrintCut(stream,
           ArgumentText(linked, definition.m_vnArg, definition.m_vnIdx, definition.m_vnLength), 46,
           34);
}

/// The table of the definitions that are objectives.
template <class Definition>
void PrintObjectives(std::FILE* stream, const std::vector<Definition>& all, const char* title) {
  PrintSection(
      all, [](const Definition& definition) { return definition.m_nObjective != 0; },
      [&] {
        PrintHeading(
            stream, title,
            {"DB ID     Name       Goal      Worst Value      Target Value    Weight Factor\n",
             "-----  ----------  --------  ---------------  ---------------  ---------------\n"});
      },
      [&](const Definition& definition) {
        const char* goal = definition.m_nGoal == 0   ? "minimize"
                           : definition.m_nGoal == 1 ? "maximize"
                                                     : " target ";
        std::fprintf(stream, "%5d  %10.10s  %8.8s  ", ToInt(definition.m_nID),
                     definition.m_strName.c_str(), goal);
        if (definition.m_nHasWorst != 0) {
          std::fprintf(stream, "%#15.7g  ", double{definition.m_fWorst});
        } else {
          std::fprintf(stream, "       *         ");
        }
        if (definition.m_nGoal == 2) {
          std::fprintf(stream, "%#15.7g", double{definition.m_fTarget});
        } else {
          std::fprintf(stream, "       *       ");
        }
        std::fprintf(stream, "%#15.7g\n", double{definition.m_fWeight});
      });
}

}  // namespace kestdb
