#pragma once

#include <cstdio>
#include <map>
#include <string>

#include "tests/support/RawFile.h"
#include "tests/support/Study.h"

// What the files of a study hold of its tasks, told from their bytes.

/// The objects of the data file by address, and the keys of all trees with the addresses that they
/// lead to.
struct StudyFiles {
  std::map<long, std::string> objects;
  std::map<std::string, long> keys;  ///< by the number of the tree and the key text, as "11 7"

  bool operator==(const StudyFiles&) const = default;
};

/// REQUIRES that nobody holds the lock.
inline StudyFiles ReadStudyFiles(const Study& study) {
  StudyFiles files;
  for (const RawBlock& block : ReadRawFile(study.DataPath()).blocks) {
    if (block.status == 'N') files.objects[block.ObjectAddress()] = block.object;
  }
  const RawFile index = ReadRawFile(study.IndexPath());
  for (long tree = 0; tree < 25; ++tree) {
    for (const auto& [key, address] : ReadRawTree(index, tree)) {
      files.keys[std::to_string(tree) + key] = address;
    }
  }
  return files;
}

/// Whether objects of the class are kept under the ID of a task.
inline bool IsOfTasks(long classID) {
  switch (classID) {
    case 1000:   // CInput
    case 2000:   // CAuxiliary
    case 15000:  // CGPoint
    case 16000:  // CDBCtrl
    case 18000:  // CDesignControl
    case 19000:  // CResp
      return false;
    default:
      return true;
  }
}

/// Whether an object is a task or belongs to it: the ID stands behind class, address and version.
inline bool IsOfTask(const std::string& object, long task) {
  return IsOfTasks(WordAt(object, 0)) && WordAt(object, 12) == task;
}

/// The files without the objects of the task and the keys that begin with its ID.
inline StudyFiles WithoutTask(StudyFiles files, long task) {
  std::erase_if(files.objects, [task](const auto& entry) { return IsOfTask(entry.second, task); });
  char id[16];
  std::snprintf(id, sizeof id, "%11ld", task);
  std::erase_if(files.keys, [&](const auto& entry) {
    const std::string& key = entry.first;
    const std::size_t tree = key.find(' ');
    return IsOfTasks(1000 * (std::stol(key.substr(0, tree)) + 1)) && key.compare(tree, 11, id) == 0;
  });
  return files;
}

/// How many objects of each class ID a task has.
inline std::map<long, int> ClassesOfTask(const StudyFiles& files, long task) {
  std::map<long, int> counts;
  for (const auto& [address, object] : files.objects) {
    if (IsOfTask(object, task)) ++counts[WordAt(object, 0)];
  }
  return counts;
}
