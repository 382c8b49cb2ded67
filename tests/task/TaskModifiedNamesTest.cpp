#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/ModifiedTasks.h"

// Whatever is fixed, the tables go on naming the same scalars.

namespace {

const std::string& NameOf(const CDVar& vars, const CDResp& resps, int kind, long position) {
  const auto at = static_cast<std::size_t>(position);
  switch (kind) {
    case 20:
      return vars.m_vstrIndName.at(at);
    case 21:
      return vars.m_vstrLinkName.at(at);
    case 22:
      return vars.m_vstrSynName.at(at);
    case 23:
      return vars.m_vstrConstName.at(at);
    case 24:
      return resps.m_vstrIndName.at(at);
    case 25:
      return resps.m_vstrLinkName.at(at);
    default:
      return resps.m_vstrSynName.at(at);
  }
}

/// The scalars, by name, that all entries, arguments, constraints and objectives of a task are.
class NamedTables {
 public:
  NamedTables(const CDVar& vars, const CDResp& resps) : vars_(vars), resps_(resps) {
    AddRow(vars.m_vnSeq, vars.m_vnType);
    AddRows(vars.m_mnLinkSubj, vars.m_mnLinkType, {});
    AddRows(vars.m_mnSynSubj, vars.m_mnSynType, vars.m_mnSynLen);
    AddRow(resps.m_vnSeq, resps.m_vnType);
    AddRows(resps.m_mnLinkSubj, resps.m_mnLinkType, {});
    AddRows(resps.m_mnSynSubj, resps.m_mnSynType, resps.m_mnSynLen);
  }
  void AddRow(const std::vector<vbINT32>& positions, const std::vector<vbINT32>& kinds,
              const std::vector<vbINT32>& lengths = {}) {
    Names names;
    for (std::size_t i = 0; i < positions.size(); ++i) {
      const long count = lengths.empty() ? 1 : long{lengths.at(i)};
      for (long element = 0; element < count; ++element) {
        names.push_back(
            NameOf(vars_, resps_, static_cast<int>(long{kinds.at(i)}), positions[i] + element));
      }
    }
    rows.push_back(names);
  }

  std::vector<Names> rows;

 private:
  using Table = std::vector<std::vector<vbINT32>>;
  void AddRows(const Table& positions, const Table& kinds, const Table& lengths) {
    for (std::size_t i = 0; i < positions.size(); ++i) {
      AddRow(positions[i], kinds.at(i), lengths.empty() ? std::vector<vbINT32>() : lengths.at(i));
    }
  }

  const CDVar& vars_;
  const CDResp& resps_;
};

class TaskModifiedNames : public ModifiedTasks {
 protected:
  std::vector<Names> NamesOf(int task) {
    const auto vars = Stored<CDVar>(task);
    const auto resps = Stored<CDResp>(task);
    NamedTables tables(vars, resps);
    const auto cons = Stored<CDCons>(task);
    tables.AddRow(cons.m_vnSubj, cons.m_vnSubjType);
    const auto terms = Stored<CDObj>(task);
    tables.AddRow(terms.m_vnSubj, terms.m_vnSubjType);
    return tables.rows;
  }
};

TEST_F(TaskModifiedNames, StayTheSameWhateverIsFixed) {
  // The responses take whole arrays and single elements of x.
  auto resps = Stored<CDResp>(1);
  resps.m_mnSynSubj = {{1, 0, 1}};
  resps.m_mnSynType = {{20, 22, 20}};
  resps.m_mnSynLen = {{3, 2, 2}};
  resps.PutObject();
  const std::vector<Names> before = NamesOf(1);
  EXPECT_EQ(before.back(), (Names{"k", "f_1", "f_2"}));
  for (unsigned mask = 0; mask < 32; ++mask) {
    SCOPED_TRACE(mask);
    Flags fix(5);
    for (unsigned i = 0; i < 5; ++i) fix[i] = (mask >> i & 1) != 0;
    ASSERT_EQ(Modify(fix), 2);
    EXPECT_EQ(NamesOf(2), before);
    CTask::RemoveSpecifiedTask(Pod(), 2);
  }
}

}  // namespace
