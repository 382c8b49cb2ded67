#include "index/KSBKey.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "index/dbasekey.h"
#include "tests/support/Bytes.h"

namespace {

/// The 72 bytes that a tree would copy.
std::string Image(KSBKey& key) {
  return {static_cast<const char*>(key.KeyData),
          static_cast<std::size_t>(key.KeySize().PackBits())};
}

std::string ZeroBytes(std::size_t count) {
  return std::string(count, '\0');
}

KSBKey Named(const char* name) {
  return {name, 0, 0};
}

/// A key class of somebody else's.
class CountedKey : public DatabaseKeyB {
 public:
  CountedKey(void* image, int& destroyed) : DatabaseKeyB(image), destroyed_(destroyed) {}
  ~CountedKey() override { ++destroyed_; }
  vbINT32 KeySize() override { return 4; }
  bool operator==(const DatabaseKeyB& other) const override { return KeyData == other.KeyData; }
  bool operator>(const DatabaseKeyB&) const override { return false; }

 private:
  int& destroyed_;
};

TEST(DatabaseKeyB, StartsWithTheImageItIsGivenAndNoBranch) {
  char image[4];
  int destroyed = 0;
  const CountedKey key(image, destroyed);
  EXPECT_EQ(key.KeyData, image);
  EXPECT_EQ(key.Branch, 0);
}

TEST(DatabaseKeyB, IsDestroyedThroughItsBaseAndLeavesTheImageToItsOwner) {
  char image[4] = {1, 2, 3, 4};
  int destroyed = 0;
  std::unique_ptr<DatabaseKeyB> key = std::make_unique<CountedKey>(image, destroyed);
  key.reset();
  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(Hex({image, 4}), "01 02 03 04");
}

TEST(KSBKey, EmptyKeyIsAllZero) {
  KSBKey key;
  EXPECT_EQ(Image(key), ZeroBytes(72));
  EXPECT_EQ(key.Branch, 0);
  EXPECT_EQ(key.ObjectAddress, 0);
  EXPECT_EQ(key.ObjectClassID, 0);
}

TEST(KSBKey, ImageIsNameAddressAndClassWithoutAGap) {
  KSBKey key("AB", 0x01020304, -2);
  EXPECT_EQ(key.KeySize(), 72);
  EXPECT_EQ(key.KeyData, static_cast<void*>(key.ObjectName));
  EXPECT_EQ(Image(key), Bytes("41 42") + ZeroBytes(62) + Bytes("04 03 02 01  FE FF FF FF"));
}

TEST(KSBKey, NameOf63CharactersIsWhole) {
  const std::string name(63, 'n');
  KSBKey key(name.c_str(), 1, 2);
  EXPECT_STREQ(key.ObjectName, name.c_str());
  EXPECT_EQ(key.ObjectName[63], '\0');
}

TEST(KSBKey, NameOf64CharactersAndMoreIsCutTo63) {
  for (const std::size_t length : {64u, 65u, 500u}) {
    const std::string name = std::string(62, 'n') + 'l' + std::string(length - 63, 'x');
    KSBKey key(name.c_str(), 0x11111111, 0x22222222);
    const std::string kept = std::string(62, 'n') + 'l';
    EXPECT_EQ(Image(key), kept + '\0' + Bytes("11 11 11 11 22 22 22 22")) << length;
    key.SetObjectName("");
    key.SetObjectName(name.c_str());
    EXPECT_EQ(Image(key), kept + '\0' + Bytes("11 11 11 11 22 22 22 22")) << length;
  }
}

TEST(KSBKey, SettingAShorterNameLeavesNothingOfTheLongerOne) {
  KSBKey key(std::string(63, 'n').c_str(), 5, 6);
  key.SetObjectName("ab");
  EXPECT_EQ(Image(key), Bytes("61 62") + ZeroBytes(62) + Bytes("05 00 00 00  06 00 00 00"));
}

TEST(KSBKey, KeysOfOneNameAreEqualWhateverTheRestSays) {
  const KSBKey key("name", 1, 2);
  for (const KSBKey& same : {KSBKey("name", 3, 2), KSBKey("name", 1, 4), KSBKey("name", 5, 6)}) {
    EXPECT_TRUE(key == same);
    EXPECT_TRUE(key == static_cast<const DatabaseKeyB&>(same));
    EXPECT_FALSE(key > same);
    EXPECT_FALSE(same > key);
  }
}

TEST(KSBKey, NamesAreOrderedByTheirBytes) {
  const char* const ascending[] = {"",   " ", "          2", "         10", "A",
                                   "AA", "B", "a",           "z",           "\xE9"};
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < std::size(ascending); ++j) {
      const KSBKey left = Named(ascending[i]);
      const KSBKey right = Named(ascending[j]);
      EXPECT_EQ(left > right, i > j) << ascending[i] << " and " << ascending[j];
      EXPECT_EQ(left == right, i == j) << ascending[i] << " and " << ascending[j];
    }
  }
}

TEST(KSBKey, TheBytesBehindTheNameTakeNoPartInAComparison) {
  KSBKey one = Named("name");
  KSBKey two = Named("name");
  std::memset(two.ObjectName + 5, 'x', 59);
  EXPECT_TRUE(one == two);
  EXPECT_FALSE(one > two);
  EXPECT_FALSE(two > one);
}

TEST(KSBKey, NamesWithoutATerminatorAreComparedToTheirEnd) {
  // As a damaged file may hold them, on the heap so that a look behind them would be noticed.
  const auto unterminated = [](char last) {
    auto key = std::make_unique<KSBKey>();
    std::memset(key->KeyData, 'n', 72);
    key->ObjectName[63] = last;
    return key;
  };
  const auto one = unterminated('n'), same = unterminated('n'), greater = unterminated('o');
  one->ObjectAddress = 0x6F6F6F6F;
  EXPECT_TRUE(*one == *same);
  EXPECT_FALSE(*one > *same);
  EXPECT_FALSE(*one == *greater);
  EXPECT_TRUE(*greater > *one);
  EXPECT_TRUE(*one > Named(std::string(63, 'n').c_str()));
}

TEST(KSBKey, ACopyHasAnImageOfItsOwn) {
  KSBKey key("first", 1, 2);
  key.Branch = 3;
  KSBKey copy(key);
  KSBKey assigned;
  assigned = key;
  key.SetObjectName("second");
  key.ObjectAddress = 9;
  for (KSBKey* const each : {&copy, &assigned}) {
    EXPECT_EQ(each->KeyData, static_cast<void*>(each->ObjectName));
    EXPECT_EQ(Image(*each),
              Bytes("66 69 72 73 74") + ZeroBytes(59) + Bytes("01 00 00 00  02 00 00 00"));
    EXPECT_EQ(each->Branch, 3);
  }
}

TEST(KSBKey, AKeyMayBeAssignedToItself) {
  KSBKey key("name", 1, 2);
  const KSBKey& same = key;
  key = same;
  EXPECT_STREQ(key.ObjectName, "name");
  EXPECT_EQ(key.ObjectAddress, 1);
}

}  // namespace
