#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <vector>

#include "index/btnode.h"
#include "store/KestErr.h"
#include "tests/support/IndexFile.h"
#include "tests/support/Log.h"
#include "tests/support/TreeFile.h"

// What every operation of a tree makes of a damaged one.

struct TreeOperation {
  const char* name;
  void (*run)(IndexFile& index, long number);
};

inline const TreeOperation kSearches[] = {
    {"Find", [](IndexFile& index, long number) { index.Holds(number); }},
    {"FindFirst", [](IndexFile& index, long) { index.First(); }},
    {"FindLast", [](IndexFile& index, long) { index.Last(); }},
    {"FindNext", [](IndexFile& index, long number) { index.Next(number); }},
    {"FindPrev", [](IndexFile& index, long number) { index.Previous(number); }}};

inline const TreeOperation kChanges[] = {
    {"Insert", [](IndexFile& index, long number) { index.Insert(number); }},
    {"Delete", [](IndexFile& index, long number) { index.Delete(number); }},
    {"LazyDelete", [](IndexFile& index, long number) { index.LazyDelete(number); }},
    {"CollapseRoot", [](IndexFile& index, long) { index->CollapseRoot(); }},
    {"InsertBalance", [](IndexFile& index, long number) {
       BtreeNode root(76, index->Order > 32 ? vbINT32(32) : index->Order);
       index->ReadNode(root, index->Root);
       root.Address = index->Root;
       KSBKey work;
       index->InsertBalance(root, number % 2 - 1, work);
     }}};

/// What became of an operation: "done", or the text of its failure. A failure outside of the
/// library's family fails the test.
inline std::string Outcome(const TreeOperation& operation, IndexFile& index, long number) {
  ClearLog();
  try {
    operation.run(index, number);
    return "done";
  } catch (const CKestErr& failure) {
    return failure.what();
  } catch (const std::exception& failure) {
    ADD_FAILURE() << operation.name << ' ' << number << ": " << failure.what();
    return failure.what();
  }
}

/// Whether only the insides of nodes and the words by which blocks are freed have changed between
/// the blocks `before`, and whatever was added behind them is sound blocks again. Blocks that are
/// no nodes of the order have to be as they were.
inline void ExpectOnlyNodesChanged(const TreeFile& before, TreeFile after, long endOfFile,
                                   const std::string& what, long order = 32) {
  TreeFile comparable = after;
  for (const StoredBlock& block : before.Blocks()) {
    if (block.length != NodeBlock(order)) continue;
    const long start = block.object - 28;
    comparable.Put(start + 8, before.Part(start + 8, 8));
    comparable.Put(block.object, before.Part(block.object, NodeSize(order) + 4));
  }
  const std::string old = before.Bytes();
  EXPECT_EQ(Differences(old, comparable.Bytes().substr(0, old.size())), "") << what;
  after.PutWord(4, endOfFile);
  EXPECT_NO_THROW(after.Blocks()) << what;
}

/// Runs every operation for every number and returns what became of them. Searches have to leave
/// the file and the header as they are, changes everything but the nodes.
inline std::vector<std::string> Outcomes(const TreeFile& damaged,
                                         const std::vector<long>& numbers) {
  std::vector<std::string> outcomes;
  IndexFile index(damaged);
  for (const TreeOperation& search : kSearches) {
    for (const long number : numbers) outcomes.push_back(Outcome(search, index, number));
    EXPECT_EQ(Differences(damaged.Bytes(), index.Stored().Bytes()), "") << search.name;
    EXPECT_EQ(index->TestTree(false), 0) << search.name;
  }
  for (const TreeOperation& change : kChanges) {
    for (const long number : numbers) {
      index.Replace(damaged);
      outcomes.push_back(Outcome(change, index, number));
      ExpectOnlyNodesChanged(
          damaged, index.Stored(), index.Database().GetEOF(),
          std::string(change.name) + ' ' + std::to_string(number) + ": " + outcomes.back());
    }
  }
  return outcomes;
}
