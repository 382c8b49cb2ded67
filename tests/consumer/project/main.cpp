#include <cstdio>
#include <exception>

#include "kestdb.h"

int main(int argc, char** argv) try {
  if (argc != 2) return 2;
  OpenDatabase(argv[1]);
  CloseDatabase();
  int major = 0;
  int minor = 0;
  int patch = 0;
  GetKSBVersion(&major, &minor, &patch);
  std::printf("KestDB %d.%d.%d\n", major, minor, patch);
  return 0;
} catch (const std::exception&) {
  return 1;
}
