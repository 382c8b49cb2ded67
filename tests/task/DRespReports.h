#pragma once

#include <string>
#include <vector>

#include "task/DResp.h"
#include "task/DVar.h"
#include "tests/task/TaskReports.h"

/// A task's responses as they are reported, and the fixed parts of the report. The task has a
/// variable of each kind.
class ResponseReports : public TaskReports {
 protected:
  ResponseReports() {
    resps.m_nID = vars.m_nID = 5;
    vars.m_vstrIndName = {"x_1", "x_2"};
    vars.m_vstrLinkName = {"lx"};
    vars.m_vstrSynName = {"sx"};
    vars.m_vstrConstName = {"cx"};
  }

  void AddIndependent(int id, const std::string& name, bool passFail = false) {
    AddEntry(24, resps.m_vnIndIDs.size());
    resps.m_vnIndIDs.push_back(id);
    resps.m_vstrIndName.push_back(name);
    resps.m_vnPassFail.push_back(passFail ? 1 : 0);
  }
  void AddLinked(int id, const std::string& name, int link, const std::vector<vbINT32>& positions,
                 const std::vector<vbINT32>& kinds) {
    AddEntry(25, resps.m_vnLinkIDs.size());
    resps.m_vnLinkIDs.push_back(id);
    resps.m_vstrLinkName.push_back(name);
    resps.m_vnLinkRef.push_back(link);
    resps.m_mnLinkSubj.push_back(positions);
    resps.m_mnLinkType.push_back(kinds);
  }
  void AddSynthetic(int id, const std::string& name, int function,
                    const std::vector<vbINT32>& positions, const std::vector<vbINT32>& kinds,
                    const std::vector<vbINT32>& lengths) {
    AddEntry(26, resps.m_vnSynIDs.size());
    resps.m_vnSynIDs.push_back(id);
    resps.m_vstrSynName.push_back(name);
    resps.m_vnSynRef.push_back(function);
    resps.m_mnSynSubj.push_back(positions);
    resps.m_mnSynType.push_back(kinds);
    resps.m_mnSynLen.push_back(lengths);
  }
  void AddEntry(int kind, std::size_t position) {
    resps.m_vnType.push_back(kind);
    resps.m_vnSeq.push_back(static_cast<int>(position));
  }
  void Clear() {
    resps.SetDefaultAttributes();
    resps.m_nID = 5;
  }

  std::string Report() {
    Store();
    return ReportOf<CDResp>();
  }
  template <class Error>
  std::string ReportUntilError() {
    Store();
    return ReportUntil<CDResp, Error>();
  }
  void Store() {
    resps.PutObject();
    vars.PutObject();
    StoreDefinitions();
  }

  inline static const std::string head =
      "                          DESIGN RESPONSE INFORMATION\n"
      "================================================================================\n"
      "Transfer                                         Auxil\n"
      "Sequence   Type  Random       Name       DB ID   DB ID\n"
      "--------  ------ ------  --------------  -----  -------\n";
  inline static const std::string randomHead =
      "--------------------------------------------------------------------------------\n"
      "                                RANDOM RESPONSES\n"
      "--------------------------------------------------------------------------------\n"
      "DResp  Name       Random Parameter   \n"
      "-----  ------  ----------------------\n";
  inline static const std::string functionHead =
      "--------------------------------------------------------------------------------\n"
      "                              SYNTHETIC RESPONSES\n"
      "--------------------------------------------------------------------------------\n"
      "Transfer\n"
      "Sequence       Name                              Function\n"
      "--------  --------------  ------------------------------------------------------\n";
  inline static const std::string linkHead =
      "--------------------------------------------------------------------------------\n"
      "                                LINKED RESPONSES\n"
      "--------------------------------------------------------------------------------\n"
      "Transfer\n"
      "Sequence       Name                          Link Definition\n"
      "--------  --------------  ------------------------------------------------------\n";

  CDResp resps{study.Pod()};
  CDVar vars{study.Pod()};
};
