#include "store/classtable.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "definition/GPoint.h"
#include "store/PersistentClass.h"

namespace {

TEST(ClassTable, NamesTheClassesByTheirIndex) {
  const std::vector<std::string> descriptions = {"CInput - GUI",
                                                 "CAuxiliary - GUI",
                                                 "CTask - Task",
                                                 "CDVar - Task",
                                                 "CDResp - Task",
                                                 "CDCons - Task",
                                                 "CDObj - Task",
                                                 "CDLink - Task",
                                                 "CDEqn - Task",
                                                 "CApproxModels - Result",
                                                 "CResult - Result",
                                                 "CDPoint - Result",
                                                 "CIter - Result",
                                                 "CDSet - Task",
                                                 "CGPoint - GUI",
                                                 "CDBControl",
                                                 "CRDOE - Result",
                                                 "CDesignControl - GUI",
                                                 "CResp - GUI",
                                                 "CResid - Result",
                                                 "CMessage - Result",
                                                 "CRApproxMod - Result",
                                                 "unused",
                                                 "unused",
                                                 "unused"};
  const std::vector<std::string> table(std::begin(pszIndexDesc), std::end(pszIndexDesc));
  EXPECT_EQ(table, descriptions);
}

TEST(ClassTable, AClassIDIsAThousandForEachIndexFromOne) {
  EXPECT_EQ(vbClassIDOf(0), 1000);
  EXPECT_EQ(vbClassIDOf(13), 14000);
  EXPECT_EQ(vbClassIDOf(21), 22000);
}

/// A class's row of the table.
struct Row {
  long index, id, version;
  std::string name;

  bool operator==(const Row&) const = default;
};

template <class Class>
Row RowOfAnObject() {
  Class object(static_cast<POD*>(nullptr));
  return {object.GetVBClassIndex(), object.GetVBClassID(), object.GetVBClassVer(),
          object.GetVBClassName()};
}

TEST(ClassTable, DesignPoints) {
  const Row row{14, 15000, 2, "CGPoint"};
  const Row members{CGPoint::m_nGPOINT_INDX, CGPoint::m_nGPOINT_ID, CGPoint::m_nGPOINT_VER,
                    CGPoint::m_strCLASS_NAME};
  EXPECT_EQ(members, row);
  EXPECT_EQ(RowOfAnObject<CGPoint>(), row);
}

}  // namespace
