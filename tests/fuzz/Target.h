#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// One target of the fuzzer. Each source file of this folder that is named for one defines these; a
// program has one of them. A finding leaves LLVMFuzzerTestOneInput as an exception, unless a
// sanitizer has seen it before.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Inputs to start from: sound ones.
std::vector<std::string> Seeds();
