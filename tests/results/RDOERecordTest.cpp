#include <vector>

#include "results/RDOE.h"
#include "tests/results/EngineRecordTests.h"

// The record of a design of experiments.

template <>
struct EngineRecordOf<CRDOE> {
  static constexpr int ID = 17000;
  static constexpr int Index = 16;
  static constexpr const char* Name = "CRDOE";
  static constexpr std::size_t Length = 60;
  static std::vector<vbINT32 CRDOE::*> KeyFields() { return {&CRDOE::m_nTaskID}; }
  static EngineFields<CRDOE> All() {
    return {
        {&CRDOE::m_nTaskID, 7, "07 00 00 00 "},
        {&CRDOE::m_nResolution, 5, "05 00 00 00 "},
        {&CRDOE::m_Points, std::vector<int>{0, 258, 3},
         "03 00 00 00 00 00 00 00 02 01 00 00 03 00 00 00 "},
        {&CRDOE::m_fLogDet, -2.0, "C0 00 00 00 00 00 00 00 "},
        {&CRDOE::m_Generators, std::vector<int>{-1, 12}, "02 00 00 00 FF FF FF FF 0C 00 00 00 "},
        {&CRDOE::m_fDEfficiency, 0.1, "3F B9 99 99 99 99 99 9A "},
        {&CRDOE::m_fAEfficiency, 3.0, "40 08 00 00 00 00 00 00 "},
        {&CRDOE::m_fGEfficiency, 4.0, "40 10 00 00 00 00 00 00 "},
        {&CRDOE::m_fPredVariance, 5.0, "40 14 00 00 00 00 00 00 ", -1.0,
         "BF F0 00 00 00 00 00 00 "},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfDesigns, EngineRecords, CRDOE);

}  // namespace
