#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <typeinfo>

#include "environment/Utilities.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/Descriptors.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/Log.h"
#include "tests/support/StudyCheck.h"
#include "tests/support/TempFolder.h"

// What stops OpenDatabase, and what a failed open leaves behind.

namespace {

/// The two files of a study, that a case damages.
struct StudyFiles {
  explicit StudyFiles(const std::string& path)
      : base(path),
        data(path + ".ksb"),
        copy(path + ".ksb.new"),
        index(path + ".kx"),
        lock(path + ".lck") {}

  std::string base, data, copy, index, lock;
};

struct Obstacle {
  const char* name;
  std::string error;  ///< the mangled name of the exception's class
  std::function<void(const StudyFiles&)> place;
};

void PrintTo(const Obstacle& obstacle, std::ostream* out) {
  *out << obstacle.name;
}

template <class Error>
Obstacle Expect(const char* name, std::function<void(const StudyFiles&)> place) {
  return {name, typeid(Error).name(), std::move(place)};
}

// ---- Ways to spoil a study ----

using Path = std::string StudyFiles::*;

auto Mode(Path path, mode_t mode) {
  return [=](const StudyFiles& files) { chmod((files.*path).c_str(), mode); };
}

auto Contents(Path path, const std::string& bytes) {
  return [=](const StudyFiles& files) { WriteBytes(files.*path, bytes); };
}

auto CutTo(Path path, std::uintmax_t size) {
  return [=](const StudyFiles& files) { std::filesystem::resize_file(files.*path, size); };
}

auto Patch(Path path, long offset, const char* hex) {
  return [=](const StudyFiles& files) { PatchBytes(files.*path, offset, Bytes(hex)); };
}

auto Missing(Path path) {
  return [=](const StudyFiles& files) { std::filesystem::remove(files.*path); };
}

auto Folder(Path path) {
  return [=](const StudyFiles& files) {
    std::filesystem::remove(files.*path);
    std::filesystem::create_directory(files.*path);
  };
}

auto Moved(Path from, Path to) {
  return [=](const StudyFiles& files) { std::filesystem::rename(files.*from, files.*to); };
}

template <class First, class Second>
auto Both(First first, Second second) {
  return [=](const StudyFiles& files) {
    first(files);
    second(files);
  };
}

constexpr Path data = &StudyFiles::data;
constexpr Path copy = &StudyFiles::copy;
constexpr Path index = &StudyFiles::index;
constexpr Path lock = &StudyFiles::lock;

/// 28 bytes of text, with a version word.
std::string Text(const char* version) {
  return "This file is a text." + std::string(4, '.') + Bytes(version) + "\n";
}

const Obstacle obstacles[] = {
    Expect<CReadOnlyFile>("DataNotReadable", Mode(data, 0200)),
    Expect<CFileNotWriteable>("DataNotWriteable", Mode(data, 0400)),
    Expect<CReadOnlyFile>("DataNeither", Mode(data, 0)),
    Expect<CFileNotWriteable>("DataOnlyForOthers", Mode(data, 0477)),
    Expect<CReadOnlyFile>("IndexNotReadable", Mode(index, 0200)),
    Expect<CFileNotWriteable>("IndexNotWriteable", Mode(index, 0400)),
    Expect<CFileNotWriteable>("DataBeforeIndex", Both(Mode(data, 0400), Mode(index, 0200))),
    Expect<CReadOnlyFile>("IndexBeforeVersion",
                          Both(Mode(index, 0200), Patch(data, 24, "01 00 00 00"))),

    Expect<CFileOpen>("DataIsAFolder", Folder(data)),
    Expect<CFileRead>("DataIsEmpty", CutTo(data, 0)),
    Expect<CFileRead>("DataIsShorterThanItsHeader", CutTo(data, 27)),
    Expect<CWrongFileType>("DataIsText", Contents(data, Text("B9 0B 00 00"))),
    Expect<CWrongFileType>("DataIsTextOfNoVersion", Contents(data, Text("00 00 00 00"))),

    Expect<CFileCorrupt>("DataOfAnOldVersionWithoutItsFirstBlock",
                         Both(Patch(data, 24, "B8 0B 00 00"), Patch(data, 40, "00"))),
    Expect<CFileCorrupt>("DataOfANewVersionWithoutItsFirstBlock",
                         Both(Patch(data, 24, "BA 0B 00 00"), Patch(data, 40, "00"))),
    Expect<CFileCreation>("DataOfAnOldVersionWithoutAPlaceForItsCopy",
                          Both(Patch(data, 24, "B8 0B 00 00"), Folder(copy))),
    Expect<CNoFileExists>("DataInTheCopyOfARebuild", Moved(data, copy)),
    Expect<CNoFileExists>("DataInTheCopyOfARebuildAndNoIndex",
                          Both(Moved(data, copy), Missing(index))),

    Expect<CFileOpen>("IndexIsAFolder", Folder(index)),
    Expect<CFileRead>("IndexIsEmpty", CutTo(index, 0)),
    Expect<CFileRead>("IndexIsShorterThanItsHeader", CutTo(index, 27)),
    Expect<CFileRead>("IndexEndsBehindItsHeader", CutTo(index, 40)),
    Expect<CFileRead>("IndexEndsAmongTheTreeHeaders", CutTo(index, 900)),
    Expect<CWrongFileType>("IndexIsText", Contents(index, Text("B9 0B 00 00"))),
    // The only entry of the tree of the design points, by one bit of its key.
    Expect<CChecksum>("IndexIsDamaged", Patch(index, 1068 + 14 * 2396 + 12 + 10, "33")),

    Expect<CFileLock>("Locked", Folder(lock)),
};

class FailedOpen : public testing::TestWithParam<Obstacle> {
 protected:
  void SetUp() override {
    OpenDatabase(files.base);
    CloseDatabase();
    ASSERT_EQ(Snapshot().size(), 2U);
    GetParam().place(files);
  }

