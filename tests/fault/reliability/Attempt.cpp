#include "tests/fault/reliability/Attempt.h"

#include <utility>

int Close(int ending) {
  for (int i = 0; i < 2 && IsOpen(); ++i) ending = Try(ending, [] { CloseDatabase(); });
  if (IsOpen()) {
    GetPOD()->Abandon();
    delete std::exchange(pPOD, nullptr);
  }
  return ending;
}
