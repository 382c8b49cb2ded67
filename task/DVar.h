#pragma once

#include <cstdio>
#include <string>
#include <valarray>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDVar;
extern template class KESTDB_API vbPersistentClass<CDVar>;

/// A task's design variables, flattened to scalars. An entry is one scalar, in transfer order; it
/// has a kind (vbEntryKind, 20 to 23) and a position in the tables of its kind.
class KESTDB_API CDVar : public vbPersistentClass<CDVar> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDVAR_INDX{3};
  static constexpr vbINT32 m_nDVAR_ID = vbClassIDOf(m_nDVAR_INDX);
  static constexpr vbINT32 m_nDVAR_VER{6};
  inline static const std::string m_strCLASS_NAME{"CDVar"};

  /// Empties everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDVar& other) { *this = other; }

  void GetSeq(std::valarray<int>& seq) const;
  void GetType(std::valarray<int>& type) const;
  void GetIndIDs(std::vector<int>& ids) const;
  void GetLinkIDs(std::vector<int>& ids) const;
  void GetSynIDs(std::vector<int>& ids) const;
  void GetConstIDs(std::vector<int>& ids) const;
  void GetLinkRef(std::vector<int>& ref) const;
  void GetSynRef(std::vector<int>& ref) const;
  void GetDiscreteRef(std::vector<int>& ref) const;

  // Row i of the tables of arguments. REQUIRE that there is one.

  void GetLinkSubj(int i, std::vector<int>& row) const;
  void GetLinkSubjType(int i, std::vector<int>& row) const;
  void GetSynSubj(int i, std::vector<int>& row) const;
  void GetSynSubjType(int i, std::vector<int>& row) const;
  void GetSynSubjLength(int i, std::vector<int>& row) const;

  // Names by position. THROW CInvalidArgument for a position outside the table.

  std::string GetIndName(int i) const;
  std::string GetLinkName(int i) const;
  std::string GetConstName(int i) const;
  void SetIndName(const std::string& name, int i);
  void SetLinkName(const std::string& name, int i);
  void SetSynName(const std::string& name, int i);
  void SetConstName(const std::string& name, int i);

  void SetSeq(const std::vector<int>& seq);
  void SetType(const std::vector<int>& type);
  void SetIndIDs(const std::vector<int>& ids);
  void SetConstIDs(const std::vector<int>& ids);

  /// The Inputs that the entries came from, in transfer order: ID, kind, position of the first
  /// element in the tables of the kind, number of elements, and number of the first entry.
  /// THROWS CInvalidType for an entry of another kind.
  void IDInputObjects(std::vector<int>& ids, std::vector<int>& kinds, std::vector<int>& positions,
                      std::vector<int>& sizes, std::vector<int>& entries) const;

  /// Prints a task's table, or nothing when it has none.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex; CInvalidType,
  /// CInvalidSubject and CObjectNotFound for tables that don't fit each other.
  static void Dump(POD* pod, std::FILE* stream, int nTask);

  vbINT32 m_nID;  ///< The task; the key
  // For each entry:
  std::vector<vbINT32> m_vnSeq;   ///< its position within its kind
  std::vector<vbINT32> m_vnType;  ///< its kind
  // For each scalar of a kind: the ID of its CInput.
  std::vector<vbINT32> m_vnIndIDs;
  std::vector<vbINT32> m_vnLinkIDs;
  std::vector<vbINT32> m_vnSynIDs;
  std::vector<vbINT32> m_vnConstIDs;
  // For each independent scalar: bounds as the user gave them, and those in force after they were
  // fitted to a set or to integers.
  std::valarray<vbFLOAT64> m_vfIndLowerIn;
  std::valarray<vbFLOAT64> m_vfIndLower;
  std::valarray<vbFLOAT64> m_vfIndUpperIn;
  std::valarray<vbFLOAT64> m_vfIndUpper;
  std::valarray<vbFLOAT64> m_vfIndScale;  ///< the user's scale factor, 0.0 for none
  std::valarray<vbFLOAT64> m_vfLinkLower;
  std::valarray<vbFLOAT64> m_vfLinkUpper;
  std::valarray<vbFLOAT64> m_vfSynLower;
  std::valarray<vbFLOAT64> m_vfSynUpper;
  std::vector<std::string> m_vstrIndName;
  std::vector<std::string> m_vstrLinkName;
  std::vector<std::string> m_vstrSynName;
  std::vector<std::string> m_vstrConstName;
  // For each constant scalar:
  std::valarray<vbINT32> m_vnConstSet;      ///< the set of a combinatorial variable, 0 for none
  std::valarray<vbFLOAT64> m_vfConstLower;  ///< between which its values are admitted
  std::valarray<vbFLOAT64> m_vfConstUpper;
  std::vector<vbINT32> m_vnLinkRef;  ///< For each linked scalar: the link's CAuxiliary
  std::vector<vbINT32> m_vnSynRef;   ///< For each synthetic scalar: the function's CAuxiliary
  // For each linked or synthetic scalar, a row with its arguments: positions, kinds, and for
  // synthetic ones the number of elements taken.
  std::vector<std::vector<vbINT32>> m_mnLinkSubj;
  std::vector<std::vector<vbINT32>> m_mnLinkType;
  std::vector<std::vector<vbINT32>> m_mnSynSubj;
  std::vector<std::vector<vbINT32>> m_mnSynType;
  std::vector<std::vector<vbINT32>> m_mnSynLen;
  /// For each independent scalar: 0 continuous, -1 integer, else the CAuxiliary of its set
  std::vector<vbINT32> m_vnDiscreteRef;
  // Empty when no variable is random; else for each entry:
  std::vector<vbINT32> m_vnRandIndex;  ///< its random variable, from 0; -1 for none
  std::vector<vbINT32> m_vnRandParam;  ///< its parameter of the distribution, 0 for none
  std::vector<vbINT32> m_vnRandDist;   ///< For each random variable: its distribution
};
