#include <cstdio>

#include "tests/guide/Guide.h"

void FirstSteps() {
  // [first-steps]
  OpenDatabase("beam");  // beam.ksb and beam.kx, made if they aren't there
  CInput width(GetPOD());
  width.m_nID = 1;
  width.m_strName = "width";
  width.m_fLower = 10.0;
  width.PutObject();  // stored, for every process that opens the study
  CInput copy(GetPOD());
  copy.m_nID = 1;
  if (copy.GetObject()) std::printf("%s >= %g\n", copy.m_strName.c_str(), double{copy.m_fLower});
  CloseDatabase();
  // [end]
}
