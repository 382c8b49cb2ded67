// Private to the library, not installed.
#pragma once

#include <cstdio>
#include <initializer_list>

#include "store/vbscalar.h"

// What the reports of the control settings and of the tasks that hold a copy of them share: the
// words for the codes of the settings.

namespace kestdb {

const char* FlagWord(const vbINT32& flag);

/// The word for a code that counts from 0; "Unknown" for a code without one.
const char* WordFor(const vbINT32& code, std::initializer_list<const char*> words);

const char* EfficiencyWord(const vbINT32& skip);
const char* OrderWord(const vbINT32& order);
const char* DesignWord(const vbINT32& design);
const char* InitialDesignWord(const vbINT32& design);
const char* DesignTaskWord(const vbINT32& task);
const char* ModelWord(const vbINT32& model);
const char* CrossOverWord(const vbINT32& type);
const char* RandomMethodWord(const vbINT32& method);

/// The limits of a stepwise regression.
void PrintPValues(std::FILE* stream, double enter, double remove);

}  // namespace kestdb
