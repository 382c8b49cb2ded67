#include "control/Rules.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {

int ToInt(double value) {
  using Limits = std::numeric_limits<int>;
  if (std::isnan(value)) return 0;
  return static_cast<int>(std::clamp<double>(value, Limits::min(), Limits::max()));
}

}  // namespace

/// Kept: some texts show an integer by "%g" or a real by "%d". The text is what users know, so the
/// value is given in the type that the text asks for; this is the one place for that.
void kestdb::Rules::PrintFirst(const char* first, double value) {
  const char* conversion = std::strchr(first, '%');
  if (conversion == nullptr) {
    LError("%s", first);
  } else if (conversion[1] == 'd') {
    LError(first, ToInt(value));
  } else {
    LError(first, value);
  }
}
