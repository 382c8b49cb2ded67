// Private to the library, not installed.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/vbscalar.h"
#include "task/DResp.h"
#include "task/DVar.h"

// The subjects of constraints and objectives in reports.

namespace kestdb {

/// The column with the kind of a subject: "ERROR" for a kind that no objective can be on.
const char* SubjectLabel(const vbINT32& kind);

/// The variables and responses of a task, which its constraints and objectives refer to.
class Subjects {
 public:
  /// Takes what the task has of them.
  Subjects(POD* pod, int task);

  /// The pieces of a subject's name: an empty one for a kind without a label. THROWS
  /// CObjectNotFound where the task lacks its variables or responses, CInvalidArgument for a
  /// position outside the kind's table.
  std::vector<std::string> Name(const vbINT32& kind, const vbINT32& position) const;

 private:
  CDVar vars_;
  CDResp resps_;
  bool hasVars_;
  bool hasResps_;
};

/// Prints what a name has behind its first piece, each piece on a line of its own.
void PrintRestOfName(std::FILE* stream, const std::vector<std::string>& pieces);

}  // namespace kestdb
