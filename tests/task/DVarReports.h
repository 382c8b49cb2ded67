#pragma once

#include <string>
#include <valarray>
#include <vector>

#include "task/DVar.h"
#include "tests/task/TaskReports.h"

/// A task's variables as they are reported, and the fixed parts of the report.
class VariableReports : public TaskReports {
 protected:
  VariableReports() { vars.m_nID = 5; }

  template <class Number>
  static void Append(std::valarray<Number>& numbers, double number) {
    std::valarray<Number> longer(numbers.size() + 1);
    for (std::size_t i = 0; i < numbers.size(); ++i) longer[i] = numbers[i];
    longer[numbers.size()] = number;
    numbers = longer;
  }

  void AddIndependent(int id, const std::string& name, double lower, double upper, int set = 0,
                      double scale = 0.0) {
    AddEntry(20, vars.m_vnIndIDs.size());
    vars.m_vnIndIDs.push_back(id);
    vars.m_vstrIndName.push_back(name);
    vars.m_vnDiscreteRef.push_back(set);
    Append(vars.m_vfIndLowerIn, lower - 7.0);
    Append(vars.m_vfIndLower, lower);
    Append(vars.m_vfIndUpperIn, upper + 7.0);
    Append(vars.m_vfIndUpper, upper);
    Append(vars.m_vfIndScale, scale);
  }
  void AddLinked(int id, const std::string& name, double lower, double upper, int link,
                 const std::vector<vbINT32>& positions, const std::vector<vbINT32>& kinds) {
    AddEntry(21, vars.m_vnLinkIDs.size());
    vars.m_vnLinkIDs.push_back(id);
    vars.m_vstrLinkName.push_back(name);
    vars.m_vnLinkRef.push_back(link);
    vars.m_mnLinkSubj.push_back(positions);
    vars.m_mnLinkType.push_back(kinds);
    Append(vars.m_vfLinkLower, lower);
    Append(vars.m_vfLinkUpper, upper);
  }
  void AddSynthetic(int id, const std::string& name, double lower, double upper, int function,
                    const std::vector<vbINT32>& positions, const std::vector<vbINT32>& kinds,
                    const std::vector<vbINT32>& lengths) {
    AddEntry(22, vars.m_vnSynIDs.size());
    vars.m_vnSynIDs.push_back(id);
    vars.m_vstrSynName.push_back(name);
    vars.m_vnSynRef.push_back(function);
    vars.m_mnSynSubj.push_back(positions);
    vars.m_mnSynType.push_back(kinds);
    vars.m_mnSynLen.push_back(lengths);
    Append(vars.m_vfSynLower, lower);
    Append(vars.m_vfSynUpper, upper);
  }
  void AddConstant(int id, const std::string& name) {
    AddEntry(23, vars.m_vnConstIDs.size());
    vars.m_vnConstIDs.push_back(id);
    vars.m_vstrConstName.push_back(name);
  }
  void AddEntry(int kind, std::size_t position) {
    vars.m_vnType.push_back(kind);
    vars.m_vnSeq.push_back(static_cast<int>(position));
  }

  std::string Report() {
    Store();
    return ReportOf<CDVar>();
  }
  template <class Error>
  std::string ReportUntilError() {
    Store();
    return ReportUntil<CDVar, Error>();
  }
  void Store() {
    vars.PutObject();
    StoreDefinitions();
  }

  inline static const std::string head =
      "                          DESIGN VARIABLE INFORMATION\n"
      "================================================================================\n"
      "Transfer                                         Auxil      Lower       Upper\n"
      "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n"
      "--------  ------ ------  --------------  -----  -------  ----------- -----------\n";
  inline static const std::string scalingHead =
      "--------------------------------------------------------------------------------\n"
      "                             User Supplied Scaling\n"
      "--------------------------------------------------------------------------------\n"
      "Transfer                     Scale\n"
      "Sequence       Name         Factor\n"
      "--------  --------------  -----------\n";
  inline static const std::string randomHead =
      "--------------------------------------------------------------------------------\n"
      "                            RANDOM DESIGN VARIABLES\n"
      "--------------------------------------------------------------------------------\n"
      " DVar  Name       Random Parameter          Distribution     \n"
      "-----  ------  ----------------------  ----------------------\n";
  inline static const std::string linkHead =
      "--------------------------------------------------------------------------------\n"
      "                            LINKED DESIGN VARIABLES\n"
      "--------------------------------------------------------------------------------\n"
      "Transfer\n"
      "Sequence       Name                          Link Definition\n"
      "--------  --------------  ------------------------------------------------------\n";
  inline static const std::string functionHead =
      "--------------------------------------------------------------------------------\n"
      "                           SYNTHETIC DESIGN VARIABLES\n"
      "--------------------------------------------------------------------------------\n"
      "Transfer\n"
      "Sequence       Name                              Function\n"
      "--------  --------------  ------------------------------------------------------\n";
  inline static const std::string setHead =
      "--------------------------------------------------------------------------------\n"
      "                           DISCRETE DESIGN VARIABLES\n"
      "--------------------------------------------------------------------------------\n"
      "Transfer\n"
      "Sequence       Name                              Members\n"
      "--------  --------------  ------------------------------------------------------\n";

  CDVar vars{study.Pod()};
};
