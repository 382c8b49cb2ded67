#pragma once

#include <span>
#include <string>
#include <vector>

#include "store/api.h"
#include "store/vbscalar.h"

class DatabaseKeyB;
class KSBKey;
class POD;
class vBtree;
class vbDatabase;

/// The first 8 bytes of every object.
struct vbObjectHeader {
  vbINT32 ClassID;
  vbINT32 Address;  ///< the file address of this header
};
static_assert(sizeof(vbObjectHeader) == 8);

/// The base of all persisted classes. It ties an object in memory to a block of the data file and
/// to a key, made of the object's key fields, in the tree of its class. Objects are copies that
/// the caller owns; an update removes the stored form and writes a new one, which may lie
/// elsewhere.
///
/// Keyed operations THROW CNoIndex without indexing and CInvalidKey for key fields that can't be
/// used; an object that isn't there is a false result. All operations that reach the files THROW
/// CNullPtr without a database, and what CLock, vbDatabase and vBtree throw.
class KESTDB_API vbPersistent {
 public:
  explicit vbPersistent(POD* database) { Connect(database); }
  explicit vbPersistent(const POD* database) { Connect(database); }

  /// Loads the object from the block at `address`. Fields that an older record lacks stay as they
  /// are. THROWS CBadClassID and CChecksum, with the object as it was, and CFileCorrupt for a
  /// record that ends too early.
  virtual void Read(vbINT32 address) = 0;

  /// Stores the object in a new block and adds its key; returns true.
  /// THROWS CMemoryAlloc when there is no room, CAddKey, CDuplicateEntry.
  virtual bool Write() = 0;

  /// Bytes of the version word and the fields.
  virtual unsigned long ObjectLength() = 0;

  /// Whether the fields that form the key can be used.
  virtual bool CheckKey() = 0;

  /// Writes the key text into a buffer of 64 bytes and returns it.
  virtual char* MakeKey(char* buffer) = 0;

  virtual vbINT32 GetVBClassID() = 0;
  virtual unsigned int GetVBClassIndex() = 0;
  virtual std::string GetVBClassName() = 0;
  virtual int GetVBClassVer() = 0;

  virtual ~vbPersistent() = default;

  void Connect(POD* database) { m_pDatabase = database; }
  void Connect(const POD* database) { m_pDatabase = const_cast<POD*>(database); }
  POD* Database() const { return m_pDatabase; }
  /// Of the object's block; 0 when it has none yet. Stale after the block was freed.
  vbINT32 ObjectAddress() const { return m_ObjectAddress; }

  // -- By key.

  bool FindObject();
  /// Finds and reads. THROWS CIndexError when the index led to another object than was asked for,
  /// or to a freed one.
  bool GetObject();
  /// With `check`, THROWS CObjectNotAdded for an object that is stored already. Returns true.
  bool WriteObject(bool check);
  /// Stores the object in the place of its old form, if there is one; returns true. When that
  /// fails, the old form stays or, where its block was taken already, the new one.
  bool PutObject();
  /// The same for an object that has an old form; false, with nothing stored, when it has none.
  bool ReplaceObject();
  /// The block can be undeleted, the key is gone. These and PutObject THROW CIndexError, with
  /// nothing freed, when the index leads to another object.
  bool DeleteObject();
  bool RemoveObject();

  // -- By address, and in file order without use of the index: 0 when there is no such object.

  /// -1 reads at the address already held.
  void ReadObject(vbINT32 address);
  /// Reads the object that an entry of the index leads to. THROWS CIndexError when that is another
  /// or a freed one.
  void ReadByKey(const KSBKey& key);
  vbINT32 FirstObject(vbINT32 offset);
  vbINT32 NextObject(vbINT32 address);
  vbINT32 PrevObject(vbINT32 address);
  /// The stored objects of this class.
  int CountObjects();

  // -- The pieces that the operations above are made of. Address and class ID go into the key
  // record that is added.

  bool Add(vbINT32 address, vbINT32 classID);
  bool Find(vbINT32 address, vbINT32 classID);
  bool Delete(vbINT32 address, vbINT32 classID);
  bool Remove(vbINT32 address, vbINT32 classID);

  bool AddKey(DatabaseKeyB& key, DatabaseKeyB& scratch, unsigned int index, bool flag);
  bool FindKey(DatabaseKeyB& key, DatabaseKeyB& scratch, unsigned int index, bool flag);
  bool RemoveKey(DatabaseKeyB& key, DatabaseKeyB& scratch, unsigned int index, bool flag);

  static unsigned long StringFileLength(const std::string& text);
  void ReadObjectHeader(vbObjectHeader& header, vbINT32 address);
  void WriteObjectHeader(const vbObjectHeader& header, vbINT32 address);
  void ReadString(std::string& s, vbINT32 address);
  void WriteString(const std::string& s, vbINT32 address);

 protected:
  /// Copies carry neither the database nor the address: a new object is not connected, an old one
  /// keeps its own. Moving an object into a new one takes both along.
  vbPersistent(const vbPersistent&) {}
  vbPersistent(vbPersistent&&) = default;
  vbPersistent& operator=(const vbPersistent&) { return *this; }

  /// The version word and the fields of the object of this class at `address`, verified.
  std::vector<char> ReadRecord(vbINT32 address);
  /// Stores `record`, the version word and the fields, in a new block and adds the key.
  bool WriteRecord(std::span<const char> record);
  void Attach(vbINT32 address) { m_ObjectAddress = address; }
  /// The words of the key, which every record has right behind its version.
  virtual std::vector<vbINT32> KeyWords() const = 0;
  /// THROWS CInvalidType for a record that is older than any version whose fields are known.
  void RequireVersion(long stored, int oldest, vbINT32 address);

 private:
  vbDatabase& Data() const;
  vBtree& Tree(unsigned int index) const;
  KSBKey RequireKey(vbINT32 address, vbINT32 classID);
  enum class Freed { Yes, NoKey, NoLiveBlock };
  Freed Free(vbINT32 address, vbINT32 classID, bool remove);
  Freed Replace();
  void RequireOwnObject(vbINT32 address);
  void RequireRoomForUpdate();
  void RemoveDeadKey();
  void PutBack(vbINT32 newAddress, vbINT32 oldAddress);
  void FreeQuietly(vbINT32 address);
  vbINT32 OfThisClass(vbINT32 address, vbINT32 (vbDatabase::*step)(vbINT32));

  POD* m_pDatabase = nullptr;
  vbINT32 m_ObjectAddress;
};
