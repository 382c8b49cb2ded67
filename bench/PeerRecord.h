#pragma once

#include <array>
#include <string>

/// A design point as all stores of the comparison get it: a number and 27 reals, the size of which
/// is that of a CDPoint of 300 bytes in its block.
struct PeerRecord {
  static constexpr std::size_t kVariables = 17;
  static constexpr std::size_t kResponses = 10;

  /// The point of that number. Points of another `edition` have other values, in as many bytes.
  static PeerRecord Made(int number, int edition);

  /// Depends on the number and all values: what was read is compared with what was stored.
  double Fingerprint() const;

  int number = 0;
  std::array<double, kVariables> variables{};
  std::array<double, kResponses> responses{};
};

// The two forms in which the other stores keep a record, next to its number.

/// The values as they lie in memory, with as many bytes before them as a CDPoint's record has.
inline constexpr std::size_t kBlobSize =
    48 + sizeof(double) * (PeerRecord::kVariables + PeerRecord::kResponses);
std::string ToBlob(const PeerRecord& record);
PeerRecord FromBlob(const void* blob, std::size_t size);

/// An object of names and values.
std::string ToJson(const PeerRecord& record);
PeerRecord FromJson(const void* text, std::size_t size);
