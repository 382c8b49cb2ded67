#include "store/StringIO.h"

#include "store/KestErr.h"
#include "store/RecordIO.h"
#include "store/vbdbase.h"

unsigned long kestdb::StringFileLength(const std::string& text) {
  return sizeof(vbUINT32) + StoredLength(text);
}

void kestdb::ReadString(vbDatabase& file, std::string& text, vbINT32 address) {
  vbUINT32 length;
  file.Read(&length, sizeof length, address);
  if (static_cast<long>(length) > file.Length()) Throw<CFileCorrupt>();
  std::string bytes(length, '\0');
  file.Read(bytes.data(), length, vbCurrAddress);
  text = bytes.c_str();
}

void kestdb::WriteString(vbDatabase& file, const std::string& text, vbINT32 address) {
  const vbUINT32 length = StoredLength(text);
  file.Write(&length, sizeof length, address, false, true);
  file.Write(text.c_str(), length, vbCurrAddress, false, true);
}
