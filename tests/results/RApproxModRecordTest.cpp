#include <vector>

#include "results/RApproxMod.h"
#include "tests/results/EngineRecordTests.h"

// The record of a task's final models.

template <>
struct EngineRecordOf<CRApproxMod> {
  static constexpr int ID = 22000;
  static constexpr int Index = 21;
  static constexpr const char* Name = "CRApproxMod";
  static constexpr std::size_t Length = 32;
  static std::vector<vbINT32 CRApproxMod::*> KeyFields() { return {&CRApproxMod::m_nTaskID}; }
  static EngineFields<CRApproxMod> All() {
    constexpr bool kept = true;
    return {
        {&CRApproxMod::m_nTaskID, 7, "07 00 00 00 "},
        {&CRApproxMod::m_nRowMod, 258, "02 01 00 00 "},
        {&CRApproxMod::m_nColMod, 3, "03 00 00 00 "},
        {&CRApproxMod::m_Model, std::vector<int>{1, -2, 1000},
         "03 00 00 00 01 00 00 00 FE FF FF FF E8 03 00 00 ", kept},
        {&CRApproxMod::m_nRowCoeff, -4, "FC FF FF FF "},
        {&CRApproxMod::m_nColCoeff, 5, "05 00 00 00 "},
        {&CRApproxMod::m_Coeff, std::vector<double>{0.1, -2.0},
         "02 00 00 00 3F B9 99 99 99 99 99 9A C0 00 00 00 00 00 00 00 ", kept},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfFinalModels, EngineRecords, CRApproxMod);

}  // namespace
