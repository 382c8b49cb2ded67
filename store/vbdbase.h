#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/api.h"
#include "store/vbdfptr.h"
#include "store/vbscalar.h"

/// The variable-block file: a header, an optional static area of fixed size, and a heap of blocks
/// of any length, each with a header and a checksum of its own. The data file (.ksb) and the index
/// file (.kx) are both such files. docs/format.md gives the layout offset by offset.
///
/// Addresses are byte offsets from the start of the file. A block address is where its header
/// starts; an object address lies VBHeaderSize() behind it, where the block's contents start.

/// The word that every block starts with, in files of revision C and of revision A.
inline constexpr vbUINT32 vbCheckWord{0xFEFEFEFE};
inline constexpr vbUINT32 vbCheckWordOld{0xFEFE};

inline constexpr vbINT32 vbStartOfFile{0};
/// As an address argument: the current file position.
inline constexpr vbINT32 vbCurrAddress{-1};
/// In the header's free-space field: the free list is broken and no longer used.
inline constexpr vbINT32 vbFSListCorrupt{-1};

/// Block status, in the low byte of the status word.
inline constexpr char vbNormalBlock = 'N';
inline constexpr char vbDeletedBlock = 'D';  ///< freed, and may come back by UnDelete
inline constexpr char vbRemovedBlock = 'R';  ///< freed for good

inline constexpr const char* vbDefaultFileName = "closed.vbd";

/// How Alloc looks for free space before it makes the file longer.
enum vbDatabaseReclaimMethod : int {
  vbReclaimNone = 0,
  vbReclaimBestFit = 1,  ///< only a block of that very length
  vbReclaimFirstFit = 2
};

enum vbDatabaseLockType : int { vbReadLock = 0, vbWriteLock = 1 };

/// The first 28 bytes of a file.
struct vbFileHeader {
  vbINT32 FreeSpace;    ///< block address of the first free block, 0 for none
  vbINT32 EndOfFile;    ///< where the next new block goes
  vbINT32 HeapStart;    ///< block address of the first block
  vbINT32 HighestVB;    ///< block address of the last block made at the end, 0 for none
  char Signature[7]{};  ///< "VBDBASE", or "VBDFILE" in old files; no terminator
  signed char Revision = 0;
  vbINT32 Version;

  /// Whether the file is one of ours, of whatever revision.
  KESTDB_API bool HasKnownSignature() const;
};
static_assert(sizeof(vbFileHeader) == 28);

/// The first 16 bytes of a block.
struct vbBlockHeader {
  vbUINT32 CheckWord{vbCheckWord};
  vbUINT32 Length;       ///< of the whole block, headers and checksum included
  vbUINT32 Status{'B'};  ///< 'B' stands for a header not yet filled; it never reaches a file
  vbINT32 NextDeleted;   ///< block address of the next free block, 0 at the end of the list

  /// The low byte of the status word; the other three mean nothing.
  char StatusLetter() const { return static_cast<char>(Status & 0xFF); }
  bool IsFree() const {
    return StatusLetter() == vbDeletedBlock || StatusLetter() == vbRemovedBlock;
  }
  void SetStatusLetter(char letter) {
    Status = (Status & ~0xFFUL) | static_cast<unsigned char>(letter);
  }
};
static_assert(sizeof(vbBlockHeader) == 16);

/// The file lock, 12 bytes behind the file header in revisions B and C.
struct vbFileLockHeader {
  vbUINT32 Protect;  ///< owner number of the holder, 0 when free
  vbUINT32 ReadLock;
  vbUINT32 WriteLock;  ///< 1 when write-locked
};
static_assert(sizeof(vbFileLockHeader) == 12);

/// The record lock, 12 bytes behind the block header in revision C.
struct vbRecordLockHeader {
  vbUINT32 Protect;    ///< 1 while the other two words are being changed
  vbUINT32 ReadLock;   ///< number of read locks
  vbUINT32 WriteLock;  ///< 1 when write-locked
};
static_assert(sizeof(vbRecordLockHeader) == 12);

class KESTDB_API vbDatabase {
 public:
  static const char VBDSignature[8];     ///< signature and revision letter of this library's files
  static const char VBDSignatureOld[8];  ///< those of the old family
  static constexpr int VBDVersion = 3001;
  static constexpr vbUINT32 VBDInternalCheckWord{vbCheckWord};
  static constexpr vbUINT32 VBDInternalCheckWordOld{vbCheckWordOld};

