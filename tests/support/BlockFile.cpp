#include "tests/support/BlockFile.h"

#include <filesystem>
#include <fstream>

#include "tests/support/Bytes.h"

std::string Word(long value) {
  std::string word;
  for (int i = 0; i < 4; ++i) word += static_cast<char>(value >> 8 * i & 0xFF);
  return word;
}

std::string FileHeaderBytes(long freeSpace, long endOfFile, long heapStart, long highest,
                            char revision) {
  return Word(freeSpace) + Word(endOfFile) + Word(heapStart) + Word(highest) + "VBDBASE" +
         revision + Word(3001);
}

std::string FileOf(const std::string& blocks, long freeSpace) {
  const long end = 40 + static_cast<long>(blocks.size());
  return FileHeaderBytes(freeSpace, end, 40, 0) + std::string(12, '\0') + blocks;
}

std::string Block(std::size_t length, char status, long next, char fill) {
  std::string block = Bytes("FE FE FE FE") + Word(static_cast<long>(length)) + Word(status) +
                      Word(next) + std::string(12, '\0');
  block.resize(length, fill);
  return block;
}

std::string HeaderOf(const vbDatabase& file) {
  const vbFileHeader header = file.FileHeader();
  return Hex({reinterpret_cast<const char*>(&header), sizeof header});
}

BlockFile::BlockFile(signed char revision) {
  db.Create(path_, 0, revision);
}

BlockFile::BlockFile(const std::string& bytes, vbDatabaseAccessMode mode) {
  WriteBytes(path_, bytes);
  db.Open(path_, mode);
}

BlockFile::~BlockFile() noexcept {
  db.Abandon();
}

long BlockFile::Add(const std::string& object) {
  const vbINT32 address = db.Alloc(object.size(), vbReclaimNone);
  db.Write(object.data(), object.size(), address, false, true);
  db.WriteObjectChecksum(address);
  return address;
}

long BlockFile::AddObject(std::size_t length) {
  const long address = db.GetEOF() + 28L;
  return Add(Word(1) + Word(address) + std::string(length - 8, 'o'));
}

void BlockFile::Reopen(vbDatabaseAccessMode mode) {
  db.Close();
  db.Open(path_, mode);
}

void BlockFile::Patch(long offset, const std::string& bytes) {
  db.Close();
  PatchBytes(path_, offset, bytes);
  db.Open(path_, vbReadWrite);
}

void BlockFile::Resize(unsigned long size) {
  db.Close();
  std::filesystem::resize_file(path_, size);
  db.Open(path_, vbReadWrite);
}

std::string BlockFile::HexAt(long offset, unsigned long size) {
  if (db.IsWriteable()) db.Seek(0, vbSeekCurrent);
  // Only these bytes: some files are as long as the format allows.
  std::ifstream file(path_, std::ios::binary);
  file.seekg(offset);
  std::string bytes(size, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(size));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return Hex(bytes);
}
