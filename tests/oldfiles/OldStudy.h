#pragma once

#include <gtest/gtest.h>

#include <string>
#include <valarray>
#include <vector>

#include "store/DBI_IO.h"
#include "store/vbscalar.h"
#include "tests/support/Log.h"
#include "tests/support/TempFolder.h"

// Studies of revision A, as earlier versions of the library left them. They stand in *.hex: bytes
// as hex digits, and behind a '#' on each line what they are. early-study.hex has the oldest record
// of each class that can be read, later-study.hex records of versions in between.

using Ints = std::vector<vbINT32>;
using Reals = std::vector<vbFLOAT64>;
using Texts = std::vector<std::string>;

template <class Element>
std::vector<Element> ListOf(const std::valarray<Element>& values) {
  return {begin(values), end(values)};
}

/// What index file lies beside the data file.
enum class OldIndex { None, Stale };

struct OldCase {
  bool later;  ///< which of the two files
  OldIndex index;
};

/// The bytes of NAME.hex.
std::string OldBytes(const std::string& name);

/// A copy of one of the two studies in a folder of its own.
class OldFiles {
 public:
  explicit OldFiles(const OldCase& which);
  OldFiles(const OldFiles&) = delete;
  OldFiles& operator=(const OldFiles&) = delete;
  ~OldFiles();

  std::string BasePath() const { return folder_ / "old"; }
  std::string DataPath() const { return BasePath() + ".ksb"; }
  std::string IndexPath() const { return BasePath() + ".kx"; }

 private:
  TempFolder folder_;
};

/// Tests of a study that was opened, each for both files, with and without an index.
class OldStudy : public testing::TestWithParam<OldCase> {
 protected:
  OldStudy() : files(GetParam()), later(GetParam().later) {
    ClearLog();
    OpenDatabase(files.BasePath());
  }

  /// The stored object with this number in its key field.
  template <class Class>
  Class Numbered(vbINT32 Class::*number, int value) const {
    Class object(GetPOD());
    object.*number = value;
    EXPECT_TRUE(object.GetObject()) << object.GetVBClassName() << ' ' << value;
    return object;
  }
  /// The only stored object of its class.
  template <class Class>
  Class Only() const {
    Class object(GetPOD());
    EXPECT_TRUE(object.GetObject()) << object.GetVBClassName();
    return object;
  }

  OldFiles files;
  bool later;
};

/// Runs the tests of a fixture that derives from OldStudy with all cases.
inline const auto kOldCases =
    testing::Values(OldCase{false, OldIndex::None}, OldCase{false, OldIndex::Stale},
                    OldCase{true, OldIndex::None}, OldCase{true, OldIndex::Stale});
inline std::string NameOf(const testing::TestParamInfo<OldCase>& info) {
  return std::string(info.param.later ? "Later" : "Early") +
         (info.param.index == OldIndex::Stale ? "StaleIndex" : "NoIndex");
}

/// The numbers of a record whose fields were filled by counting: 1 more from field to field, and
/// a half on top in those that hold reals.
class Counted {
 public:
  explicit Counted(int base) : number_(base) {}

  template <class... Fields>
  void Expect(const Fields&... fields) {
    (ExpectNext(fields), ...);
  }

 private:
  void ExpectNext(const vbINT32& value) { EXPECT_EQ(value, ++number_); }
  void ExpectNext(const vbUINT32& value) { EXPECT_EQ(value, static_cast<unsigned>(++number_)); }
  void ExpectNext(const vbFLOAT64& value) { EXPECT_EQ(value, ++number_ + 0.5); }

  int number_;
};
