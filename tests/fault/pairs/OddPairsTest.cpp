#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/fault/Forgery.h"
#include "tests/fault/pairs/Matches.h"
#include "tests/fault/pairs/PairChecks.h"
#include "tests/fault/pairs/PairRun.h"
#include "tests/support/Bytes.h"

// Pairs of which a file is missing, no file at all, of another make, or left by an upkeep that
// died.

namespace fs = std::filesystem;

namespace {

/// Removes what lies in the way of a file and puts its bytes there.
std::function<void(const std::string&)> PutBack(const char* extension, const std::string& bytes) {
  return [=](const std::string& base) {
    fs::remove_all(base + extension);
    WriteBytes(base + extension, bytes);
  };
}

const std::string& WholeData() {
  return Files().whole.data;
}
const std::string& WholeIndex() {
  return Files().whole.index;
}

}  // namespace

// ---- Missing, empty, in the way ----

TEST(OddPairs, MissingIndex) {
  Pair pair = Of(WholeData(), "");
  pair.index.reset();
  const Outcome outcome = TakeCourses("a file is missing", "the index", pair);
  ExpectRead(outcome.read, CountOf(pair));
  EXPECT_STREQ(outcome.read.fileCheck, "");
  EXPECT_STREQ(outcome.read.indexCheck, kNoFile);
  ExpectHealed(outcome, CountOf(pair));
}

/// Opening makes a new study. There is nothing to check or to rebuild.
void ExpectNewStudy(const Outcome& outcome) {
  ExpectRead(outcome.read, 3);
  EXPECT_STREQ(outcome.read.fileCheck, kNoFile);
  EXPECT_STREQ(outcome.read.indexCheck, kNoFile);
  EXPECT_STREQ(outcome.rebuilt.fileRebuild, kNoFile);
  EXPECT_STREQ(outcome.rebuilt.indexRebuild, kNoFile);
  EXPECT_EQ(outcome.opened.atLast, (Tally{.right = 3}));
}

TEST(OddPairs, MissingData) {
  Pair pair{{}, WholeIndex(), {}, KnownIn(Files().fresh.data)};
  ExpectNewStudy(TakeCourses("a file is missing", "the data", pair));
}

TEST(OddPairs, BothMissing) {
  const Pair pair{{}, {}, {}, KnownIn(Files().fresh.data)};
  ExpectNewStudy(TakeCourses("a file is missing", "both", pair));
}

TEST(OddPairs, SwappedNames) {
  Pair pair = Of(WholeData(), WholeIndex());
  pair.data = WholeIndex();
  pair.index = WholeData();
  pair.known.setRight = [](const std::string& base) {
    fs::rename(base + ".ksb", base + ".swap");
    fs::rename(base + ".kx", base + ".ksb");
    fs::rename(base + ".swap", base + ".kx");
  };
  const Outcome outcome = TakeCourses("swapped names", "swapped names", pair);
  EXPECT_FALSE(outcome.read.isOpen);
  ExpectHealed(outcome, CountOf(pair));
}

TEST(OddPairs, EmptyIndexFile) {
  const Pair pair = Of(WholeData(), "");
  const Outcome outcome = TakeCourses("a file of no bytes", "the index", pair);
  EXPECT_FALSE(outcome.read.isOpen);
  EXPECT_STREQ(outcome.read.fileCheck, "");
  EXPECT_STRNE(outcome.read.indexCheck, "");
  ExpectHealed(outcome, CountOf(pair));
}

TEST(OddPairs, EmptyDataFile) {
  for (const bool both : {false, true}) {
    Pair pair = Of(WholeData(), both ? "" : WholeIndex());
    pair.data = "";
    pair.known.setRight = PutBack(".ksb", WholeData());
    const Outcome outcome = TakeCourses("a file of no bytes", both ? "both" : "the data", pair);
    EXPECT_FALSE(outcome.read.isOpen);
    EXPECT_STRNE(outcome.read.fileCheck, "");
    EXPECT_STRNE(outcome.read.indexCheck, "");
    ExpectHealed(outcome, CountOf(pair));
  }
}

