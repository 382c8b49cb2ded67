#include <vector>

#include "results/ApproxModels.h"
#include "tests/results/EngineRecordTests.h"

// The record of an approximation model.

template <>
struct EngineRecordOf<CApproxModels> {
  static constexpr int ID = 10000;
  static constexpr int Index = 9;
  static constexpr const char* Name = "CApproxModels";
  static constexpr std::size_t Length = 40;
  static std::vector<vbINT32 CApproxModels::*> KeyFields() {
    return {&CApproxModels::m_nTaskID, &CApproxModels::m_nIter, &CApproxModels::m_nResp};
  }
  static EngineFields<CApproxModels> All() {
    constexpr bool kept = true;
    return {
        {&CApproxModels::m_nTaskID, 7, "07 00 00 00 "},
        {&CApproxModels::m_nIter, 258, "02 01 00 00 "},
        {&CApproxModels::m_nResp, 3, "03 00 00 00 "},
        {&CApproxModels::m_Values, std::vector<double>{0.1}, "01 00 00 00 3F B9 99 99 99 99 99 9A ",
         kept},
        {&CApproxModels::m_Model, std::vector<int>{1, -2, 1000},
         "03 00 00 00 01 00 00 00 FE FF FF FF E8 03 00 00 ", kept},
        {&CApproxModels::m_Coefficients, std::vector<double>{1.0, -2.0},
         "02 00 00 00 3F F0 00 00 00 00 00 00 C0 00 00 00 00 00 00 00 ", kept},
        {&CApproxModels::m_StdErrors, std::vector<double>{3.0},
         "01 00 00 00 40 08 00 00 00 00 00 00 ", kept},
        {&CApproxModels::m_TStats, std::vector<double>{4.0, 5.0},
         "02 00 00 00 40 10 00 00 00 00 00 00 40 14 00 00 00 00 00 00 ", kept},
        {&CApproxModels::m_PValues, std::vector<double>{0.5},
         "01 00 00 00 3F E0 00 00 00 00 00 00 ", kept},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfApproximationModels, EngineRecords, CApproxModels);

}  // namespace
