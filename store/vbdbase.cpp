#include "store/vbdbase.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <utility>

#include "store/KestErr.h"
#include "store/crc32kernels.h"

// Files, bytes and the file header. Blocks: vbdblock.cpp, vbdfree.cpp, vbdwalk.cpp; locks:
// vbdlock.cpp.

namespace {

enum Operation : int { kHasRead = 0, kHasWritten = 1, kHasSought = 4 };

/// A static area up to here is read and written as one.
constexpr long kLongestFront = 8192;

/// The shape that a revision letter gives to a file. A letter that no version ever wrote is taken
/// for damage to that one byte.
struct Shape {
  bool fileLock;
  bool recordLock;
  bool checksum;
  long checkWord;  ///< -1: no word is valid
};

Shape ShapeOf(signed char letter) {
  switch (letter) {
    case '\0':
    case ' ':
      return {false, false, false, -1};
    case 'A':
    case 'a':
      return {false, false, true, static_cast<long>(vbCheckWordOld)};
    case 'B':
    case 'b':
      return {true, false, true, -1};
    default:
      return {true, true, true, static_cast<long>(vbCheckWord)};
  }
}

}  // namespace

const char vbDatabase::VBDSignature[8] = {'V', 'B', 'D', 'B', 'A', 'S', 'E', 'C'};
const char vbDatabase::VBDSignatureOld[8] = {'V', 'B', 'D', 'F', 'I', 'L', 'E', 'A'};

bool vbFileHeader::HasKnownSignature() const {
  return std::memcmp(Signature, vbDatabase::VBDSignature, sizeof Signature) == 0 ||
         std::memcmp(Signature, vbDatabase::VBDSignatureOld, sizeof Signature) == 0;
}

vbDatabase::~vbDatabase() noexcept(false) {
  const bool unwinding = std::uncaught_exceptions() > 0;
  try {
    Close();
  } catch (...) {
    if (!unwinding) throw;
  }
}

void vbDatabase::Create(const std::string& path, vbINT32 staticSize, signed char revision) try {
  if (IsUsable()) Throw<CDatabaseOpen>();
  Forget();
  std::string name = path;  // memory runs out here, while nothing is open
  m_pFile = vbdFPTRCreate(path);
  if (m_pFile == nullptr) Throw<CFileCreation>();
  SetBuffer();
  m_bOpen = m_bReady = m_bReadable = m_bWriteable = true;
  m_bCreated = true;
  m_strFileName = std::move(name);
  SetRevisionLetter(revision);
  m_nLastOperation = kHasRead;
  InitFileHdr(staticSize);
}
LOG_AND_RETHROW

/// Sizes the buffer of the stream, which has not been used yet. Four bytes, not none: only what is
/// asked for by KEST_NOIOBUF counts as unbuffered.
void vbDatabase::SetBuffer() {
  if (!m_bWholeTransfers || isNoBufSet) return;
  std::setvbuf(m_pFile->Stream, m_SmallBuffer, _IOFBF, sizeof m_SmallBuffer);
}

void vbDatabase::Open(const std::string& path, vbDatabaseAccessMode mode) try {
  if (IsUsable()) Throw<CDatabaseOpen>();
  Forget();
  std::string name = path;  // memory runs out here, while nothing is open
  m_pFile = vbdFPTROpen(path, mode);
  if (m_pFile == nullptr) Throw<CFileOpen>();
  SetBuffer();
  m_bReadable = true;
  m_bWriteable = mode != vbReadOnly;
  m_bOpen = m_bReady = true;
  m_strFileName = std::move(name);
  m_nLastOperation = kHasWritten;
  try {
    ReadFileHdr();
  } catch (...) {
    Forget();  // closing would write a header into what may be none of our files
    throw;
  }
  if (!m_Header.HasKnownSignature()) {
    m_bOpen = false;
    Throw<CWrongFileType>();
  }
  m_RevisionLetter = m_Header.Revision;
}
LOG_AND_RETHROW

void vbDatabase::Close() try {
  struct ForgetAtEnd {
    vbDatabase& file;
    ~ForgetAtEnd() { file.Forget(); }
  } const forget{*this};
  if (!IsUsable()) return;
  WriteFileHdr();
  if (vbdFPTRClose(m_pFile) != 0) Throw<CFileClose>();
  m_pFile = nullptr;
}
LOG_AND_RETHROW

/// Closes what is still open, whatever comes of it, and returns to the closed state.
void vbDatabase::Forget() {
  if (vbdFPTRClose(m_pFile) != 0) vbdFPTRClose(m_pFile);  // the second call frees the handle
  m_pFile = nullptr;
  m_nKnownLength = 0;
  m_Front.clear();
  m_strFileName = vbDefaultFileName;
  m_bOpen = m_bReady = m_bReadable = m_bWriteable = m_bCreated = false;
}

void vbDatabase::Flush() try {
  if (!m_bWriteable) Throw<CFileNotReady>();
  WriteFileHdr();
  Seek(0, vbSeekCurrent);  // brings out what still waits
}
LOG_AND_RETHROW

