#pragma once

#include <map>
#include <string>

/// The bytes of the objects of a study, by class and key.
using Snapshot = std::map<std::string, std::string>;

/// Of the open study: of each object that lies in the data file, what its key leads to.
Snapshot TakeSnapshot();

/// Bytes are written as hexadecimal digits, one object on a line.
void WriteSnapshot(const Snapshot& snapshot, const std::string& path);
Snapshot ReadSnapshot(const std::string& path);
