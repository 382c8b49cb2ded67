#pragma once

#include <cstddef>

// A program with LargestRequest.cpp among its sources has its operator new watched.

/// The largest number of bytes that was asked of operator new in one go since the start of the
/// program or the last ForgetRequests.
std::size_t LargestRequest();
void ForgetRequests();
