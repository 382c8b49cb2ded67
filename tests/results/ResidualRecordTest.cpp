#include <vector>

#include "results/Residual.h"
#include "tests/results/EngineRecordTests.h"

// The record of an analysis of residuals.

template <>
struct EngineRecordOf<CResidual> {
  static constexpr int ID = 20000;
  static constexpr int Index = 19;
  static constexpr const char* Name = "CResidual";
  static constexpr std::size_t Length = 164;
  static std::vector<vbINT32 CResidual::*> KeyFields() {
    return {&CResidual::m_nTaskID, &CResidual::m_nResp};
  }
  static EngineFields<CResidual> All() {
    return {
        {&CResidual::m_nTaskID, 7, "07 00 00 00 "},
        {&CResidual::m_nResp, 258, "02 01 00 00 "},
        {&CResidual::m_HDiagonal, std::vector<double>{0.1, -2.0},
         "02 00 00 00 3F B9 99 99 99 99 99 9A C0 00 00 00 00 00 00 00 "},
        {&CResidual::m_Predicted, std::vector<double>{1.0}, "01 00 00 00 3F F0 00 00 00 00 00 00 "},
        {&CResidual::m_Residual, std::vector<double>{2.0}, "01 00 00 00 40 00 00 00 00 00 00 00 "},
        {&CResidual::m_Standardized, std::vector<double>{3.0, 4.0},
         "02 00 00 00 40 08 00 00 00 00 00 00 40 10 00 00 00 00 00 00 "},
        {&CResidual::m_Studentized, std::vector<double>{5.0},
         "01 00 00 00 40 14 00 00 00 00 00 00 "},
        {&CResidual::m_RStudentized, std::vector<double>{6.0},
         "01 00 00 00 40 18 00 00 00 00 00 00 "},
        {&CResidual::m_Press, std::vector<double>{7.0}, "01 00 00 00 40 1C 00 00 00 00 00 00 "},
        {&CResidual::m_Cook, std::vector<double>{8.0}, "01 00 00 00 40 20 00 00 00 00 00 00 "},
        {&CResidual::m_fErrorMS, 9.0, "40 22 00 00 00 00 00 00 "},
        {&CResidual::m_fModelSS, 10.0, "40 24 00 00 00 00 00 00 "},
        {&CResidual::m_fModelMS, 11.0, "40 26 00 00 00 00 00 00 "},
        {&CResidual::m_fErrorSS, 12.0, "40 28 00 00 00 00 00 00 "},
        {&CResidual::m_fTotalSS, 13.0, "40 2A 00 00 00 00 00 00 "},
        {&CResidual::m_fF0, 14.0, "40 2C 00 00 00 00 00 00 "},
        {&CResidual::m_fP, 15.0, "40 2E 00 00 00 00 00 00 "},
        {&CResidual::m_fSumResiduals, 16.0, "40 30 00 00 00 00 00 00 "},
        {&CResidual::m_fPRESS, 17.0, "40 31 00 00 00 00 00 00 "},
        {&CResidual::m_fRMSE, 18.0, "40 32 00 00 00 00 00 00 "},
        {&CResidual::m_fMeanResponse, 19.0, "40 33 00 00 00 00 00 00 "},
        {&CResidual::m_fCoeffVariation, 20.0, "40 34 00 00 00 00 00 00 "},
        {&CResidual::m_fR2, 21.0, "40 35 00 00 00 00 00 00 "},
        {&CResidual::m_fAdjR2, 22.0, "40 36 00 00 00 00 00 00 "},
        {&CResidual::m_fR2Press, 23.0, "40 37 00 00 00 00 00 00 "},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfAnalyses, EngineRecords, CResidual);

}  // namespace
