#include "maintenance/vbdstats.h"

#include <sys/stat.h>

#include <cstring>

#include "environment/Logging.h"
#include "maintenance/upkeep.h"
#include "store/KestErr.h"
#include "store/blockwalk.h"
#include "store/report.h"
#include "store/vbdbase.h"

void KStatus(const std::string& path) try {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) Throw<CNoFileExists>();
  if ((status.st_mode & S_IRUSR) == 0) Throw<CFileRead>();
  if ((status.st_mode & S_IWUSR) == 0) Throw<CFileNotWriteable>();
}
LOG_AND_RETHROW

using kestdb::ToInt;

namespace {

/// The revision letter of the files that this library makes.
const char kRevision = vbDatabase::VBDSignature[sizeof vbFileHeader::Signature];

/// Whether a revision letter is `upper` in either case.
bool IsLetter(signed char letter, char upper) {
  return letter == upper || letter == upper - 'A' + 'a';
}

// ---- The header ----

/// Whether it is one of our files at all, and of which revision.
void CheckSignature(vbDatabase& db, const vbFileHeader& header) {
  LPrint("\tChecking signature...");
  if (!header.HasKnownSignature()) {
    LPrint("\n");
    LError("File header is damaged or does not exist\n\n");
    VBStatistics(&db, false);
    Throw<CWrongFileType>();
  }
  if (header.Revision == kRevision &&
      std::memcmp(header.Signature, vbDatabase::VBDSignature, sizeof header.Signature) == 0) {
    LPrint("OK\n");
    return;
  }
  LPrint("\n");
  LWarn("\tThe file revision letters do not match.\n");
  LPrint("\tCurrent File Revision: %c\n", kRevision);
  if (header.Revision == '\0') {
    LPrint("\tCurrent File Revision: NONE\n");
  } else {
    LPrint("\tThe file reads: %c\n", header.Revision);
  }
  LPrint("\tBackward compatibility rules will be enforced.\n\n");
}

/// The word at `address`; 0, which is no check word, where the file holds no header.
vbUINT32 CheckWordAt(vbDatabase& db, long address) {
  vbBlockHeader header;
  kestdb::FileWindow window(db);
  const char* bytes = window.At(address, sizeof header);
  if (bytes == nullptr) return 0;
  std::memcpy(&header, bytes, sizeof header);
  return header.CheckWord;
}

/// Ends the line of a check of an address where a block should start; 1 when there is none.
int JudgeBlock(bool found, const char* error, long address) {
  if (found) {
    LPrint("OK\n");
    return 0;
  }
  LPrint("\n");
  LError("%s", error);
  LPrint("\tNo variable block found at file address: %d\n\n", ToInt(address));
  return 1;
}

int CheckHeapStart(vbDatabase& db, const vbFileHeader& header) {
  LPrint("\tChecking the HeapStart value...");
  if (header.HeapStart == header.EndOfFile) {
    LPrint("no variable blocks in the file.\n");
    return 0;
  }
  const vbUINT32 word = CheckWordAt(db, header.HeapStart);
  const bool found = word == vbCheckWord || word == vbCheckWordOld;
  // Nothing stands before the heap of a data file, trees before that of an index file.
  const long behind = static_cast<long>(db.FileHeaderSize());
  if (found && header.HeapStart > behind && CheckWordAt(db, behind) == word) {
    LPrint("\n");
    LError("Bad HeapStart value!\n");
    LPrint("\tThere is a variable block before it, at file address: %d\n\n", ToInt(behind));
    return 1;
  }
  return JudgeBlock(found, "Bad HeapStart value!\n", header.HeapStart);
}

int CheckEndOfFile(vbDatabase& db, const vbFileHeader& header) {
  LPrint("\tChecking the end of file...");
  if (db.Length() == header.EndOfFile) {
    LPrint("OK\n");
    return 0;
  }
  LPrint("\n");
  LError("End of file error!\n");
  LPrint(" Actual length (%d) != allocated length (%d)\n\n", ToInt(db.Length()),
         ToInt(header.EndOfFile));
  return 1;
}

int CheckFreeSpace(vbDatabase& db, const vbFileHeader& header) {
  LPrint("\tChecking the FreeSpace value...");
  const long address = header.FreeSpace;
  return JudgeBlock(address == 0 || db.IsValid(CheckWordAt(db, address)), "Bad FreeSpace value!\n",
                    address);
}

int CheckHighestVB(vbDatabase& db, const vbFileHeader& header) {
  LPrint("\tChecking the HighestVB value...");
  const long address = header.HighestVB;
  const bool empty = address == 0 && header.HeapStart == header.EndOfFile;
  // Kept: these words name the other field, and lack its exclamation mark.
  return JudgeBlock(empty || db.IsValid(CheckWordAt(db, address)), "Bad HeapStart value\n",
                    address);
}

void CheckVersion(const vbFileHeader& header) {
  LPrint("\tChecking the version number...");
  if (header.Version == vbDatabase::VBDVersion) {
    LPrint("OK\n");
    return;
  }
  LPrint("\n");
  LWarn("File version numbers do not match.\n");
  LPrint("\tCurrent File Version = %d\n", ToInt(vbDatabase::VBDVersion));
  LPrint("\tThe file reads: %d\n", ToInt(header.Version));
  LPrint("\tBackward compatibility rules will be enforced.\n\n");
}

}  // namespace

