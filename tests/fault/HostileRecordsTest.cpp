#include <gtest/gtest.h>

#include <cstdint>

#include "tests/fault/Forgery.h"

// Records whose counts, lengths and headers lie, behind checksums that are right.

namespace {

constexpr std::uint32_t kAllOnes = 0xFFFFFFFF;
constexpr std::uint32_t kBlockHeader = 28;

/// Words of one object, each `offset` bytes behind the object address.
class Words {
 public:
  Words(const HostileStudy& study, const KnownObject& object) : study_(study), object_(object) {}

  void Add(const std::string& name, std::uint32_t offset, std::uint32_t old, std::uint32_t value,
           const std::string& told, Ending worst = Ending::Reported) {
    const auto address = static_cast<std::size_t>(object_.address);
    Forgery forged(study_);
    forged.Change(Which::Data, address + offset, old, value)
        .Seal(Which::Data, address - kBlockHeader);
    values_.push_back({name, forged, worst, object_.address, told});
  }
  void Run() const { ExerciseAll(study_, values_, Writing::LosesNothing); }

 private:
  const HostileStudy& study_;
  const KnownObject& object_;
  std::vector<HostileValue> values_;
};

}  // namespace

// Sample 2: header 8, version 4, ID 4, number 4, flags 4, real 8; at 32 a text of 55 bytes, at 91
// four numbers, at 111 four reals, at 147 texts of 42, 55, 7 and 20 bytes, at 291 rows of 0, 1, 2
// and 3 reals, at 359 the last number; 363 bytes in all.

TEST(HostileRecords, CountsAndLengths) {
  const HostileStudy study;
  Words words(study, study.Object(Kind::Sample, 2));
  const char* const corrupt = "File corrupt";
  words.Add("text of 2^32-1 bytes", 32, 55, kAllOnes, corrupt);
  words.Add("text of 2^31-1 bytes", 32, 55, 0x7FFFFFFF, corrupt);
  words.Add("text a byte longer than the object", 32, 55, 328, corrupt);
  words.Add("text to the end of the object", 32, 55, 327, corrupt);
  words.Add("2^32-1 numbers", 91, 4, kAllOnes, corrupt);
  words.Add("2^30 numbers, 2^32 bytes", 91, 4, 0x40000000, corrupt);
  words.Add("2^30+1 numbers", 91, 4, 0x40000001, corrupt);
  words.Add("a number more than the object holds", 91, 4, 68, corrupt);
  words.Add("2^32-1 reals", 111, 4, kAllOnes, corrupt);
  words.Add("2^29 reals, 2^32 bytes", 111, 4, 0x20000000, corrupt);
  words.Add("a real more than the object holds", 111, 4, 32, corrupt);
  words.Add("2^32-1 texts", 147, 4, kAllOnes, corrupt);
  words.Add("a text more than the object could hold", 147, 4, 54, corrupt);
  words.Add("as many texts as the object could hold", 147, 4, 53, corrupt);
  words.Add("text of 2^32-1 bytes among texts", 151, 42, kAllOnes, corrupt);
  words.Add("2^32-1 rows", 291, 4, kAllOnes, corrupt);
  words.Add("2^31 rows", 291, 4, 0x80000000, corrupt);
  words.Add("a row more than the object could hold", 291, 4, 18, corrupt);
  words.Add("as many rows as the object could hold", 291, 4, 17, corrupt);
  words.Add("row of 2^32-1 reals", 295, 0, kAllOnes, corrupt);
  words.Add("row of 2^29 reals", 299, 1, 0x20000000, corrupt);
  words.Add("last row a real longer", 331, 3, 4, corrupt);
  words.Run();
}

TEST(HostileRecords, CountsInTheDesignPoints) {
  const HostileStudy study;
  Words words(study, study.Object(Kind::Points, 0));
  // At 12, 28 and 44 three flags each; at 60 rows of three reals, at 148 rows of 0, 1 and 2.
  for (const std::uint32_t count : {kAllOnes, 0x80000000U, 0x40000000U, 0x20000000U, 60U}) {
    const std::string name = std::to_string(count);
    words.Add(name + " points used", 12, 3, count, "File corrupt");
    words.Add(name + " points run", 28, 3, count, "File corrupt");
    words.Add(name + " points locked", 44, 3, count, "File corrupt");
    words.Add(name + " rows of variables", 60, 3, count, "File corrupt");
    words.Add(name + " reals in a row of variables", 64, 3, count, "File corrupt");
    words.Add(name + " rows of responses", 148, 3, count, "File corrupt");
    words.Add(name + " reals in a row of responses", 152, 0, count, "File corrupt");
  }
  words.Run();
}

TEST(HostileRecords, LengthOfAPlainText) {
  const HostileStudy study;
  Words words(study, study.Object(Kind::Plain, 10));
  // At 16 a text of 130 % 61 = 8 bytes: 28 in all.
  words.Add("2^32-1 bytes", 16, 8, kAllOnes, "File corrupt");
  words.Add("2^31-1 bytes", 16, 8, 0x7FFFFFFF, "File corrupt");
  words.Add("a byte more than the object", 16, 8, 9, "File corrupt");
  words.Add("no byte", 16, 8, 0, "", Ending::Clean);
  words.Run();
}

TEST(HostileRecords, ClassID) {
  const HostileStudy study;
  Words words(study, study.Object(Kind::Sample, 2));
  for (const std::uint32_t id : {24000U, 25000U, 15000U, 0U, kAllOnes, 0x7FFFFFFFU}) {
    words.Add("class " + std::to_string(id), 0, 23000, id, "Bad class ID");
  }
  words.Run();
}

TEST(HostileRecords, ObjectAddressThatLies) {
  const HostileStudy study;
  const KnownObject& object = study.Object(Kind::Sample, 2);
  const auto own = static_cast<std::uint32_t>(object.address);
  const auto other = static_cast<std::uint32_t>(study.Object(Kind::Plain, 10).address);
  Words words(study, object);
  for (const std::uint32_t lie :
       {0U, 28U, own - 28, own + 1, other, other - 28, kAllOnes, 0x7FFFFFFFU, 0x80000000U}) {
    words.Add("address " + std::to_string(lie), 4, own, lie, "", Ending::Clean);
  }
  words.Run();
}

TEST(HostileRecords, VersionThatWasNeverWritten) {
  const HostileStudy study;
  Words words(study, study.Object(Kind::Sample, 2));
  for (const std::uint32_t version : {0U, 1U, 3U, 0x7FFFFFFFU, 0x80000000U, kAllOnes}) {
    words.Add("version " + std::to_string(version), 8, 2, version, "", Ending::Clean);
  }
  words.Run();
}

TEST(HostileRecords, KeyFieldsOfAnotherObject) {
  const HostileStudy study;
  Words words(study, study.Object(Kind::Sample, 2));
  const char* const mismatch = "Index file does not match the data file";
  for (const std::uint32_t id : {0U, 1U, 5U, 0x7FFFFFFFU, 0x80000000U, kAllOnes}) {
    words.Add("ID " + std::to_string(id), 12, 2, id, mismatch);
  }
  words.Add("number 0", 16, 2, 0, mismatch);
  words.Add("number -1", 16, 2, kAllOnes, mismatch);
  words.Run();
}