  /// The contents of the folder's files, and the names of its folders.
  std::map<std::string, std::string> Snapshot() const {
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      const bool isFile = entry.is_regular_file();
      contents[entry.path().filename()] = isFile ? ReadFile(entry.path()) : "a folder";
    }
    return contents;
  }

  /// The bytes of a file whose permissions may forbid to look at them.
  static std::string ReadFile(const std::filesystem::path& path) {
    const auto permissions = std::filesystem::status(path).permissions();
    std::filesystem::permissions(path, std::filesystem::perms::owner_read,
                                 std::filesystem::perm_options::add);
    std::string bytes = ReadBytes(path);
    std::filesystem::permissions(path, permissions);
    return bytes;
  }

  /// The class of what OpenDatabase throws.
  std::string TryToOpen() const {
    try {
      OpenDatabase(files.base);
    } catch (const std::exception& error) {
      return typeid(error).name();
    }
    return "nothing";
  }

  TempFolder folder;
  StudyFiles files{folder / "study"};
};

TEST_P(FailedOpen, ThrowsAndLeavesNothingOpen) {
  const auto before = OpenDescriptors();
  EXPECT_EQ(TryToOpen(), GetParam().error);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(GetPOD(), nullptr);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_P(FailedOpen, ChangesNoFile) {
  auto before = Snapshot();
  EXPECT_EQ(TryToOpen(), GetParam().error);
  // Beside the copy of a rebuild a mark tells later opens not to trust the index.
  if (!before.contains("study.ksb") && before.contains("study.ksb.new")) {
    before["study.kx.new"] = "";
  }
  EXPECT_TRUE(Snapshot() == before);
}

TEST_P(FailedOpen, IsLogged) {
  ClearLog();
  EXPECT_EQ(TryToOpen(), GetParam().error);
  ASSERT_FALSE(Log().empty());
  EXPECT_EQ(Log().back().kind, "LException");
  EXPECT_TRUE(Log().back().file.ends_with("store/DBI_IO.cpp")) << Log().back().file;
}

INSTANTIATE_TEST_SUITE_P(Obstacles, FailedOpen, testing::ValuesIn(obstacles),
                         [](const auto& tested) { return std::string(tested.param.name); });

// ---- Other names and places ----

class OpenFails : public testing::Test {
 protected:
  TempFolder folder;
};

TEST_F(OpenFails, ForANameThatIsNotASCII) {
  const auto before = OpenDescriptors();
  for (const std::string name : {"\x80", "\xC3\xA4", "study\xFF", "\xE4.ksb"}) {
    ClearLog();
    EXPECT_THROW(OpenDatabase(folder / name), CNonASCIIDatabase);
    EXPECT_EQ(Log().front().text,
              "Database filename contains invalid characters.  Use ASCII characters only.");
  }
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(OpenFails, WhereTheLockCannotBeMade) {
  const auto before = OpenDescriptors();
  EXPECT_THROW(OpenDatabase(folder / "missing/study"), CFileLock);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(OpenFails, WhereTheDataFileCannotBeMade) {
  const auto before = OpenDescriptors();
  std::filesystem::create_symlink(folder / "missing/study.ksb", folder / "study.ksb");
  EXPECT_THROW(OpenDatabase(folder / "study"), CFileCreation);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_FALSE(std::filesystem::exists(folder / "study.kx"));
  EXPECT_FALSE(std::filesystem::exists(folder / "study.lck"));
}

TEST_F(OpenFails, WhereTheIndexCannotBeMade) {
  const auto before = OpenDescriptors();
  std::filesystem::create_symlink(folder / "missing/study.kx", folder / "study.kx");
  EXPECT_THROW(OpenDatabase(folder / "study"), CFileCreation);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_FALSE(std::filesystem::exists(folder / "study.lck"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "study.kx"));
}

TEST_F(OpenFails, WhereANewStudyFindsTheDiskFullAndLeavesNoIndex) {
  for (unsigned long size = 0; size < 60000; size += size < 1000 ? 20 : 1500) {
    const auto before = OpenDescriptors();
    {
      const FileSizeLimit full(size);
      EXPECT_THROW(OpenDatabase(folder / "study"), CFileWrite) << size;
    }
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_FALSE(std::filesystem::exists(folder / "study.kx")) << size;
    EXPECT_FALSE(std::filesystem::exists(folder / "study.lck")) << size;
    if (size >= 40) {
      OpenDatabase(folder / "study");
      CloseDatabase();
      EXPECT_EQ(FaultsOfStudy(folder / "study"), "") << size;
      std::filesystem::remove(folder / "study.kx");
    }
    std::filesystem::remove(folder / "study.ksb");
  }
}

TEST_F(OpenFails, AndTheNextOpenWorks) {
  EXPECT_THROW(OpenDatabase(folder / "\xE4"), CNonASCIIDatabase);
  OpenDatabase(folder / "study");
  EXPECT_TRUE(IsOpen());
  CloseDatabase();
}

}  // namespace