void PreCheck(vbDatabase* db, bool full) try {
  if (db == nullptr) Throw<CNullPtr>();
  vbFileHeader header;
  db->Read(&header, sizeof header, vbStartOfFile);
  LPrint("Analyzing %s header...\n", db->GetFileName().c_str());
  CheckSignature(*db, header);
  int errors = CheckHeapStart(*db, header);
  if (full) {
    errors += CheckEndOfFile(*db, header);
    errors += CheckFreeSpace(*db, header);
    errors += CheckHighestVB(*db, header);
    CheckVersion(header);
  }
  if (errors == 0) {
    LPrint("The file header checks OK!\n\n");
    return;
  }
  LError("The file header has %d errors!\n", errors);
  Throw<CFileCorrupt>();
}
LOG_AND_RETHROW

// ---- The blocks ----

namespace {

/// Blocks and their bytes.
struct Amount {
  long blocks = 0;
  long bytes = 0;

  void Add(long length) {
    ++blocks;
    bytes += length;
  }
};

struct Totals {
  Amount used;
  Amount empty;
  Amount all;
  long bad = 0;

  void Add(const vbBlockHeader& header) {
    const long length = static_cast<long>(header.Length);
    all.Add(length);
    if (header.StatusLetter() == vbNormalBlock) used.Add(length);
    if (header.IsFree()) empty.Add(length);
  }
};

double Percentage(long part, long whole) {
  const double percentage =
      whole == 0 ? 0.0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
  return percentage < 0.5 ? 0.0 : percentage;
}

void PrintTotals(const Totals& totals, long fileSize) {
  LPrint("\nBlocks: Used = %d / Empty = %d / Total = %d Efficiency = %.0f%%\n",
         ToInt(totals.used.blocks), ToInt(totals.empty.blocks), ToInt(totals.all.blocks),
         Percentage(totals.used.blocks, totals.all.blocks));
  LPrint("Bytes: Used = %d / Empty = %d / Total = %d Efficiency = %.0f%%\n",
         ToInt(totals.used.bytes), ToInt(totals.empty.bytes), ToInt(totals.all.bytes),
         Percentage(totals.used.bytes, totals.all.bytes));
  if (totals.all.bytes != fileSize) {
    LWarn("Found %d bytes, but file size is %d bytes.\n", ToInt(totals.all.bytes), ToInt(fileSize));
  }
  if (totals.bad > 0) {
    LWarn("Found %d bad variable blocks.\n", ToInt(totals.bad));
    LPrint("\tYou should rebuild this file to recover data!\n");
  }
}

/// Goes over all blocks, telling of the bad ones.
void CountBlocks(vbDatabase& db, long first, bool perBlock, Totals& totals) {
  kestdb::BlockWalk walk(db);
  const long last = db.GetHighestVB();
  bool lastMet = false;
  const auto good = [&](const kestdb::FoundBlock& block) {
    totals.Add(block.header);
    lastMet = lastMet || block.address == last;
    if (perBlock) VBStats(fKLog, &db, block.address);
    return static_cast<long>(block.header.Length);
  };
  const auto bad = [&](long address) {
    ++totals.bad;
    LWarn("Found bad variable block at address %d\n", ToInt(address));
    LPrint("\tSearching for next good variable block...\n");
  };
  if (!walk.Run(first, good, bad)) {
    LPrint("None found!\n\n");
    Throw<CFileCorrupt>();
  }
  // A wrong length takes a walk past blocks, and all seems well that comes behind them.
  kestdb::FoundBlock block;
  if (lastMet || totals.bad > 0 || last < first || !walk.Load(last, block)) return;
  ++totals.bad;
  LWarn("The last block, at address %d, was not met\n", ToInt(last));
}

}  // namespace