TEST(OddPairs, FolderInThePlaceOfTheIndex) {
  for (const bool filled : {false, true}) {
    Pair pair = Of(WholeData(), "");
    pair.index.reset();
    pair.arrange = [filled](const std::string& base) {
      fs::create_directory(base + ".kx");
      if (filled) WriteBytes(base + ".kx/file", "x");
    };
    pair.known.setRight = [](const std::string& base) {
      fs::remove_all(base + ".kx.old");
      fs::remove_all(base + ".kx");
    };
    const Outcome outcome = TakeCourses("a folder in a file's place",
                                        filled ? "the index, a file in it" : "the index", pair);
    EXPECT_FALSE(outcome.read.isOpen);
    EXPECT_STREQ(outcome.read.fileCheck, "");
    EXPECT_STRNE(outcome.read.indexCheck, "");
    ExpectHealed(outcome, CountOf(pair));
  }
}

TEST(OddPairs, FolderInThePlaceOfTheData) {
  Pair pair = Of(WholeData(), WholeIndex());
  pair.data.reset();
  pair.arrange = [](const std::string& base) { fs::create_directory(base + ".ksb"); };
  pair.known.setRight = PutBack(".ksb", WholeData());
  const Outcome outcome = TakeCourses("a folder in a file's place", "the data", pair);
  EXPECT_FALSE(outcome.read.isOpen);
  EXPECT_STRNE(outcome.read.fileCheck, "");
  ExpectHealed(outcome, CountOf(pair));
}

TEST(OddPairs, FilesThatTheirOwnerMustNotChange) {
  for (const char* file : {".ksb", ".kx"}) {
    for (const mode_t mode : {0444U, 0222U}) {
      Pair pair = Of(WholeData(), WholeIndex());
      pair.arrange = [=](const std::string& base) { chmod((base + file).c_str(), mode); };
      pair.known.setRight = [=](const std::string& base) { chmod((base + file).c_str(), 0644); };
      const Outcome outcome = TakeCourses(
          "files without permissions",
          std::string(file) + (mode == 0444U ? " can't be written" : " can't be read"), pair);
      EXPECT_STREQ(outcome.read.opened, mode == 0444U ? "File not writeable" : "ReadOnlyFile");
      ExpectHealed(outcome, CountOf(pair));
    }
  }
}

// ---- Index files of another make ----

TEST(OddPairs, IndexOfAnotherRevision) {
  constexpr std::size_t revision = 23;
  for (const int letter : {0x00, 0x20, 0x41, 0x42, 0x44}) {
    Forgery forged(Files().whole);
    forged.SetByte(Which::Index, revision, static_cast<unsigned char>(letter));
    const Pair pair = Of(WholeData(), forged.Files().index);
    const Outcome outcome =
        TakeCourses("index of another make", "revision letter " + std::to_string(letter), pair);
    ExpectHealed(outcome, CountOf(pair));
  }
}

TEST(OddPairs, IndexOfAnotherVersion) {
  constexpr std::size_t version = 24;
  Forgery forged(Files().whole);
  forged.Set(Which::Index, version, 3000);
  const Pair pair = Of(WholeData(), forged.Files().index);
  ExpectUnchanged(TakeCourses("index of another make", "version 3000", pair), CountOf(pair));
}

TEST(OddPairs, IndexOfAnotherOrder) {
  for (const int order : {5, 7, 29, 32}) {
    const FilePair files = WithOrder(Files().whole, order);
    const Pair pair = Of(files.data, files.index);
    ExpectUnchanged(TakeCourses("index of another make", "order " + std::to_string(order), pair),
                    CountOf(pair));
  }
}

