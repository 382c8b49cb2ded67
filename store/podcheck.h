// Private to the library, not installed.
#pragma once

#include <cstdio>

class POD;

namespace kestdb {

/// What every static operation on a database asks for first, in this order: a handle (CNullPtr),
/// indexing (CNoIndex), both files (CNullPtr).
void RequireIndexed(const POD* pod);

/// The same for a report, which needs a stream too.
void RequireReportable(const POD* pod, const std::FILE* stream);

}  // namespace kestdb