void vbDatabase::Sync() try {
  RequireReady();
  if (vbdFPTRSync(m_pFile) != 0) FailWrite();
}
LOG_AND_RETHROW

bool vbDatabase::Exists(const std::string& path) {
  return vbdFPTRExists(path);
}

vbINT32 vbDatabase::FileSize(const std::string& path) {
  return vbdFPTRFileSize(path);
}

void vbDatabase::RequireReady() const {
  if (!IsUsable()) Throw<CFileNotReady>();
}

/// Brings written bytes to the operating system before the stream turns to something else, so that
/// a full disk is told as a failed write and not as a failed seek or read.
void vbDatabase::BringOut() {
  if (m_nLastOperation == kHasWritten && m_bWriteable && vbdFPTRFlush(m_pFile) != 0) FailWrite();
}

void vbDatabase::FailWrite() {
  vbdFPTRDiscard(m_pFile);
  m_nLastOperation = kHasRead;
  Throw<CFileWrite>();
}

void vbDatabase::Seek(vbINT32 offset, vbDatabaseSeekMode mode) try {
  RequireReady();
  BringOut();
  if (vbdFPTRSeek(m_pFile, offset, mode) == -1) Throw<CFileSeek>();
  m_nLastOperation = kHasSought;
}
LOG_AND_RETHROW

vbINT32 vbDatabase::SeekTo(vbINT32 address) try {
  const vbINT32 position = FilePosition();
  if (address == vbCurrAddress) return position;
  if (address > position) {
    Seek(address - position, vbSeekCurrent);
  } else if (address < position) {
    Seek(address, vbSeekBegin);
  } else if (m_nLastOperation != kHasSought) {
    Seek(0, vbSeekCurrent);
  }
  return FilePosition();
}
LOG_AND_RETHROW

vbINT32 vbDatabase::FilePosition() try {
  RequireReady();
  const long position = vbdFPTRTell(m_pFile);
  if (position < 0 || position > kLongestFile) Throw<CFilePosition>();
  return position;
}
LOG_AND_RETHROW

/// Brings the stream to `address`, ready for a transfer that may not follow on `opposite`. A seek
/// costs a system call even when the stream stands there already.
void vbDatabase::Turn(vbINT32 address, int opposite) {
  const bool turns = m_nLastOperation == opposite;
  if (address == vbCurrAddress) {
    if (turns) Seek(0, vbSeekCurrent);
  } else if (turns || vbdFPTRTell(m_pFile) != address) {
    Seek(address, vbSeekBegin);
  }
}

void vbDatabase::Read(void* buffer, unsigned long size, vbINT32 address) try {
  RequireReady();
  Turn(address, kHasWritten);
  if (size > kLongestFile || vbdFPTRRead(m_pFile, buffer, static_cast<unsigned int>(size)) != 0) {
    Throw<CFileRead>();
  }
  m_nLastOperation = kHasRead;
}
LOG_AND_RETHROW

/// Reads at an address that was computed from the file's own words, where -1 is no position.
void vbDatabase::ReadAt(void* buffer, unsigned long size, long address) {
  if (address < 0 || address > kLongestFile) Throw<CFileSeek>();
  Read(buffer, size, address);
}

void vbDatabase::Write(const void* buffer, unsigned long size, vbINT32 address, bool flush,
                       bool verify) try {
  if (!m_bWriteable) Throw<CFileNotWriteable>();
  Turn(address, kHasRead);
  const vbINT32 start = FilePosition();
  if (size > static_cast<unsigned long>(kLongestFile - start)) Throw<CFileWrite>();
  if (vbdFPTRWrite(m_pFile, buffer, static_cast<unsigned int>(size)) != 0) FailWrite();
  m_nLastOperation = kHasWritten;
  if (flush) {
    if (vbdFPTRFlush(m_pFile) != 0) FailWrite();
    Seek(0, vbSeekCurrent);
  }
  if (verify) {
    if (!Holds(buffer, size, start)) Throw<CChecksum>();
    m_nKnownLength = std::max(m_nKnownLength, start + static_cast<long>(size));
  }
  if (start < static_cast<long>(m_Front.size())) {
    const auto place = static_cast<std::size_t>(long{start});
    std::memmove(m_Front.data() + place, buffer, std::min(size, m_Front.size() - place));
  }
}
LOG_AND_RETHROW

/// Whether the file itself has these bytes at `address`.
bool vbDatabase::Holds(const void* bytes, unsigned long size, vbINT32 address) {
  const auto* expected = static_cast<const char*>(bytes);
  std::array<char, 8192> found;
  for (unsigned long part = 0; size > 0; size -= part, expected += part) {
    part = std::min(size, found.size());
    Read(found.data(), part, address);
    if (std::memcmp(found.data(), expected, part) != 0) return false;
    address = vbCurrAddress;
  }
  return true;
}

