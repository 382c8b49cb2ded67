#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "store/KestErr.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DSet.h"
#include "tests/definition/AuxiliarySamples.h"
#include "tests/support/Study.h"
#include "tests/support/StudyRequired.h"

// Auxiliary definitions made again from those that a task uses.

namespace {

using Floats = std::vector<vbFLOAT64>;
using Names = std::vector<std::string>;

class AuxiliaryLoad : public testing::Test {
 protected:
  AuxiliaryLoad() { links.m_nID = equations.m_nID = sets.m_nID = 7; }

  void AddLink(int id, const std::string& name, const Floats& coefficients) {
    links.m_vnAuxID.push_back(id);
    links.m_vstrName.push_back(name);
    links.m_mdCoef.push_back(coefficients);
  }
  void AddEquation(int id, const std::string& name) {
    equations.m_vnAuxID.push_back(id);
    equations.m_vstrName.push_back(name);
    equations.m_vstrArgs.push_back("a,b");
    equations.m_vstrEquation.push_back("a*b");
  }
  void AddSet(int id, const std::string& name, const Floats& values) {
    sets.m_vnAuxID.push_back(id);
    sets.m_vstrName.push_back(name);
    sets.m_mdValues.push_back(values);
  }
  void Store() {
    links.PutObject();
    equations.PutObject();
    sets.PutObject();
  }
  void Load() {
    Store();
    CAuxiliary::LoadAuxillaries(7, study.Pod());
  }
  CAuxiliary Stored(int id) {
    CAuxiliary definition(study.Pod());
    definition.m_nID = id;
    EXPECT_TRUE(definition.GetObject()) << id;
    return definition;
  }
  long CountStored() { return CAuxiliary(study.Pod()).CountObjects(); }