  vbDatabase() = default;
  vbDatabase(const vbDatabase&) = delete;
  vbDatabase& operator=(const vbDatabase&) = delete;

  /// Closes the file. THROWS what Close throws, unless another exception is in flight.
  virtual ~vbDatabase() noexcept(false);

  /// For a file of which only whole blocks and headers are moved, before it is opened: the stream
  /// gets a buffer so small that they go past it. A larger one reads what nobody asked for.
  void SetWholeTransfers() { m_bWholeTransfers = true; }

  /// Makes a new file or truncates an old one. `revision` is normalised by SetRevisionLetter.
  /// THROWS CDatabaseOpen, CFileCreation.
  virtual void Create(const std::string& path, vbINT32 staticSize, signed char revision);

  /// THROWS CDatabaseOpen, CFileOpen, CFileRead for a file shorter than its header, and
  /// CWrongFileType.
  virtual void Open(const std::string& path, vbDatabaseAccessMode mode);

  /// Writes the file header and closes the stream. The stream is closed on every way out.
  /// THROWS CFileNotWriteable for a file opened read-only, CFileClose.
  virtual void Close();

  /// Brings the file header and all written bytes to the operating system.
  /// THROWS CFileNotReady without the writeable flag, CFileWrite.
  virtual void Flush();

  /// Makes a normal block for `size` payload bytes and returns its object address, with the file
  /// positioned there; 0, with nothing changed, when the file would pass 2,147,483,647 bytes.
  /// THROWS CFileNotWriteable, CFileCorrupt for a file header that no new block can follow.
  virtual vbINT32 Alloc(unsigned long size, vbDatabaseReclaimMethod method);

  /// Brings what was written to the disk itself. THROWS CFileWrite.
  void Sync();

  /// Closes the stream without writing the file header.
  void Abandon() { Forget(); }

  static bool Exists(const std::string& path);
  static vbINT32 FileSize(const std::string& path);

  /// The length that the open file really has, -1 when closed.
  long Length() const { return vbdFPTRLength(m_pFile); }

  // -- Bytes. All THROW CFileNotReady on a closed file.

  void Seek(vbINT32 offset, vbDatabaseSeekMode mode);
  vbINT32 SeekTo(vbINT32 address);
  vbINT32 FilePosition();

  /// THROWS CFileRead when fewer than `size` bytes are there.
  void Read(void* buffer, unsigned long size, vbINT32 address);

  /// `verify` reads the bytes back and compares their CRC-32.
  /// THROWS CFileNotWriteable, CFileWrite, CChecksum.
  void Write(const void* buffer, unsigned long size, vbINT32 address, bool flush, bool verify);

  /// The CRC-32 of `size` bytes of the file. `allocate` 0 reads them one at a time.
  unsigned long CalcChecksum(unsigned long size, vbINT32 address, int allocate);

  // -- The file header. The copy in memory is the truth while a file is open.

  void ReadFileHdr();
  void WriteFileHdr();
  void InitFileHdr(vbINT32 staticSize);

  // The front of the file: all that stands before the heap. What one lock read of it is kept, so
  // that headers which lie side by side take one transfer.

  /// Reads the file header and, unless it is unusually large, the whole front.
  void ReadFront();
  /// The `size` bytes at `address` as they were read and written under this lock; null where the
  /// front isn't known.
  const char* Front(vbINT32 address, unsigned long size) const;
  /// Writes `size` bytes of the static area, verified, and the file header.
  void WriteFront(const void* bytes, unsigned long size, vbINT32 address);

  /// Drops what was read ahead, so that the next reads see what other processes wrote.
  void Refresh();

  vbINT32 GetEOF() const { return m_Header.EndOfFile; }
  vbINT32 GetHeapStart() const { return m_Header.HeapStart; }
  vbINT32 GetHighestVB() const { return m_Header.HighestVB; }
  vbINT32 GetVBDFreeSpace() const { return m_Header.FreeSpace; }
  vbINT32 StaticArea() const;
  /// THROWS std::out_of_range for a header with a zero byte among the seven characters.
  std::string GetSignature() const;
  long GetVersion() const { return m_Header.Version; }
  const vbFileHeader& FileHeader() const { return m_Header; }

  // -- The revision letter, which sets the shape of the whole file.

