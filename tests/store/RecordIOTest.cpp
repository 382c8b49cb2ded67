#include "store/RecordIO.h"

#include <gtest/gtest.h>

#include <string>
#include <valarray>
#include <vector>

#include "store/KestErr.h"
#include "store/vbscalar.h"
#include "tests/support/Bytes.h"

namespace {

using kestdb::RecordMeter;
using kestdb::RecordReader;
using kestdb::RecordWriter;

using Integers = std::vector<vbINT32>;
using Reals = std::vector<vbFLOAT64>;
using Texts = std::vector<std::string>;

/// What the fields look like in a record, as hex.
template <class... Fields>
std::string Written(const Fields&... fields) {
  std::vector<char> record;
  RecordWriter file(record);
  file(fields...);
  return Hex(std::string(record.begin(), record.end()));
}

template <class... Fields>
std::size_t Length(const Fields&... fields) {
  RecordMeter file;
  file(fields...);
  return file.Length();
}

/// Reads `fields` from a record of version 1 whose bytes behind the version are told as hex.
template <class... Fields>
void Take(const std::string& hex, Fields&... fields) {
  const std::string record = Bytes("01 00 00 00" + hex);
  RecordReader file(record);
  file(fields...);
}

template <class Field>
Field Taken(const std::string& hex) {
  Field field{};
  Take(hex, field);
  return field;
}

// ---- Writing ----

TEST(RecordWriting, IntegersAreLeastSignificantByteFirst) {
  EXPECT_EQ(Written(vbINT32(1)), "01 00 00 00");
  EXPECT_EQ(Written(vbINT32(-2)), "FE FF FF FF");
  EXPECT_EQ(Written(vbUINT32(0xFEDCBA98)), "98 BA DC FE");
}

TEST(RecordWriting, RealsAreMostSignificantByteFirst) {
  EXPECT_EQ(Written(vbFLOAT64(1.0)), "3F F0 00 00 00 00 00 00");
  EXPECT_EQ(Written(vbFLOAT64(-0.1)), "BF B9 99 99 99 99 99 9A");
}

TEST(RecordWriting, AStringStandsBehindItsLength) {
  EXPECT_EQ(Written(std::string("abc")), "03 00 00 00 61 62 63");
  EXPECT_EQ(Written(std::string(" ")), "01 00 00 00 20");
}

TEST(RecordWriting, AnEmptyStringIsOneZeroByte) {
  EXPECT_EQ(Written(std::string()), "01 00 00 00 00");
}

TEST(RecordWriting, AStringKeepsAllItsBytes) {
  EXPECT_EQ(Written(std::string("a\0b", 3)), "03 00 00 00 61 00 62");
  EXPECT_EQ(Written(std::string("\xE4\xFF")), "02 00 00 00 E4 FF");
}

TEST(RecordWriting, AVectorStandsBehindItsCount) {
  EXPECT_EQ(Written(Integers{1, -1}), "02 00 00 00 01 00 00 00 FF FF FF FF");
  EXPECT_EQ(Written(std::vector<vbUINT32>{7}), "01 00 00 00 07 00 00 00");
  EXPECT_EQ(Written(Reals{0.5}), "01 00 00 00 3F E0 00 00 00 00 00 00");
}

TEST(RecordWriting, AnEmptyVectorIsItsCountAlone) {
  EXPECT_EQ(Written(Integers{}), "00 00 00 00");
  EXPECT_EQ(Written(Texts{}), "00 00 00 00");
  EXPECT_EQ(Written(std::vector<Reals>{}), "00 00 00 00");
}

TEST(RecordWriting, AVectorOfStringsIsACountAndTheStrings) {
  EXPECT_EQ(Written(Texts{"x", ""}), "02 00 00 00 01 00 00 00 78 01 00 00 00 00");
}

TEST(RecordWriting, AnArrayIsStoredAsAVectorOfItsPortableTypeIs) {
  const std::string integers = "02 00 00 00 01 00 00 00 FE FF FF FF";
  const std::string reals = "01 00 00 00 BF F0 00 00 00 00 00 00";
  EXPECT_EQ(Written(std::valarray<vbINT32>{1, -2}), integers);
  EXPECT_EQ(Written(std::valarray<int>{1, -2}), integers);
  EXPECT_EQ(Written(std::valarray<vbFLOAT64>{-1.0}), reals);
  EXPECT_EQ(Written(std::valarray<double>{-1.0}), reals);
  EXPECT_EQ(Written(std::valarray<double>()), "00 00 00 00");
}

TEST(RecordWriting, RowsOfAVectorOfVectorsMayDiffer) {
  EXPECT_EQ(Written(std::vector<Integers>{{1, 2}, {}, {3}}),
            "03 00 00 00 "
            "02 00 00 00 01 00 00 00 02 00 00 00 "
            "00 00 00 00 "
            "01 00 00 00 03 00 00 00");
}

TEST(RecordWriting, FieldsFollowEachOtherWithNothingBetween) {
  EXPECT_EQ(Written(std::string("a"), vbFLOAT64(2.0), vbINT32(3)),
            "01 00 00 00 61 40 00 00 00 00 00 00 00 03 00 00 00");
}

TEST(RecordWriting, FieldsOfEveryVersionAreWritten) {
  std::vector<char> record;
  RecordWriter file(record);
  file.since(1, vbINT32(1));
  file.since(99, vbINT32(2));
  EXPECT_EQ(Hex(std::string(record.begin(), record.end())), "01 00 00 00 02 00 00 00");
}

// ---- Measuring ----

TEST(RecordLength, IsTheSumOfTheFields) {
  EXPECT_EQ(Length(), 0U);
  EXPECT_EQ(Length(vbINT32(), vbUINT32(), vbFLOAT64()), 16U);
  EXPECT_EQ(Length(std::string("abc")), 7U);
  EXPECT_EQ(Length(std::string()), 5U);
  EXPECT_EQ(Length(std::string(" ")), 5U);
  EXPECT_EQ(Length(Integers(3)), 16U);
  EXPECT_EQ(Length(Integers()), 4U);
  EXPECT_EQ(Length(Reals(3)), 28U);
  EXPECT_EQ(Length(Texts{"abc", ""}), 16U);
  EXPECT_EQ(Length(std::vector<Reals>{{1.0}, {}, {1.0, 2.0}}), 40U);
}

TEST(RecordLength, OfAnArrayIsThatOfItsPortableElements) {
  EXPECT_EQ(Length(std::valarray<int>{1, 2}), 12U);
  EXPECT_EQ(Length(std::valarray<double>{1, 2}), 20U);
}

TEST(RecordLength, CountsFieldsOfEveryVersion) {
  RecordMeter file;
  file.since(99, vbINT32(), std::string("ab"));
  EXPECT_EQ(file.Length(), 10U);
}

// ---- Reading ----

TEST(RecordReading, Scalars) {
  EXPECT_EQ(Taken<vbINT32>("FE FF FF FF"), -2);
  EXPECT_EQ(Taken<vbUINT32>("98 BA DC FE"), 0xFEDCBA98UL);
  EXPECT_EQ(Taken<vbFLOAT64>("BF B9 99 99 99 99 99 9A"), -0.1);
}

TEST(RecordReading, Strings) {
  EXPECT_EQ(Taken<std::string>("03 00 00 00 61 62 63"), "abc");
  EXPECT_EQ(Taken<std::string>("01 00 00 00 20"), " ");
  EXPECT_EQ(Taken<std::string>("01 00 00 00 00"), "");
  EXPECT_EQ(Taken<std::string>("00 00 00 00"), "");
}

TEST(RecordReading, TextBehindAZeroByteIsLostAndTheNextFieldIsNot) {
  std::string text;
  vbINT32 next;
  Take("05 00 00 00 61 62 00 63 64 07 00 00 00", text, next);
  EXPECT_EQ(text, "ab");
  EXPECT_EQ(next, 7);
}

TEST(RecordReading, Vectors) {
  EXPECT_EQ(Taken<Integers>("02 00 00 00 01 00 00 00 FF FF FF FF"), (Integers{1, -1}));
  EXPECT_EQ(Taken<Reals>("01 00 00 00 3F E0 00 00 00 00 00 00"), Reals{0.5});
  EXPECT_EQ(Taken<Texts>("02 00 00 00 01 00 00 00 78 01 00 00 00 00"), (Texts{"x", ""}));
  EXPECT_EQ(Taken<std::vector<Integers>>("02 00 00 00 00 00 00 00 01 00 00 00 03 00 00 00"),
            (std::vector<Integers>{{}, {3}}));
}

TEST(RecordReading, Arrays) {
  const auto integers = Taken<std::valarray<int>>("02 00 00 00 01 00 00 00 FE FF FF FF");
  ASSERT_EQ(integers.size(), 2U);
  EXPECT_EQ(integers[0], 1);
  EXPECT_EQ(integers[1], -2);
  const auto reals = Taken<std::valarray<double>>("01 00 00 00 BF F0 00 00 00 00 00 00");
  ASSERT_EQ(reals.size(), 1U);
  EXPECT_EQ(reals[0], -1.0);
  EXPECT_EQ(Taken<std::valarray<vbFLOAT64>>("00 00 00 00").size(), 0U);
  EXPECT_THROW(Taken<std::valarray<double>>("02 00 00 00 BF F0 00 00 00 00 00 00"), CFileCorrupt);
}

TEST(RecordReading, WhatAFieldHeldBeforeIsGone) {
  Integers numbers{1, 2, 3};
  Texts texts{"old", "older"};
  Take("01 00 00 00 09 00 00 00 00 00 00 00", numbers, texts);
  EXPECT_EQ(numbers, Integers{9});
  EXPECT_TRUE(texts.empty());
}

TEST(RecordReading, StartsWithTheStoredVersion) {
  const std::string record = Bytes("16 00 00 00 05 00 00 00");
  RecordReader file(record);
  EXPECT_EQ(file.StoredVersion(), 22);
  vbINT32 field;
  file(field);
  EXPECT_EQ(field, 5);
}

/// The two fields of a class whose second one came with version 3, as a record holds them.
std::vector<long> FieldsOf(const std::string& record) {
  const std::string bytes = Bytes(record);
  vbINT32 first = -1;
  vbINT32 second = -2;
  RecordReader file(bytes);
  file(first);
  file.since(3, second);
  return {first, second};
}

TEST(RecordReading, AFieldKeepsItsValueInAnOlderRecord) {
  EXPECT_EQ(FieldsOf("02 00 00 00 05 00 00 00"), (std::vector<long>{5, -2}));
  EXPECT_EQ(FieldsOf("00 00 00 00 05 00 00 00"), (std::vector<long>{5, -2}));
  EXPECT_EQ(FieldsOf("FF FF FF FF 05 00 00 00"), (std::vector<long>{5, -2}));
}

TEST(RecordReading, AFieldIsReadFromItsFirstVersionOn) {
  EXPECT_EQ(FieldsOf("03 00 00 00 05 00 00 00 06 00 00 00"), (std::vector<long>{5, 6}));
}

TEST(RecordReading, ANewerRecordMayHoldMore) {
  EXPECT_EQ(FieldsOf("04 00 00 00 05 00 00 00 06 00 00 00 07 00 00 00 08"),
            (std::vector<long>{5, 6}));
  EXPECT_EQ(FieldsOf("FF FF FF 7F 05 00 00 00 06 00 00 00"), (std::vector<long>{5, 6}));
}

// ---- Records that can't be right ----

TEST(RecordReading, ARecordWithoutAWholeVersionIsCorrupt) {
  const std::string bytes = Bytes("01 00 00 00");
  for (std::size_t size = 0; size < 4; ++size) {
    EXPECT_THROW(RecordReader(std::span(bytes.data(), size)), CFileCorrupt);
  }
  EXPECT_NO_THROW(RecordReader{std::span(bytes.data(), 4)});
}

TEST(RecordReading, AScalarNeedsAllItsBytes) {
  EXPECT_THROW(Taken<vbINT32>(""), CFileCorrupt);
  EXPECT_THROW(Taken<vbINT32>("00 00 00"), CFileCorrupt);
  EXPECT_THROW(Taken<vbUINT32>("00 00 00"), CFileCorrupt);
  EXPECT_THROW(Taken<vbFLOAT64>("00 00 00 00 00 00 00"), CFileCorrupt);
}

TEST(RecordReading, AStringLengthHasToFitTheRecord) {
  EXPECT_THROW(Taken<std::string>("00 00 00"), CFileCorrupt);
  for (const char* length : {"04 00 00 00", "00 00 00 01", "FF FF FF 7F", "FF FF FF FF"}) {
    SCOPED_TRACE(length);
    EXPECT_THROW(Taken<std::string>(std::string(length) + "61 62 63"), CFileCorrupt);
  }
}

TEST(RecordReading, AVectorCountHasToFitTheRecord) {
  const char* counts[] = {"02 00 00 00", "00 00 00 20", "00 00 00 40",
                          "FF FF FF 7F", "00 00 00 80", "FF FF FF FF"};
  for (const std::string count : counts) {
    SCOPED_TRACE(count);
    EXPECT_THROW(Taken<Integers>(count + "01 00 00 00 02 00 00"), CFileCorrupt);
    EXPECT_THROW(Taken<Reals>(count + "01 00 00 00 02 00 00 00 03 00 00 00 04 00 00"),
                 CFileCorrupt);
    EXPECT_THROW(Taken<Texts>(count + "01 00 00 00 61 01 00 00"), CFileCorrupt);
    EXPECT_THROW(Taken<std::vector<Integers>>(count + "01 00 00 00 61 00 00"), CFileCorrupt);
  }
}

TEST(RecordReading, ACountWithinAVectorHasToFitTheRecord) {
  EXPECT_THROW(Taken<Texts>("02 00 00 00 01 00 00 00 61 FF FF FF FF 62"), CFileCorrupt);
  EXPECT_THROW(Taken<std::vector<Reals>>("02 00 00 00 00 00 00 00 01 00 00 00"), CFileCorrupt);
}

TEST(RecordReading, TheLastByteOfTheRecordCanBeUsed) {
  EXPECT_EQ(Taken<Texts>("01 00 00 00 03 00 00 00 61 62 63"), Texts{"abc"});
  EXPECT_EQ(Taken<std::vector<Integers>>("02 00 00 00 00 00 00 00 00 00 00 00").size(), 2U);
}

}  // namespace
