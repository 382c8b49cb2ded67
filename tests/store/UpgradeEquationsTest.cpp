#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "task/DEqn.h"
#include "task/Task.h"
#include "tests/store/Upgrades.h"

// What opening a study of an old version does about line breaks in the texts of equations.

namespace {

constexpr int kLink = 1;
constexpr int kEquation = 2;

/// Two tasks with a table of equations each, and three definitions, with line breaks in their
/// texts.
class OldEquations : public Upgrades {
 protected:
  OldEquations() {
    OpenDatabase(base);
    for (const int id : {1, 2}) {
      CTask task(GetPOD());
      task.m_nID = id;
      task.PutObject();
      CDEqn equations(GetPOD());
      equations.m_nID = id;
      equations.m_vnAuxID = {5, 6};
      equations.m_vstrName = {"one\ntwo", "three"};
      equations.m_vstrArgs = {"a,\nb", ""};
      equations.m_vstrEquation = {"a\n+\rb\r\n", "\n\r\t c"};
      equations.PutObject();
    }
    StoreDefinition(1, kEquation, "x\r\n\r\ny\n");
    StoreDefinition(2, kLink, "of\na link");
    StoreDefinition(3, kEquation, "plain");
    CloseDatabase();
    ClearLog();
  }

  static void StoreDefinition(int id, int type, const std::string& text) {
    CAuxiliary definition(GetPOD());
    definition.m_nID = id;
    definition.m_nAuxType = type;
    definition.m_strName = "name\n";
    definition.m_strEquation = text;
    definition.PutObject();
  }

  /// The texts of the tables and the definitions.
  std::vector<std::string> Texts() {
    std::vector<std::string> texts;
    OpenDatabase(base);
    for (const int id : {1, 2}) {
      CDEqn equations(GetPOD());
      equations.m_nID = id;
      if (!equations.GetObject()) continue;
      for (const std::string& text : equations.m_vstrEquation) texts.push_back(text);
      EXPECT_EQ(equations.m_vstrName.front(), "one\ntwo");
      EXPECT_EQ(equations.m_vstrArgs.front(), "a,\nb");
    }
    for (const int id : {1, 2, 3}) {
      CAuxiliary definition(GetPOD());
      definition.m_nID = id;
      EXPECT_TRUE(definition.GetObject());
      texts.push_back(definition.m_strEquation);
      EXPECT_EQ(definition.m_strName, "name\n");
    }
    CloseDatabase();
    EXPECT_EQ(FaultsOfStudy(base), "");
    return texts;
  }

  const std::vector<std::string> kOld = {"a\n+\rb\r\n",  "\n\r\t c",   "a\n+\rb\r\n", "\n\r\t c",
                                         "x\r\n\r\ny\n", "of\na link", "plain"};
  const std::vector<std::string> kClean = {"a + b  ", "  \t c",     "a + b  ", "  \t c",
                                           "x    y ", "of\na link", "plain"};
};

TEST_F(OldEquations, OfOldVersionsGetBlanksForLineBreaksOneForOne) {
  for (const long version : {1L, 3000L}) {
    SetVersion(version);
    EXPECT_EQ(Texts(), kClean);
  }
}

TEST_F(OldEquations, OfOtherVersionsStay) {
  for (const long version : {3001L, 4000L, 0x7FFFFFFFL, 0L, -1L}) {
    SetVersion(version);
    EXPECT_EQ(Texts(), kOld) << version;
  }
}

TEST_F(OldEquations, AreCleanedAsFarAsTheListOfDefinitionsGoes) {
  // Kept: a text without a definition is not looked at. A definition without a text is none.
  OpenDatabase(base);
  for (const int id : {1, 2}) {
    CDEqn equations(GetPOD());
    equations.m_nID = id;
    ASSERT_TRUE(equations.GetObject());
    equations.m_vnAuxID.resize(id == 1 ? 1 : 9);
    equations.PutObject();
  }
  CloseDatabase();
  SetVersion(3000);
  std::vector<std::string> expected = kClean;
  expected[1] = kOld[1];
  EXPECT_EQ(Texts(), expected);
}

TEST_F(OldEquations, WhoseTableIsMissingFailTheOpening) {
  OpenDatabase(base);
  CDEqn equations(GetPOD());
  equations.m_nID = 2;
  ASSERT_TRUE(equations.RemoveObject());
  CloseDatabase();
  SetVersion(3000);
  const std::string report = FailureReport<CGetObject>();
  EXPECT_TRUE(report.ends_with(kIndexEnd + Failure("Could not get object"))) << report;
  EXPECT_EQ(Names(), "study.ksb study.kx");
  EXPECT_EQ(FaultsOfStudy(base), "");
  // The study is one of the current version now, cleaned up to the missing table.
  const std::vector<std::string> expected = {"a + b  ", "  \t c", "x\r\n\r\ny\n", "of\na link",
                                             "plain"};
  EXPECT_EQ(Texts(), expected);
}

TEST_F(OldEquations, OfASubTaskAreNotLookedFor) {
  OpenDatabase(base);
  CTask child(GetPOD());
  child.m_nID = 3;
  child.m_nParent = 1;
  child.PutObject();
  CloseDatabase();
  SetVersion(3000);
  EXPECT_EQ(Texts(), kClean);
}

}  // namespace