unsigned long vbDatabase::CalcChecksum(unsigned long size, vbINT32 address, int allocate) try {
  SeekTo(address);
  // One buffer of fixed size, whatever a damaged length word asks for.
  std::array<char, 8192> buffer;
  const unsigned long step = allocate != 0 ? buffer.size() : 1;
  std::uint32_t running = 0xFFFFFFFF;
  while (size > 0) {
    const unsigned long part = std::min(size, step);
    Read(buffer.data(), part, vbCurrAddress);
    running = kestdb::UpdateCRC32(running, buffer.data(), part);
    size -= part;
  }
  return ~running;
}
LOG_AND_RETHROW

void vbDatabase::ReadFileHdr() try {
  vbFileHeader header;
  Read(&header, sizeof header, vbStartOfFile);
  m_Header = header;
}
LOG_AND_RETHROW

void vbDatabase::WriteFileHdr() try {
  Write(&m_Header, sizeof m_Header, vbStartOfFile, false, true);
}
LOG_AND_RETHROW

void vbDatabase::ReadFront() try {
  m_Front.clear();
  const long end = m_Header.HeapStart;
  if (end < static_cast<long>(sizeof m_Header) || end > kLongestFront || !Reaches(end)) {
    return ReadFileHdr();
  }
  std::vector<char> front(static_cast<std::size_t>(end));
  Read(front.data(), front.size(), vbStartOfFile);
  std::memcpy(&m_Header, front.data(), sizeof m_Header);
  m_Front = std::move(front);
}
LOG_AND_RETHROW

const char* vbDatabase::Front(vbINT32 address, unsigned long size) const {
  const long behind = address + static_cast<long>(size);
  const bool held = address >= 0 && behind <= static_cast<long>(m_Front.size());
  return held ? m_Front.data() + address : nullptr;
}

void vbDatabase::WriteFront(const void* bytes, unsigned long size, vbINT32 address) try {
  if (address < static_cast<long>(sizeof m_Header) || Front(address, size) == nullptr) {
    Write(bytes, size, address, false, true);
    return WriteFileHdr();
  }
  const auto place = static_cast<std::size_t>(long{address});
  std::memcpy(m_Front.data(), &m_Header, sizeof m_Header);
  std::memcpy(m_Front.data() + place, bytes, size);
  // In place: where memory runs out here, the key of an insertion would stay without its object.
  Write(m_Front.data(), place + size, vbStartOfFile, false, true);
}
LOG_AND_RETHROW

void vbDatabase::InitFileHdr(vbINT32 staticSize) try {
  const long heapStart = staticSize + static_cast<long>(FileHeaderSize());
  if (staticSize < 0 || heapStart > kLongestFile) Throw<CInvalidArgument>();
  m_Header.HeapStart = heapStart;
  m_Header.FreeSpace = 0;
  m_Header.EndOfFile = heapStart;
  m_Header.HighestVB = 0;
  std::memcpy(m_Header.Signature, VBDSignature, sizeof m_Header.Signature);
  m_Header.Revision = m_RevisionLetter;
  m_Header.Version = VBDVersion;
  WriteFileHdr();
  vbFileLockHeader lock;
  InitFileLockHdr(lock);
  WriteFileLockHdr(lock);
}
LOG_AND_RETHROW

void vbDatabase::Refresh() try {
  RequireReady();
  BringOut();
  vbdFPTRRefresh(m_pFile);
  m_nKnownLength = 0;
  m_Front.clear();
  m_nLastOperation = kHasSought;
}
LOG_AND_RETHROW

vbINT32 vbDatabase::StaticArea() const {
  return m_Header.HeapStart - static_cast<long>(FileHeaderSize());
}

std::string vbDatabase::GetSignature() const {
  std::string signature(m_Header.Signature, strnlen(m_Header.Signature, sizeof m_Header.Signature));
  signature.erase(sizeof m_Header.Signature);
  return signature;
}

void vbDatabase::SetRevisionLetter(signed char letter) {
  switch (letter) {
    case 'A':
    case 'a':
      m_RevisionLetter = 'A';
      break;
    case 'B':
    case 'b':
      m_RevisionLetter = 'B';
      break;
    case '\0':
    case ' ':
      m_RevisionLetter = '\0';
      break;
    default:
      m_RevisionLetter = 'C';
  }
}

bool vbDatabase::HasFileLock() const {
  return ShapeOf(m_RevisionLetter).fileLock;
}

bool vbDatabase::HasRecordLock() const {
  return ShapeOf(m_RevisionLetter).recordLock;
}

unsigned long vbDatabase::ChecksumSize() const {
  return ShapeOf(m_RevisionLetter).checksum ? sizeof(vbUINT32) : 0;
}

unsigned long vbDatabase::FileHeaderSize() const {
  return sizeof(vbFileHeader) + (HasFileLock() ? sizeof(vbFileLockHeader) : 0);
}

unsigned long vbDatabase::VBHeaderSize() const {
  return sizeof(vbBlockHeader) + (HasRecordLock() ? sizeof(vbRecordLockHeader) : 0);
}

bool vbDatabase::IsValid(vbUINT32 word) const {
  return static_cast<long>(word) == ShapeOf(m_RevisionLetter).checkWord;
}