TEST(OddPairs, TreesInOtherSlots) {
  struct Slots {
    const char* name;
    std::string index;
    bool sameKeys = false;  ///< in both, where a check sees no difference
  };
  for (const auto& [name, index, sameKeys] :
       {Slots{"CInput and CResp", Exchanged(WholeIndex(), 0, 18)},
        {"CDVar and CDResp", Exchanged(WholeIndex(), 3, 4), true},
        {"CGPoint and CDBCtrl", Exchanged(WholeIndex(), 14, 15), true},
        {"CDBCtrl and none", Exchanged(WholeIndex(), 15, 23)},
        {"CDPoint and none", Exchanged(WholeIndex(), 11, 24)},
        {"all by one", Moved(WholeIndex())}}) {
    const Pair pair = Of(WholeData(), index);
    const Outcome outcome = TakeCourses("trees in other slots", name, pair);
    EXPECT_STREQ(outcome.read.fileCheck, "");
    EXPECT_EQ(std::string(outcome.read.indexCheck).empty(), sameKeys) << name;
    ExpectHealed(outcome, CountOf(pair));
  }
}

// ---- Left behind by an upkeep that died ----

TEST(OddPairs, IndexPutAside) {
  for (const auto& [name, index, old] :
       {std::tuple{".kx.old alone", std::string(), WholeIndex()},
        {".kx.old beside an index only begun", Files().empty.index, WholeIndex()},
        {".kx.old of another study", WholeIndex(), Files().foreign.index}}) {
    Pair pair = Of(WholeData(), index);
    if (index.empty()) pair.index.reset();
    pair.arrange = [&old = old](const std::string& base) { WriteBytes(base + ".kx.old", old); };
    const Outcome outcome = TakeCourses("left by a rebuild that died", name, pair);
    ExpectRead(outcome.read, CountOf(pair));
    ExpectHealed(outcome, CountOf(pair));
  }
}

TEST(OddPairs, MarkBesideTheIndex) {
  for (const auto& [name, index] : {std::pair{"mark, older index", Files().less.index},
                                    {"mark, foreign index", Files().foreign.index},
                                    {"mark, index only begun", Files().empty.index},
                                    {"mark, empty index", std::string()}}) {
    Pair pair = Of(WholeData(), index);
    pair.arrange = [](const std::string& base) { WriteBytes(base + ".kx.new", ""); };
    const Outcome outcome = TakeCourses("left by a rebuild that died", name, pair);
    ExpectRead(outcome.read, CountOf(pair));
    ExpectHealed(outcome, CountOf(pair));
  }
}

TEST(OddPairs, CopyBesideTheData) {
  Pair pair = Of(WholeData(), WholeIndex());
  pair.arrange = [](const std::string& base) {
    WriteBytes(base + ".ksb.new", WholeData().substr(0, WholeData().size() / 2));
  };
  ExpectUnchanged(TakeCourses("left by a rebuild that died", "half a copy beside the data", pair),
                  CountOf(pair));
}

TEST(OddPairs, CopyInThePlaceOfTheData) {
  const FilePair files = Compacted(Files().whole);
  Pair pair = Of(files.data, WholeIndex());
  pair.data.reset();
  pair.arrange = [&](const std::string& base) { WriteBytes(base + ".ksb.new", files.data); };
  pair.known.setRight = [](const std::string& base) {
    fs::rename(base + ".ksb.new", base + ".ksb");
  };
  const Outcome outcome = TakeCourses("left by a rebuild that died", "the copy alone", pair);
  EXPECT_STREQ(outcome.read.opened, kNoFile);
  EXPECT_STREQ(outcome.read.fileCheck, kNoFile);
  ExpectHealed(outcome, CountOf(pair));
}

// ---- A data file of the version before ----

TEST(OddPairs, DataOfTheVersionBefore) {
  constexpr std::size_t version = 24;
  Forgery forged(Files().whole);
  forged.Set(Which::Data, version, 3000);
  for (const auto& [name, index] : {std::pair{"its own index", WholeIndex()},
                                    {"an older index", Files().less.index},
                                    {"a foreign index", Files().foreign.index},
                                    {"an empty index", std::string()}}) {
    const Pair pair = Of(forged.Files().data, index);
    const Outcome outcome = TakeCourses("data file of the version before",
                                        std::string("data of version 3000, ") + name, pair);
    ExpectRead(outcome.read, CountOf(pair));
    ExpectHealed(outcome, CountOf(pair));
  }
}
