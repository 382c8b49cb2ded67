#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <type_traits>
#include <valarray>
#include <vector>

#include "store/vbscalar.h"

// The stored columns of a task's smaller tables (constraints, objectives, links, functions, sets)
// as lists that a test types.

/// Contents of random sizes, with the bytes that they take in a record.
class RandomContents {
 public:
  std::size_t Fill(vbINT32& number) {
    number = static_cast<int>(random_());
    return 4;
  }
  std::size_t Fill(vbFLOAT64& number) {
    number = static_cast<double>(random_()) / 64.0 - 1e7;
    return 8;
  }
  std::size_t Fill(std::string& text) {
    text.assign(Size(40), ' ');
    for (char& letter : text) letter = static_cast<char>(1 + random_() % 255);
    return text.empty() ? 5 : 4 + text.size();
  }
  template <class Elements>
  std::size_t Fill(Elements& elements) {
    elements.resize(Size(20));
    std::size_t bytes = 4;
    for (auto& element : elements) bytes += Fill(element);
    return bytes;
  }

 private:
  std::size_t Size(std::size_t most) { return random_() % (most + 1); }

  std::mt19937 random_{20260702};
};

template <class Element>
std::vector<Element> AsVector(const std::vector<Element>& elements) {
  return elements;
}
template <class Element>
std::vector<Element> AsVector(const std::valarray<Element>& elements) {
  return {begin(elements), end(elements)};
}

/// A value of a column, and its bytes in a record as hex.
template <class Elements>
struct Content {
  Elements elements;
  std::string hex;
};

/// A column of a table: a value that no other column has, and one that differs from it in a single
/// element. `countsAt` says where in the first one's bytes there are counts and lengths.
template <class Table>
struct Column {
  template <class Elements>
  Column(Elements Table::*member, const Content<std::type_identity_t<Elements>>& content,
         const Content<std::type_identity_t<Elements>>& otherContent,
         std::vector<std::size_t> countPlaces = {0})
      : filled(content.hex),
        other(otherContent.hex),
        countsAt(std::move(countPlaces)),
        fill([=](Table& table) { table.*member = content.elements; }),
        fillOther([=](Table& table) { table.*member = otherContent.elements; }),
        randomise([=](Table& table, RandomContents& random) { return random.Fill(table.*member); }),
        expectFilled([=](const Table& table) {
          EXPECT_EQ(AsVector(table.*member), AsVector(content.elements));
        }),
        expectEmpty([=](const Table& table) { EXPECT_EQ((table.*member).size(), 0U); }),
        expectSame([=](const Table& table, const Table& expected) {
          EXPECT_EQ(AsVector(table.*member), AsVector(expected.*member));
        }) {}

  std::string filled;
  std::string other;
  std::vector<std::size_t> countsAt;
  std::function<void(Table&)> fill;
  std::function<void(Table&)> fillOther;
  std::function<std::size_t(Table&, RandomContents&)> randomise;
  std::function<void(const Table&)> expectFilled;
  std::function<void(const Table&)> expectEmpty;
  std::function<void(const Table&, const Table&)> expectSame;
};

/// All columns of a table, in the order of its record.
template <class Table>
using Columns = std::vector<Column<Table>>;

inline const std::string emptyColumn = "00 00 00 00 ";