void VBStatistics(vbDatabase* db, bool perBlock) try {
  if (db == nullptr) Throw<CNullPtr>();
  const long fileSize = db->Length();
  db->ReadFileHdr();
  Totals totals;
  totals.used.bytes = totals.all.bytes =
      static_cast<long>(db->FileHeaderSize()) + long{db->StaticArea()};
  LPrint("Searching %s for all variable blocks...\n", db->GetFileName().c_str());
  const long first = db->FindFirstVB(0);
  if (first == 0) LWarn("No variable blocks found!\n\n");
  CountBlocks(*db, first, perBlock, totals);
  PrintTotals(totals, fileSize);
}
LOG_AND_RETHROW

namespace {

void PrintBlock(std::FILE* out, long address, const vbBlockHeader& header) {
  std::fprintf(out, "----------------------------\n");
  std::fprintf(out, "----- Block Statistics -----\n");
  std::fprintf(out, "Address      = %d\n", ToInt(address));
  std::fprintf(out, "Check Word   = 0x%-8x\n", static_cast<unsigned>(header.CheckWord));
  std::fprintf(out, "Length       = %d\n", static_cast<int>(header.Length));
  std::fprintf(out, "Status       = %c\n", header.StatusLetter());
  std::fprintf(out, "Next Deleted = %d\n", ToInt(header.NextDeleted));
}

void PrintObject(std::FILE* out, vbDatabase& db, const vbINT32& object) {
  const unsigned long length = db.ObjectLength(object);
  unsigned long stored = 0;
  unsigned long calculated = 0;
  const bool matches = db.ReadObjectChecksum(object, &stored, &calculated);
  std::fprintf(out, "----- Object Statistics -----\n");
  std::fprintf(out, "Object Length  = %d\n", static_cast<int>(length));
  std::fprintf(out, "Stored CRC     = 0x%-8x\n", static_cast<unsigned>(stored));
  std::fprintf(out, "Calculated CRC = 0x%-8x\n", static_cast<unsigned>(calculated));
  if (!matches) {
    std::fprintf(out, "ERROR: Object checksum does not match!\n");
    std::fprintf(out, "       Rebuild the file to recover valid data.\n");
  }
}

void PrintRecordLock(std::FILE* out, vbDatabase& db, const vbINT32& address) {
  vbRecordLockHeader lock;
  db.ReadRecordLockHdr(lock, address);
  std::fprintf(out, "----- Record Lock Statistics -----\n");
  std::fprintf(out, "Record Lock Protect:     %d\n", static_cast<int>(lock.Protect));
  std::fprintf(out, "Record Read Lock Value:  %d\n", static_cast<int>(lock.ReadLock));
  std::fprintf(out, "Record Write Lock Value: %d\n", static_cast<int>(lock.WriteLock));
}

}  // namespace

void VBStats(std::FILE* out, vbDatabase* db, vbINT32 address) try {
  if (out == nullptr || db == nullptr) Throw<CNullPtr>();
  vbBlockHeader header;
  db->ReadBlockHdr(&header, address);
  std::fprintf(out, "\n");
  PrintBlock(out, address, header);
  std::fprintf(out, "\n");
  PrintObject(out, *db, address + static_cast<long>(db->VBHeaderSize()));
  if (IsLetter(db->GetRevisionLetter(), 'C')) {
    std::fprintf(out, "\n");
    PrintRecordLock(out, *db, address);
  }
  std::fprintf(out, "\n");
}
LOG_AND_RETHROW

