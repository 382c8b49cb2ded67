#pragma once

#include <vector>

// A double of fsync: a test program with FileSync.cpp among its sources brings nothing to the disk,
// but keeps which files it was asked for.

/// The file descriptors since the start of the program or the last ClearFileSyncs.
const std::vector<int>& FileSyncs();

/// Makes all further calls fail with this errno.
void FailFileSyncs(int error);

/// Forgets the calls and lets further ones succeed.
void ClearFileSyncs();