  /// 'A', 'B' and a zero byte or blank are taken in either case; every other letter gives 'C'.
  void SetRevisionLetter(signed char letter);
  signed char GetRevisionLetter() const { return m_RevisionLetter; }
  unsigned long FileHeaderSize() const;
  unsigned long VBHeaderSize() const;
  /// What a block takes beside its object: the headers and the checksum.
  unsigned long BlockOverhead() const { return VBHeaderSize() + ChecksumSize(); }
  /// Whether `word` is the check word of this file's revision.
  bool IsValid(vbUINT32 word) const;

  // -- Blocks.

  /// THROWS CSync when there is no block at `address`.
  void ReadBlockHdr(vbBlockHeader* header, vbINT32 address);
  void WriteBlockHdr(const vbBlockHeader& header, vbINT32 address);

  /// Block address of a free block for a block of `bytes` bytes in all, off the free list; or 0.
  vbINT32 ReclaimFirstFit(unsigned long bytes);
  vbINT32 ReclaimBestFit(unsigned long bytes);

  /// Whether Alloc(size, vbReclaimFirstFit) would find room, were the normal block of the object
  /// at `freed` (0 for none) removed before.
  bool HasRoom(unsigned long size, vbINT32 freed);

  /// Frees a normal block, for good with `remove`. False when the block is free already.
  /// THROWS CSync, CFileNotWriteable.
  bool Delete(vbINT32 address, bool remove);
  bool Remove(vbINT32 address) { return Delete(address, true); }

  /// Whether the object at `address` lies in a block that was freed since.
  bool IsFreed(vbINT32 address);

  /// Makes a deleted block live again, false when it can't. Removed blocks don't come back.
  bool UnDelete(vbINT32 address);

  /// The same for a block that was freed in either way, and not used again since.
  bool Restore(vbINT32 address);

  // Walks in file order. They take and give 0 for none. THROW CSync where a good block is needed
  // to go on and there is none.

  /// The first block at or behind `offset`, found by its check word; 0 starts at the heap.
  vbINT32 FindFirstVB(vbINT32 offset);
  vbINT32 FindNextVB(vbINT32 offset);
  /// The nearest normal block before an object address.
  vbINT32 FindPrevVB(vbINT32 address);
  vbINT32 FindFirstObject(vbINT32 offset);
  vbINT32 FindNextObject(vbINT32 offset);
  vbINT32 FindPrevObject(vbINT32 address);

  /// The number of blocks on the free list, -1 when it is broken; either pointer may be null.
  vbINT32 VBDeleted(vbINT32* deleted, vbINT32* removed);
  /// The number of blocks in the file, free ones included.
  vbINT32 VBTotal();

  // -- Objects. Addresses are object addresses, or vbCurrAddress. THROW CSync without a block.

  unsigned long VBLength(vbINT32 address);
  unsigned long ObjectLength(vbINT32 address);

  /// Whether stored and calculated CRC-32 agree; either pointer may be null.
  bool ReadObjectChecksum(vbINT32 address, unsigned long* stored, unsigned long* calculated);
  vbUINT32 WriteObjectChecksum(vbINT32 address);

  /// Makes a block for an object, which has at least its 8 bytes of header, puts the address into
  /// that header, and writes block, object and checksum in one verified go. The object's address,
  /// or 0 when there is no room. When it fails there is no new block.
  /// THROWS CInvalidArgument for an object without a header.
  vbINT32 StoreObject(std::vector<char>& object);

  /// Reads a whole object into `object` in one go and tells whether its checksum agrees. Where its
  /// length is the `likely` one, its block takes a single transfer.
  bool ReadWholeObject(vbINT32 address, std::vector<char>& object, unsigned long likely = 0);
  /// Writes a whole object and its checksum in one verified go. REQUIRES that the object fills its
  /// block.
  void WriteWholeObject(vbINT32 address, const std::vector<char>& object);

  // -- Advisory locks in the file itself. The system's own lock between processes is CLock.

  void InitFileLockHdr(vbFileLockHeader& header) const;
  void ReadFileLockHdr(vbFileLockHeader& header);
  void WriteFileLockHdr(const vbFileLockHeader& header);
  /// THROWS CLockViolation.
  void LockFile(unsigned int owner, vbDatabaseLockType type);