  Study study;
  CDLink links{study.Pod()};
  CDEqn equations{study.Pod()};
  CDSet sets{study.Pod()};
};

TEST_F(AuxiliaryLoad, LinkHasItsCoefficientsAndNewNamesForItsArguments) {
  AddLink(3, "weighted", {1.0, 2.0, -3.0});
  Load();
  const CAuxiliary link = Stored(3);
  EXPECT_EQ(link.m_strName, "weighted");
  EXPECT_EQ(link.m_nAuxType, 1);
  EXPECT_EQ(link.m_nNumber, 1);
  EXPECT_EQ(link.m_vfCoef, (Floats{1.0, 2.0, -3.0}));
  EXPECT_EQ(link.m_vstrArgNames, (Names{"Arg__1", "Arg__2", "Arg__3"}));
  EXPECT_EQ(link.GetNumArgs(), 2U);
  EXPECT_TRUE(link.m_vfValues.empty());
  EXPECT_EQ(link.m_strArgs, "");
  EXPECT_EQ(link.m_strEquation, "");
}

TEST_F(AuxiliaryLoad, LinkWithoutArgumentsHasAConstantAndAnUnusedName) {
  AddLink(3, "constant", {5.0});
  Load();
  EXPECT_EQ(Stored(3).m_vfCoef, Floats{5.0});
  EXPECT_EQ(Stored(3).m_vstrArgNames, Names{"Arg__1"});
  EXPECT_EQ(Stored(3).GetNumArgs(), 0U);
}

TEST_F(AuxiliaryLoad, EquationHasItsTexts) {
  AddEquation(4, "area");
  Load();
  const CAuxiliary equation = Stored(4);
  EXPECT_EQ(equation.m_strName, "area");
  EXPECT_EQ(equation.m_nAuxType, 2);
  EXPECT_EQ(equation.m_nNumber, 1);
  EXPECT_EQ(equation.m_strArgs, "a,b");
  EXPECT_EQ(equation.m_strEquation, "a*b");
  EXPECT_TRUE(equation.m_vfCoef.empty());
  EXPECT_TRUE(equation.m_vstrArgNames.empty());
  EXPECT_TRUE(equation.m_vfValues.empty());
}

TEST_F(AuxiliaryLoad, TextsThatAreMissingAreEmpty) {
  AddEquation(4, "area");
  AddEquation(5, "volume");
  equations.m_vstrName.pop_back();
  equations.m_vstrArgs.clear();
  equations.m_vstrEquation.pop_back();
  Load();
  EXPECT_EQ(Stored(4).m_strName, "area");
  EXPECT_EQ(Stored(4).m_strArgs, "");
  EXPECT_EQ(Stored(4).m_strEquation, "a*b");
  EXPECT_EQ(Stored(5).m_strName, "");
  EXPECT_EQ(Stored(5).m_strArgs, "");
  EXPECT_EQ(Stored(5).m_strEquation, "");
  EXPECT_EQ(Stored(5).m_nNumber, 2);
}

TEST_F(AuxiliaryLoad, SetHasItsMembers) {
  AddSet(6, "plates", {1.0, 2.0, 4.0});
  Load();
  const CAuxiliary set = Stored(6);
  EXPECT_EQ(set.m_strName, "plates");
  EXPECT_EQ(set.m_nAuxType, 4);
  EXPECT_EQ(set.m_nNumber, 1);
  EXPECT_EQ(set.m_vfValues, (Floats{1.0, 2.0, 4.0}));
  EXPECT_TRUE(set.m_vfCoef.empty());
  EXPECT_TRUE(set.m_vstrArgNames.empty());
}

TEST_F(AuxiliaryLoad, EachKindIsNumberedByItself) {
  AddLink(8, "a", {0.0});
  AddLink(2, "b", {0.0});
  AddEquation(5, "c");
  AddSet(9, "d", {});
  AddSet(3, "e", {});
  Load();
  EXPECT_EQ(CountStored(), 5);
  EXPECT_EQ(Stored(8).m_nNumber, 1);
  EXPECT_EQ(Stored(2).m_nNumber, 2);
  EXPECT_EQ(Stored(5).m_nNumber, 1);
  EXPECT_EQ(Stored(9).m_nNumber, 1);
  EXPECT_EQ(Stored(3).m_nNumber, 2);
}

TEST_F(AuxiliaryLoad, EmptyTablesMakeNothing) {
  Load();
  EXPECT_EQ(CountStored(), 0);
}

TEST_F(AuxiliaryLoad, StoredDefinitionOfTheSameIDIsReplacedAndOthersStay) {
  CAuxiliary old = FilledAuxiliary(study.Pod());
  old.PutObject();
  old.m_nID = 8;
  old.PutObject();
  AddSet(8, "plates", {1.0});
  Load();
  ExpectFilledAuxiliary(Stored(7));
  EXPECT_EQ(Stored(8).m_strName, "plates");
  EXPECT_EQ(Stored(8).m_strEquation, "");
  EXPECT_TRUE(Stored(8).m_vfCoef.empty());
}

// ---- Failures ----

TEST_F(AuxiliaryLoad, TaskWithoutATableCannotBeReadAndNothingIsStored) {
  AddLink(3, "weighted", {1.0});
  Store();
  for (const int task : {8, 0, -7}) {
    EXPECT_THROW(CAuxiliary::LoadAuxillaries(task, study.Pod()), CGetObject);
  }
  for (vbPersistent* table :
       {static_cast<vbPersistent*>(&links), static_cast<vbPersistent*>(&equations),
        static_cast<vbPersistent*>(&sets)}) {
    table->RemoveObject();
    try {
      CAuxiliary::LoadAuxillaries(7, study.Pod());
      ADD_FAILURE();
    } catch (const CGetObject& error) {
      EXPECT_STREQ(error.what(), "Could not get object");
    }
    table->PutObject();
  }
  EXPECT_EQ(CountStored(), 0);
}

TEST_F(AuxiliaryLoad, ColumnsThatDoNotFitAreInvalidArgumentsAndWhatIsStoredStays) {
  AddLink(3, "weighted", {1.0});
  AddSet(4, "plates", {1.0});
  sets.m_mdValues.clear();
  EXPECT_THROW(Load(), CInvalidArgument);
  AddSet(5, "bars", {1.0});
  sets.m_vstrName.clear();
  EXPECT_THROW(Load(), CInvalidArgument);
  links.m_vstrName.clear();
  EXPECT_THROW(Load(), CInvalidArgument);
  links.m_vstrName = {"weighted"};
  links.m_mdCoef.clear();
  EXPECT_THROW(Load(), CInvalidArgument);
  EXPECT_EQ(CountStored(), 1);
  EXPECT_EQ(Stored(3).m_vfCoef, Floats{1.0});
}

TEST_F(AuxiliaryLoad, AsksForAStudy) {
  ExpectToRequireStudy(study, [](POD* pod) { CAuxiliary::LoadAuxillaries(7, pod); });
}

}  // namespace
