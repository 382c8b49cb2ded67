// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>
#include <valarray>
#include <vector>

#include "store/KestErr.h"
#include "task/TaskTables.h"

class POD;

// What the reports of models and of their residuals share.

namespace kestdb {

/// What a task calls the things that its models are about.
struct ModelNames {
  std::vector<std::string> variables;  ///< the independent ones
  std::vector<std::string> responses;  ///< the independent ones
};

/// THROWS CGetObject without the task or one of its tables.
ModelNames LoadModelNames(POD* pod, int taskID);

/// That each array has `size` elements. THROWS CInvalidArgument for a damaged record.
template <class... Arrays>
void RequireSize(std::size_t size, const Arrays&... arrays) {
  if (((arrays.size() != size) || ...)) Throw<CInvalidArgument>();
}

/// The product of the variables, each to the power that `exponents` has for it.
/// THROWS CInvalidArgument for a variable without a name.
std::string TermName(const std::valarray<int>& exponents,
                     const std::vector<std::string>& variables);

/// The part of a model's head that tells what it is about, down to the bar.
void PrintModelHead(std::FILE* stream, const std::string& response, std::size_t terms);

inline constexpr int kTermColumns = 23;

/// Prints the rest of a term's name under the row that has begun with its first piece.
void PrintTermRest(std::FILE* stream, const std::vector<std::string>& name);

}  // namespace kestdb
