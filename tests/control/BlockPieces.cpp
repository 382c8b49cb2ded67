#include "tests/control/BlockPieces.h"

#include <map>

std::string Word(const std::string& byte) {
  return byte + " 00 00 00 ";
}

std::string Real(const std::string& twoBytes) {
  return twoBytes + " 00 00 00 00 00 00 ";
}

Typed<std::string> Letter(char letter, const std::string& byte) {
  return {std::string(1, letter), Word("01") + byte + " "};
}

namespace {

const std::string thousand = "E8 03 00 00 ";

// Real numbers that don't end in zeros.
const std::string tenThousandth = "3F 1A 36 E2 EB 1C 43 2D ";  // 0.0001
const std::string thousandth = "3F 50 62 4D D2 F1 A9 FC ";     // 0.001
const std::string threeThousandths = "3F 68 93 74 BC 6A 7E FA ";
const std::string hundredth = "3F 84 7A E1 47 AE 14 7B ";
const std::string minusThreeHundredths = "BF 9E B8 51 EB 85 1E B8 ";
const std::string tenth = "3F B9 99 99 99 99 99 9A ";
const std::string fifth = "3F C9 99 99 99 99 99 9A ";
const std::string fiftieth = "3F 94 7A E1 47 AE 14 7B ";

template <class Block>
Fields<Block> RandomFields(int method, const std::string& byte) {
  return {
      {&Block::m_nRandomMethod, {method, Word(byte)}, {0, Word("00")}, 7},
      {&Block::m_nRandomPoints, {258, "02 01 00 00 "}, {1000, thousand}, 7},
      {&Block::m_nSavePoints, {1, Word("01")}, {0, Word("00")}, 12},
      {&Block::m_nRandomSeed, {0L, Word("00")}, {1, Word("01")}, 15},
  };
}

}  // namespace

