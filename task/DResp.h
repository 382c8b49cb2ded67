#pragma once

#include <cstdio>
#include <string>
#include <valarray>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDResp;
extern template class KESTDB_API vbPersistentClass<CDResp>;

/// A task's responses, flattened to scalars as its design variables are in CDVar. The kinds of the
/// entries are 24 to 26 (vbEntryKind).
class KESTDB_API CDResp : public vbPersistentClass<CDResp> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDRESP_INDX{4};
  static constexpr vbINT32 m_nDRESP_ID = vbClassIDOf(m_nDRESP_INDX);
  static constexpr vbINT32 m_nDRESP_VER{4};
  inline static const std::string m_strCLASS_NAME{"CDResp"};

  /// Empties everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDResp& other) { *this = other; }

  void GetSeq(std::valarray<int>& seq) const;
  void GetType(std::valarray<int>& type) const;
  void GetType(std::vector<int>& type) const;
  void GetIndIDs(std::vector<int>& ids) const;
  void GetLinkIDs(std::vector<int>& ids) const;
  void GetSynIDs(std::vector<int>& ids) const;
  void GetRBOParams(std::vector<int>& params) const;

  // Row i of the tables of arguments. REQUIRE that there is one.

  void GetLinkSubj(int i, std::vector<int>& row) const;
  void GetLinkSubjType(int i, std::vector<int>& row) const;
  void GetSynSubj(int i, std::vector<int>& row) const;
  void GetSynSubjType(int i, std::vector<int>& row) const;
  void GetSynSubjLength(int i, std::vector<int>& row) const;

  /// The name at position i of a kind; empty for a kind that is no response's.
  /// Names by position THROW CInvalidArgument for a position outside the table.
  std::string GetName(int nKind, int i) const;
  void SetIndName(const std::string& name, int i);
  void SetLinkName(const std::string& name, int i);
  void SetSynName(const std::string& name, int i);

  /// The constraints of the task by response: for the independent, linked and synthetic ones each
  /// the lower bound and its scale, the upper bound and its scale. A scale of -1.0 marks a bound
  /// that there isn't. THROWS CObjectNotFound without the task's CDCons, CInvalidType for a
  /// constraint on no known kind.
  void GetConstrBounds(std::vector<double>& indLower, std::vector<double>& indLowerScale,
                       std::vector<double>& indUpper, std::vector<double>& indUpperScale,
                       std::vector<double>& linkLower, std::vector<double>& linkLowerScale,
                       std::vector<double>& linkUpper, std::vector<double>& linkUpperScale,
                       std::vector<double>& synLower, std::vector<double>& synLowerScale,
                       std::vector<double>& synUpper, std::vector<double>& synUpperScale);

  /// The responses that the entries came from, in transfer order: ID, kind, position of the first
  /// element in the tables of the kind, number of elements, and number of the first entry.
  /// THROWS CInvalidType for an entry of another kind.
  void IDRespObjects(std::vector<int>& ids, std::vector<int>& kinds, std::vector<int>& positions,
                     std::vector<int>& sizes, std::vector<int>& entries) const;

  /// Prints a task's table, or nothing when it has none.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex; CInvalidType,
  /// CInvalidSubject and CObjectNotFound for tables that don't fit each other.
  static void Dump(POD* pod, std::FILE* stream, int nTask);

  vbINT32 m_nID;  ///< The task; the key
  // For each entry:
  std::vector<vbINT32> m_vnSeq;   ///< its position within its kind
  std::vector<vbINT32> m_vnType;  ///< its kind
  // For each scalar of a kind: the ID of its CResp, and its name.
  std::vector<vbINT32> m_vnIndIDs;
  std::vector<vbINT32> m_vnLinkIDs;
  std::vector<vbINT32> m_vnSynIDs;
  std::vector<std::string> m_vstrIndName;
  std::vector<std::string> m_vstrLinkName;
  std::vector<std::string> m_vstrSynName;
  std::vector<vbINT32> m_vnLinkRef;   ///< For each linked scalar: the link's CAuxiliary
  std::vector<vbINT32> m_vnSynRef;    ///< For each synthetic scalar: the function's CAuxiliary
  std::vector<vbINT32> m_vnPassFail;  ///< For each independent scalar: 1 for a Pass/Fail response
  // For each linked or synthetic scalar, a row with its arguments: positions, kinds, and for
  // synthetic ones the number of elements taken.
  std::vector<std::vector<vbINT32>> m_mnLinkSubj;
  std::vector<std::vector<vbINT32>> m_mnLinkType;
  std::vector<std::vector<vbINT32>> m_mnSynSubj;
  std::vector<std::vector<vbINT32>> m_mnSynType;
  std::vector<std::vector<vbINT32>> m_mnSynLen;
  // Empty when no response is random; else for each entry:
  std::vector<vbINT32> m_vnRandIndex;  ///< its random response, from 0; -1 for none
  std::vector<vbINT32> m_vnRBOParam;   ///< its parameter of the distribution, 0 for none
};
