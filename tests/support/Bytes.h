#pragma once

#include <string>

// Files as strings of bytes, and bytes as they are typed in a test.

/// The whole file. Throws std::runtime_error when it can't be read.
std::string ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, const std::string& bytes);
/// Overwrites the bytes at `offset` of an existing file.
void PatchBytes(const std::string& path, long offset, const std::string& bytes);

/// `size` bytes of the file from `offset` on, as hex.
std::string HexAt(const std::string& path, std::size_t offset, std::size_t size);

/// "DE AD be ef" as four bytes; blanks and line ends don't count.
std::string Bytes(const std::string& hex);
/// Bytes as "DE AD BE EF".
std::string Hex(const std::string& bytes);