  void InitRecordLockHdr(vbRecordLockHeader& header) const;
  void ReadRecordLockHdr(vbRecordLockHeader& header, vbINT32 address);
  void WriteRecordLockHdr(const vbRecordLockHeader& header, vbINT32 address);
  /// THROW CRecordLockAccess while another process changes the lock; LockRecord also CRecordLock.
  void LockRecord(vbDatabaseLockType type, vbINT32 address);
  void UnlockRecord(vbDatabaseLockType type, vbINT32 address);
  void ResetRecordLock(vbINT32 address);

  // -- State.

  const std::string& GetFileName() const { return m_strFileName; }
  bool IsOpen() const { return m_bOpen; }
  bool IsReady() const { return m_bReady; }
  bool IsReadable() const { return m_bReadable; }
  bool IsWriteable() const { return m_bWriteable; }
  /// 0 after a read, 1 after a write, 4 after a seek.
  int LastOperation() const { return m_nLastOperation; }
  /// The stream of the open file, owned by this object; null when closed.
  std::FILE* Stream() const { return m_pFile == nullptr ? nullptr : m_pFile->Stream; }

 private:
  /// A block on the free list, or an address of 0 for none.
  struct FreeBlock {
    vbINT32 Address;
    vbBlockHeader Header;
  };
  /// How a walk along the free list ended.
  enum class FreeWalk { AtEnd, Stopped, NoBlock, NotFree };

  static constexpr long kLongestFile = 0x7FFFFFFF;

  void RequireReady() const;
  bool IsUsable() const { return m_bOpen && m_bReady; }
  bool HasFileLock() const;
  bool HasRecordLock() const;
  unsigned long ChecksumSize() const;

  void BringOut();
  void SetBuffer();
  void Turn(vbINT32 address, int opposite);
  [[noreturn]] void FailWrite();
  void ReadAt(void* buffer, unsigned long size, long address);
  bool Holds(const void* bytes, unsigned long size, vbINT32 address);
  void Forget();

  bool Reaches(long end);
  bool IsGoodBlock(const vbBlockHeader& header, long address);
  bool ReadLikelyBlock(long address, unsigned long length, std::vector<char>& block);
  vbBlockHeader RequireBlock(long address);
  vbBlockHeader RequireObject(vbINT32 address, vbINT32& block);
  vbINT32 MakeBlock(unsigned long size, vbDatabaseReclaimMethod method, std::vector<char>* object);
  vbINT32 Extend(unsigned long bytes, std::vector<char>* object);
  bool MayBeShort() const;
  void FillBlock(long address, unsigned long bytes, std::vector<char>* object, unsigned long zeros);
  bool HoldsLiveBlock(long address);
  void FreeAgain(const vbINT32& address, const vbINT32& head);
  void PutChecksum(const std::vector<char>& object, char* place) const;

  bool Splits(unsigned long length, unsigned long bytes) const;
  bool Fits(unsigned long length, unsigned long bytes) const;
  template <class Visit>
  FreeWalk WalkFreeList(Visit visit);
  FreeWalk ReadFreeBlock(vbINT32 address, FreeBlock& block);
  void Relink(const FreeBlock& previous, vbINT32 next);
  void Split(const FreeBlock& block, const FreeBlock& previous, unsigned long bytes);
  bool Revive(vbINT32 address, bool removedToo);

  long HeapEnd() const;
  bool ReadCandidate(vbBlockHeader& header, long address, long end);
  long BehindBlock(long address);
  long BehindObject(long object, long end);
  template <class Step>
  vbINT32 FirstLiveObject(vbINT32 block, Step step);
  bool IsLiveBlock(const char* word, long address);

  vbINT32 OpenRecordLock(vbRecordLockHeader& header, vbINT32 address);
  void SetLockWord(vbINT32 lock, std::size_t word, unsigned long value);

  std::string m_strFileName = vbDefaultFileName;
  signed char m_RevisionLetter = 'C';
  vbFileHeader m_Header;
  vbdFPTR* m_pFile = nullptr;
  std::vector<char> m_Front;
  char m_SmallBuffer[4]{};
  long m_nKnownLength = 0;  ///< the file was found to be that long, or longer, under this lock
  int m_nLastOperation = 0;
  bool m_bWholeTransfers = false;
  bool m_bCreated = false;  ///< by this object, and open since
  bool m_bOpen = false;
  bool m_bReady = false;
  bool m_bReadable = false;
  bool m_bWriteable = false;
};
