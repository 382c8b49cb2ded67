#pragma once

#include "store/api.h"

// The CRC-32 of ISO 3309 and ITU-T V.42, which guards every object and the read-back of every
// write: reflected polynomial 0xEDB88320, initial value 0xFFFFFFFF, final complement.

/// The CRC-32 of `length` bytes; 0 for no bytes.
KESTDB_API unsigned long calcCRC32(const char* data, unsigned int length);
KESTDB_API unsigned long calcCRC32(char* data, unsigned int length);

/// One step: the running value `crc` after one more byte. The caller starts with 0xFFFFFFFF and
/// complements the low 32 bits at the end.
KESTDB_API unsigned long calcCRC32(unsigned char byte, unsigned long crc);

/// The table of the step: entry n is the running value 0 after byte n.
extern KESTDB_API const unsigned long crc32tab[256];