Fields<CDGOControl> GradientFields() {
  using C = CDGOControl;
  return Joined<C>(
      {
          {&C::m_nIPRINT, {7, Word("07")}, {0, Word("00")}},
          {&C::m_nMINMAX, {0L, Word("00")}, {1, Word("01")}},
          {&C::m_fSoftRel, {1.0, Real("3F F0")}, {0.001, thousandth}},
          {&C::m_fSoftAbs, {2.0, Real("40 00")}, {0.0001, tenThousandth}},
          {&C::m_nMETHOD, {3, Word("03")}, {0, Word("00")}},
          {&C::m_nUncMETHOD, {4, Word("04")}, {0, Word("00")}},
          {&C::m_nSkip, {2, Word("02")}, {0, Word("00")}, 11},
          {&C::m_nMultiStart, {1, Word("01")}, {0, Word("00")}, 14},
          {&C::m_nIGRAD, {-1, minusOne}, {0, Word("00")}},
          {&C::m_nISCAL, {-2, "FE FF FF FF "}, {0, Word("00")}},
          {&C::m_nITMAX, {101, Word("65")}, {100, Word("64")}},
          {&C::m_nITRMOP, {16, Word("10")}, {2, Word("02")}},
          {&C::m_nNGMAX, {17, Word("11")}, {0, Word("00")}},
          {&C::m_nIGMAX, {18, Word("12")}, {0, Word("00")}},
          {&C::m_nJTMAX, {19, Word("13")}, {100, Word("64")}},
          {&C::m_nITRMST, {20, Word("14")}, {2, Word("02")}},
          {&C::m_nJPRINT, {21, Word("15")}, {0, Word("00")}},
          {&C::m_nIPRNT1, {22, Word("16")}, {0, Word("00")}},
          {&C::m_nIPRNT2, {23, Word("17")}, {0, Word("00")}},
          {&C::m_fCT, {-3.0, Real("C0 08")}, {-0.03, minusThreeHundredths}},
          {&C::m_fCTMIN, {4.0, Real("40 10")}, {0.003, threeThousandths}},
          {&C::m_fDABOBJ, {5.0, Real("40 14")}, {0.0, Real("00 00")}},
          {&C::m_fDELOBJ, {6.0, Real("40 18")}, {0.001, thousandth}},
          {&C::m_fDOBJ1, {7.0, Real("40 1C")}, {0.1, tenth}},
          {&C::m_fDOBJ2, {8.0, Real("40 20")}, {0.0, Real("00 00")}},
          {&C::m_fDX1, {9.0, Real("40 22")}, {0.01, hundredth}},
          {&C::m_fDX2, {10.0, Real("40 24")}, {0.0, Real("00 00")}},
          {&C::m_fFDCH, {11.0, Real("40 26")}, {0.01, hundredth}},
          {&C::m_fFDCHM, {12.0, Real("40 28")}, {0.001, thousandth}},
          {&C::m_fRMVLMZ, {13.0, Real("40 2A")}, {0.4, "3F D9 99 99 99 99 99 9A "}},
          {&C::m_fDABSTR, {14.0, Real("40 2C")}, {0.0, Real("00 00")}},
          {&C::m_fDELSTR, {15.0, Real("40 2E")}, {0.001, thousandth}},
          {&C::m_nReserved, {24, Word("18")}, {0, Word("00")}},
          {&C::m_fPENALT, {16.0, Real("40 30")}, {1.0, Real("3F F0")}},
          {&C::m_fPMULT, {17.0, Real("40 31")}, {5.0, Real("40 14")}},
          {&C::m_fPENLTD, {18.0, Real("40 32")}, {0.01, hundredth}},
          {&C::m_fPMULTD, {19.0, Real("40 33")}, {5.0, Real("40 14")}},
          {&C::m_strGradProgram, Letter('P', "50"), {"analyze.exe", analyze}},
          {&C::m_nGradUserRoutine, {25, Word("19")}, {0, Word("00")}, 8},
          {&C::m_strGradArgs, Letter('A', "41"), empty, 8},
          {&C::m_strGradVarFile, Letter('V', "56"), {"dvar.kef", dvar}, 8},
          {&C::m_strGradRespFile, Letter('R', "52"), {"resp.kef", resp}, 8},
          {&C::m_nStoreFD, {26, Word("1A")}, {0, Word("00")}, 8},
      },
      RandomFields<C>(2, "02"));
}

