// Private to the library, not installed.
#pragma once

class POD;

namespace kestdb {

/// Puts blanks for the line breaks in the equations of all tasks and definitions.
/// THROWS CGetObject when a listed object is missing.
void CleanEquationTexts(POD* pod);

}  // namespace kestdb
