#include "tests/support/Bytes.h"

#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
    throw std::runtime_error("cannot write " + path);
  }
}

void PatchBytes(const std::string& path, long offset, const std::string& bytes) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(offset);
  if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
    throw std::runtime_error("cannot patch " + path);
  }
}

std::string HexAt(const std::string& path, std::size_t offset, std::size_t size) {
  return Hex(ReadBytes(path).substr(offset, size));
}

std::string Bytes(const std::string& hex) {
  std::string digits;
  for (const char c : hex) {
    if (std::isspace(static_cast<unsigned char>(c)) == 0) digits += c;
  }
  if (digits.size() % 2 != 0) throw std::invalid_argument("an odd number of hex digits");
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

std::string Hex(const std::string& bytes) {
  std::string hex;
  for (const char c : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(c) & 0xFF);
    hex += (hex.empty() ? "" : " ") + std::string(digits);
  }
  return hex;
}