Fields<CRSAControl> SurfaceFields() {
  using C = CRSAControl;
  return Joined<C>(
      {
          {&C::m_nIPRINT, {6, Word("06")}, {0, Word("00")}},
          {&C::m_nMINMAX, {0L, Word("00")}, {1, Word("01")}},
          {&C::m_fSoftRel, {-1.0, Real("BF F0")}, {0.001, thousandth}},
          {&C::m_fSoftAbs, {-2.0, Real("C0 00")}, {0.0001, tenThousandth}},
          {&C::m_nMETHOD, {4, Word("04")}, {0, Word("00")}},
          {&C::m_nUncMETHOD, {2, Word("02")}, {0, Word("00")}},
          {&C::m_nISCAL, {32, Word("20")}, {0, Word("00")}},
          {&C::m_nITMAX, {33, Word("21")}, {100, Word("64")}},
          {&C::m_nITRMOP, {34, Word("22")}, {2, Word("02")}},
          {&C::m_nJTMAX, {35, Word("23")}, {100, Word("64")}},
          {&C::m_nITRMST, {36, Word("24")}, {2, Word("02")}},
          {&C::m_fCT, {-3.0, Real("C0 08")}, {-0.03, minusThreeHundredths}},
          {&C::m_fCTMIN, {-4.0, Real("C0 10")}, {0.003, threeThousandths}},
          {&C::m_fDABOBJ, {-5.0, Real("C0 14")}, {0.0, Real("00 00")}},
          {&C::m_fDELOBJ, {-6.0, Real("C0 18")}, {0.001, thousandth}},
          {&C::m_nReserved, {37, Word("25")}, {0, Word("00")}},
          {&C::m_fPENALT, {-7.0, Real("C0 1C")}, {1.0, Real("3F F0")}},
          {&C::m_fPMULT, {-8.0, Real("C0 20")}, {5.0, Real("40 14")}},
          {&C::m_fPENLTD, {-9.0, Real("C0 22")}, {0.01, hundredth}},
          {&C::m_fPMULTD, {-10.0, Real("C0 24")}, {5.0, Real("40 14")}},
          {&C::m_nInitialDOE, {11, Word("0B")}, {9, Word("09")}},
          {&C::m_nSubModel, {38, Word("26")}, {0, Word("00")}},
          {&C::m_nOrder, {4, Word("04")}, {3, Word("03")}},
          {&C::m_nHasMinPoints, {1, Word("01")}, {0, Word("00")}},
          {&C::m_nMinPoints, {39, Word("27")}, {0, Word("00")}},
          {&C::m_nHasMaxPoints, {2, Word("02")}, {0, Word("00")}},
          {&C::m_nMaxPoints, {65536, "00 00 01 00 "}, {0, Word("00")}},
          {&C::m_nConvIters, {40, Word("28")}, {2, Word("02")}},
          {&C::m_fHardRel, {-11.0, Real("C0 26")}, {0.001, thousandth}},
          {&C::m_fHardAbs, {-12.0, Real("C0 28")}, {0.0001, tenThousandth}},
          {&C::m_fSoftRelApprox, {-13.0, Real("C0 2A")}, {0.001, thousandth}},
          {&C::m_fSoftAbsApprox, {-14.0, Real("C0 2C")}, {0.0001, tenThousandth}},
          {&C::m_fMoveRelLinear, {-15.0, Real("C0 2E")}, {0.2, fifth}},
          {&C::m_fMoveRelMixed, {-16.0, Real("C0 30")}, {0.2, fifth}},
          {&C::m_fMoveRelQuad, {-17.0, Real("C0 31")}, {0.2, fifth}},
          {&C::m_fMoveAbsLinear, {-18.0, Real("C0 32")}, {0.02, fiftieth}},
          {&C::m_fMoveAbsMixed, {-19.0, Real("C0 33")}, {0.02, fiftieth}},
          {&C::m_fMoveAbsQuad, {-20.0, Real("C0 34")}, {0.02, fiftieth}},
          {&C::m_fPEnter, {-21.0, Real("C0 35")}, {0.1, tenth}, 18},
          {&C::m_fPRemove, {-22.0, Real("C0 36")}, {0.1, tenth}, 18},
      },
      RandomFields<C>(3, "03"));
}

Fields<CDOEControl> DesignFields() {
  using C = CDOEControl;
  const Typed<std::vector<vbINT32>> freshOptions{
      {0, 0, 1, 12, -1, 10, 10, 3101, 1, 0, 0, 0, 0, 0, 0},
      "0F 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 0C 00 00 00 FF FF FF FF "
      "0A 00 00 00 0A 00 00 00 1D 0C 00 00 01 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "};
  const Typed<std::vector<vbINT32>> options{
      {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, -2},
      "0F 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00 05 00 00 00 "
      "06 00 00 00 07 00 00 00 08 00 00 00 09 00 00 00 0A 00 00 00 0B 00 00 00 "
      "0C 00 00 00 0D 00 00 00 0E 00 00 00 FE FF FF FF "};
  const Typed<std::vector<vbINT32>> freshIndices{
      std::vector<vbINT32>(15),
      "0F 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "};
  const Typed<std::vector<vbINT32>> indices{
      {31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17},
      "0F 00 00 00 1F 00 00 00 1E 00 00 00 1D 00 00 00 1C 00 00 00 1B 00 00 00 "
      "1A 00 00 00 19 00 00 00 18 00 00 00 17 00 00 00 16 00 00 00 15 00 00 00 "
      "14 00 00 00 13 00 00 00 12 00 00 00 11 00 00 00 "};
  return Joined<C>(
      {
          {&C::m_nMethod, {3, Word("03")}, {1, Word("01")}},
          {&C::m_nModel, {2, Word("02")}, {4, Word("04")}},
          {&C::m_nTask, {1, Word("01")}, {0, Word("00")}},
          {&C::m_nDOptimal, {5, Word("05")}, {0, Word("00")}},
          {&C::m_nRetained, {48, Word("30")}, {0, Word("00")}},
          {&C::m_nFilter, {6, Word("06")}, {0, Word("00")}},
          {&C::m_vnOptions, options, freshOptions},
          {&C::m_vnGUIIndices, indices, freshIndices},
      },
      RandomFields<C>(4, "04"));
}

