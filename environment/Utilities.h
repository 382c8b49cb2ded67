#pragma once

#include <string>

/// The environment's utility library. KestDB only imports it: the program supplies it.

// Imported names must stay visible, also where the including code is compiled with hidden ones.
#pragma GCC visibility push(default)

/// What the environment asks of the operating system.
class COSUtil {
 public:
  /// Suspends the process for that many milliseconds.
  static void mySleep(unsigned milliseconds);

  /// The path of the environment's init file; empty if there is none.
  static std::string GetInitFile();

  /// True where maintenance has to close and reopen a database before locking it; not on Linux.
  static bool IsWin9x();

  /// Moves the next piece of at most `columns` characters from the front of `text` into `piece`.
  /// False, with an empty piece, once the text is used up.
  static bool SplitLine(std::string& text, int columns, std::string& piece);

  /// The folders in which the user's programs are sought, as in the variable PATH.
  static std::string GetUserPATH();

  /// True when `program` can be run: by its path, or as a name in one of the folders of `path`.
  static bool FindExeInStringPATH(const std::string& program, const std::string& path);
};

/// The environment's init file: a text of keys and values.
class CInitFile {
 public:
  /// Opens the file. The flag's meaning is the environment's own; KestDB passes false.
  CInitFile(std::string& path, bool flag);

  /// True if the key is there; `value` is then its text, and else as it was.
  bool Get(const std::string& key, std::string& value);
  bool Get(const char* key, std::string& value);

 private:
  std::string m_strText;
};

/// Texts and names.
class CKUtil {
 public:
  /// True when every byte is below 128.
  static bool IsASCII(const std::string& text);

  /// Moves the next piece of at most `columns` characters from the front of `name` into `piece`,
  /// not heeding blanks. False, with an empty piece, once the name is used up.
  static bool SplitName(std::string& name, int columns, std::string& piece);

  /// The last `length` characters of a file name, or all of a shorter one.
  static std::string TrimFileName(const std::string& name, int length);
};

#pragma GCC visibility pop
