#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CMessage;
extern template class KESTDB_API vbPersistentClass<CMessage>;

/// The messages of one task, oldest first, to which the run engine adds. The kind of a message is
/// told by the word that it begins with.
class KESTDB_API CMessage : public vbPersistentClass<CMessage> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nMESSAGE_INDX{20};
  static constexpr vbINT32 m_nMESSAGE_ID = vbClassIDOf(m_nMESSAGE_INDX);
  static constexpr vbINT32 m_nMESSAGE_VER{1};
  inline static const std::string m_strCLASS_NAME{"CMessage"};

  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CMessage& other) { *this = other; }

  int GetNumErrors() const;
  int GetNumWarnings() const;
  int GetNumExceptions() const;

  /// Empties the list and stores it.
  void RemoveAll();

  /// Prints the messages of a task, or nothing when it has none stored.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex.
  static void Dump(POD* pod, std::FILE* stream, int taskID);

  vbINT32 m_nID;  ///< The task; the key
  std::vector<std::string> m_Messages;
};