Fields<CNGOControl> NonGradientFields() {
  using C = CNGOControl;
  const Fields<C> first{
      {&C::m_nMethod, {2, Word("02")}, {0, Word("00")}},
      {&C::m_nOldPopulation, {64, Word("40")}, {0, Word("00")}},
      {&C::m_nPopulation, {65, Word("41")}, {100, Word("64")}, 13},
      {&C::m_nMaxIters, {66, Word("42")}, {100, Word("64")}},
      {&C::m_nFixedSeed, {0L, Word("00")}, {1, Word("01")}},
      {&C::m_nSeed, {16909060, "04 03 02 01 "}, {234567890, "D2 38 FB 0D "}, 8},
      {&C::m_nConvIters, {67, Word("43")}, {5, Word("05")}},
      {&C::m_nMinIters, {68, Word("44")}, {5, Word("05")}},
      {&C::m_nMinimize, {2, Word("02")}, {1, Word("01")}},
      {&C::m_fCTMIN, {1.5, Real("3F F8")}, {0.003, threeThousandths}},
      {&C::m_fSeedFraction, {2.5, Real("40 04")}, {0.5, Real("3F E0")}, 17},
      {&C::m_fHardAbs, {3.5, Real("40 0C")}, {0.0001, tenThousandth}},
      {&C::m_fHardRel, {4.5, Real("40 12")}, {0.001, thousandth}},
      {&C::m_fSoftAbs, {5.5, Real("40 16")}, {0.0001, tenThousandth}},
      {&C::m_fSoftRel, {6.5, Real("40 1A")}, {0.001, thousandth}},
      {&C::m_fInertia, {7.5, Real("40 1E")}, {1.2, "3F F3 33 33 33 33 33 33 "}},
      {&C::m_fTrust1, {8.5, Real("40 21")}, {1.5, Real("3F F8")}},
      {&C::m_fTrust2, {9.5, Real("40 23")}, {2.5, Real("40 04")}},
      {&C::m_nCrossType, {1, Word("01")}, {0, Word("00")}},
      {&C::m_fCrossProb, {10.5, Real("40 25")}, {0.98, "3F EF 5C 28 F5 C2 8F 5C "}},
      {&C::m_fMutProb, {11.5, Real("40 27")}, {0.12, "3F BE B8 51 EB 85 1E B8 "}},
      {&C::m_fNSGACrossProb, {12.5, Real("40 29")}, {1.0, Real("3F F0")}, 17},
      {&C::m_fNSGAMutProb, {13.5, Real("40 2B")}, {0.1, tenth}, 17},
      {&C::m_nCrossIndex, {69, Word("45")}, {10, Word("0A")}, 17},
      {&C::m_nMutIndex, {70, Word("46")}, {15, Word("0F")}, 17},
  };
  return Joined<C>(Joined<C>(first, RandomFields<C>(1, "01")),
                   {{&C::m_nStart, {11, Word("0B")}, {10, Word("0A")}, 13}});
}

Fields<CANLControl> AnalysisFields() {
  return RandomFields<CANLControl>(1, "01");
}

int ControlVersion(int controlVersion) {
  return controlVersion;
}

/// A field of all versions is one of all versions of both.
int TaskVersion(int controlVersion) {
  static const std::map<int, int> versions{{1, 1},   {7, 10},  {8, 11},  {11, 14}, {12, 15},
                                           {13, 16}, {14, 17}, {15, 18}, {17, 20}, {18, 22}};
  return versions.at(controlVersion);
}
