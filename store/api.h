#pragma once

/// Marks what libkestdb exports; everything else of the library is hidden.
#define KESTDB_API __attribute__((visibility("default")))
