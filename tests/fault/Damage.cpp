#include "tests/fault/Damage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <random>

namespace {

constexpr std::size_t kTrees = 25;
constexpr unsigned kSeed = 20;
constexpr std::size_t kMostTold = 40;

/// Words that no checksum covers and nothing else in the file repeats: damage to them, as long as
/// it makes sense, can't be told from what was meant.
constexpr std::array kUnguarded = {"file header: end of file", "file header: heap start",
                                   "live block: status letter", "used tree: entry count"};

/// A count of cases for each field, with the first of them.
class Fields {
 public:
  void Add(const std::string& field, const std::string& note, std::size_t offset) {
    auto& [count, first, where] = fields_[field];
    if (count++ == 0) {
      first = note;
      where = offset;
    }
  }
  void Print(const char* what) const {
    for (const auto& [field, entry] : fields_) {
      std::printf("    %s: %4d in %s, first at %zu%s%s\n", what, entry.count, field.c_str(),
                  entry.where, entry.note.empty() ? "" : ": ", entry.note.c_str());
    }
  }

 private:
  struct Entry {
    int count = 0;
    std::string note;
    std::size_t where = 0;
  };
  std::map<std::string, Entry> fields_;
};

void Tell(const std::vector<Damage>& damages, const std::vector<CaseResult>& results,
          const FileMap& map) {
  std::array<int, 7> endings{};
  Fields silent;
  Fields late;
  Fields spread;
  std::size_t told = 0;
  for (std::size_t i = 0; i < damages.size(); ++i) {
    const CaseResult& result = results[i];
    ++endings[static_cast<std::size_t>(result.ending)];
    const std::string field = damages[i].turned == 0 ? "a cut file" : map.At(damages[i].offset);
    if (result.ending == Ending::Silent) {
      silent.Add(field, result.note, damages[i].offset);
      EXPECT_NE(std::find(kUnguarded.begin(), kUnguarded.end(), field), kUnguarded.end())
          << Describe(damages[i], map) << ": silently wrong, " << result.note;
    }
    if (result.ending == Ending::Reported && result.silentRead)
      late.Add(field, "", damages[i].offset);
    if (result.spread[0] != '\0') {
      spread.Add(field, result.spread + std::string(" lost"), damages[i].offset);
    }
    if (result.ending >= Ending::Failed && ++told <= kMostTold) {
      ADD_FAILURE() << Describe(damages[i], map) << ": " << EndingName(result.ending) << ", "
                    << result.note;
    }
  }
  for (std::size_t i = 0; i < endings.size(); ++i) {
    std::printf("  %s %d", EndingName(static_cast<Ending>(i)), endings[i]);
  }
  std::printf("\n");
  silent.Print("silently wrong");
  late.Print("told only after writing");
  spread.Print("damage spread");
}

}  // namespace

const std::string& BytesOf(const FilePair& files, Which file) {
  return file == Which::Data ? files.data : files.index;
}

const char* FileName(Which file) {
  return file == Which::Data ? "data" : "index";
}

FileMap MapOf(const FilePair& files, Which file) {
  return {BytesOf(files, file), file == Which::Index ? kTrees : 0};
}

FilePair Apply(FilePair files, const Damage& damage) {
  std::string& bytes = damage.file == Which::Data ? files.data : files.index;
  if (damage.turned == 0) {
    bytes.resize(damage.offset);
  } else {
    bytes[damage.offset] = static_cast<char>(bytes[damage.offset] ^ damage.turned);
  }
  return files;
}

std::string Describe(const Damage& damage, const FileMap& map) {
  char text[120];
  if (damage.turned == 0) {
    std::snprintf(text, sizeof text, "%s file cut to %zu", FileName(damage.file), damage.offset);
    return text;
  }
  std::snprintf(text, sizeof text, "%s file, byte %zu, bits %02X: ", FileName(damage.file),
                damage.offset, static_cast<unsigned>(damage.turned));
  return text + map.At(damage.offset);
}

std::vector<Damage> Inversions(const FilePair& files, Which file) {
  std::vector<Damage> damages;
  for (std::size_t i = 0; i < BytesOf(files, file).size(); ++i) {
    damages.push_back({file, i, 0xFF});
  }
  return damages;
}

std::vector<Damage> Cuts(const FilePair& files, Which file) {
  std::vector<Damage> damages;
  for (std::size_t i = 0; i < BytesOf(files, file).size(); ++i) {
    damages.push_back({file, i});
  }
  return damages;
}

std::vector<Damage> HeaderBits(const FilePair& files, Which file) {
  const FileMap map = MapOf(files, file);
  std::vector<Damage> damages;
  const auto add = [&](std::size_t from, std::size_t size) {
    for (std::size_t i = from; i < from + size; ++i) {
      for (int bit = 0; bit < 8; ++bit) {
        damages.push_back({file, i, static_cast<unsigned char>(1 << bit)});
      }
    }
  };
  constexpr std::size_t blockHeader = 28;
  add(0, map.Blocks().front());
  for (const std::size_t block : map.Blocks()) add(block, blockHeader);
  return damages;
}

std::vector<Damage> Sample(std::vector<Damage> damages, std::size_t count) {
  std::mt19937 random(kSeed);
  std::shuffle(damages.begin(), damages.end(), random);
  damages.resize(std::min(count, damages.size()));
  return damages;
}

std::vector<Damage> Part(const std::vector<Damage>& damages, std::size_t n, std::size_t parts) {
  const auto at = [&](std::size_t part) {
    return damages.begin() + static_cast<long>(damages.size() * part / parts);
  };
  return {at(n), at(n + 1)};
}

void ExerciseAll(const HostileStudy& study, const std::vector<Damage>& damages,
                 const std::string& title) {
  ASSERT_FALSE(damages.empty());
  const auto start = std::chrono::steady_clock::now();
  const auto results = RunCases(damages.size(), [&](std::size_t i) {
    return study.Exercise(Apply(study.Files(), damages[i]));
  });
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  const Which file = damages.front().file;
  std::printf("%s file of %zu bytes, %s: %zu cases in %.1f s\n", FileName(file),
              BytesOf(study.Files(), file).size(), title.c_str(), damages.size(), took.count());
  Tell(damages, results, MapOf(study.Files(), file));
}