// ---- The whole file ----

namespace {

void PrintStaticInformation(std::FILE* out, vbDatabase& db) {
  const signed char letter = db.GetRevisionLetter();
  std::fprintf(out, "----- Static information -----\n");
  std::fprintf(out, "File Name:         %s\n", db.GetFileName().c_str());
  std::fprintf(out, "File Signature:    %s\n", db.GetSignature().c_str());
  if (letter == '\0' || letter == ' ') {
    std::fprintf(out, "Revision Letter:   Zero\n");
  } else {
    std::fprintf(out, "Revision Letter:   %c\n", letter);
  }
  std::fprintf(out, "Library Version:   %d\n", ToInt(db.GetVersion()));
  std::fprintf(out, "File Header Size:  %d\n", static_cast<int>(db.FileHeaderSize()));
  std::fprintf(out, "Block Header Size: %d\n", static_cast<int>(db.VBHeaderSize()));
  std::fprintf(out, "Static area size:  %d\n", ToInt(db.StaticArea()));
  std::fprintf(out, "Static file size:  %d\n", ToInt(db.Length()));
  std::fprintf(out, "\n");
}

void PrintDynamicInformation(std::FILE* out, vbDatabase& db) {
  std::fprintf(out, "----- Dynamic Information -----\n");
  std::fprintf(out, "File Status:     ");
  std::fprintf(out, "%s", db.IsOpen() ? "Open " : "Closed ");
  std::fprintf(out, "%s", db.IsWriteable() ? "Read/Write " : "Read/Only ");
  std::fprintf(out, "\n");
  std::fprintf(out, "Free Space:      %d\n", ToInt(db.GetVBDFreeSpace()));
  std::fprintf(out, "End of File:     %d\n", ToInt(db.GetEOF()));
  std::fprintf(out, "Heap Start:      %d\n", ToInt(db.GetHeapStart()));
  std::fprintf(out, "Highest Block:   %d\n", ToInt(db.GetHighestVB()));
  std::fprintf(out, "Total Blocks:    %d\n", ToInt(db.VBTotal()));
  // Only now: to count a broken free list marks it as broken in the header in memory.
  vbINT32 deleted;
  vbINT32 removed;
  const vbINT32 free = db.VBDeleted(&deleted, &removed);
  std::fprintf(out, "Deleted/Removed: %d/%d (%d)\n", ToInt(deleted), ToInt(removed), ToInt(free));
}

void PrintLockInformation(std::FILE* out, vbDatabase& db) {
  const signed char letter = db.GetRevisionLetter();
  if (!IsLetter(letter, 'B') && !IsLetter(letter, 'C')) return;
  vbFileLockHeader lock;
  db.ReadFileLockHdr(lock);
  std::fprintf(out, "\n");
  std::fprintf(out, "----- Lock Header Information -----\n");
  std::fprintf(out, "File Lock Protect:     %u\n", static_cast<unsigned>(lock.Protect));
  std::fprintf(out, "File Read Lock Value:  %d\n", static_cast<int>(lock.ReadLock));
  std::fprintf(out, "File Write Lock Value: %d\n", static_cast<int>(lock.WriteLock));
}

}  // namespace

void VBDStats(std::FILE* out, vbDatabase* db) try {
  if (out == nullptr || db == nullptr) Throw<CNullPtr>();
  std::fprintf(out, "\n");
  std::fprintf(out, "----- VBD file statistics -----\n");
  std::fprintf(out, "\n");
  PrintStaticInformation(out, *db);
  PrintDynamicInformation(out, *db);
  PrintLockInformation(out, *db);
  std::fprintf(out, "\n");
}
LOG_AND_RETHROW

void EchoVBDVersion(std::FILE* out) try {
  if (out == nullptr) Throw<CNullPtr>();
  std::fprintf(out, "VBD Runtime Library Version:  %d\n", ToInt(vbDatabase::VBDVersion));
  std::fprintf(out, "VBD Runtime Library Revision: %c\n", kRevision);
}
LOG_AND_RETHROW
