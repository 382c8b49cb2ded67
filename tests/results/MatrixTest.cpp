#include "results/Matrix.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <valarray>
#include <vector>

namespace {

using Elements = std::valarray<double>;

const Elements six = {1, 2, 3, 4, 5, 6};

template <class T>
std::vector<T> ListOf(const CMatrix<T>& matrix) {
  return {begin(matrix.Data()), end(matrix.Data())};
}

template <class Operation>
std::string OutOfRange(Operation operation) {
  try {
    operation();
  } catch (const std::out_of_range& error) {
    return error.what();
  }
  return "nothing thrown";
}

std::string FaultOf(unsigned long rows, unsigned long cols, std::size_t size) {
  return OutOfRange([&] { CMatrix<double>(rows, cols, Elements(size), false); });
}

TEST(Matrix, HasTheDataRowByRow) {
  CMatrix<double> matrix(2, 3, six, false);
  EXPECT_EQ(matrix.Rows(), 2U);
  EXPECT_EQ(matrix.Columns(), 3U);
  EXPECT_EQ(ListOf(matrix), (std::vector<double>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(matrix.At(0, 0), 1);
  EXPECT_EQ(matrix.At(0, 2), 3);
  EXPECT_EQ(matrix.At(1, 0), 4);
  EXPECT_EQ(matrix.At(1, 2), 6);
}

TEST(Matrix, TakesDataColumnByColumn) {
  const CMatrix<double> matrix(2, 3, six, true);
  EXPECT_EQ(ListOf(matrix), (std::vector<double>{1, 3, 5, 2, 4, 6}));
  EXPECT_EQ(matrix.At(0, 1), 3);
  EXPECT_EQ(matrix.At(1, 0), 2);
}

TEST(Matrix, OfIntegers) {
  const CMatrix<int> matrix(3, 1, {7, 8, 9}, true);
  EXPECT_EQ(ListOf(matrix), (std::vector<int>{7, 8, 9}));
}

TEST(Matrix, MayBeEmpty) {
  for (const auto& [rows, cols] :
       std::vector<std::pair<unsigned long, unsigned long>>{{0, 0}, {0, 3}, {3, 0}}) {
    for (const bool byColumns : {false, true}) {
      const CMatrix<int> matrix(rows, cols, {}, byColumns);
      EXPECT_EQ(matrix.Rows(), rows);
      EXPECT_EQ(matrix.Columns(), cols);
      EXPECT_EQ(matrix.Data().size(), 0U);
      EXPECT_THROW(matrix.At(0, 0), std::out_of_range);
    }
  }
}

TEST(Matrix, OwnsItsElements) {
  Elements data = six;
  CMatrix<double> matrix(2, 3, data, false);
  data[0] = 99;
  EXPECT_EQ(matrix.At(0, 0), 1);
  matrix.At(1, 1) = 50;
  EXPECT_EQ(data[4], 5);
  EXPECT_EQ(ListOf(matrix), (std::vector<double>{1, 2, 3, 4, 50, 6}));
}

TEST(Matrix, WithANumberOfRowsBelowZeroIsOutOfRange) {
  for (const unsigned long rows : {static_cast<unsigned long>(-1L), 0x80000000UL, 0xFFFFFFFFUL}) {
    EXPECT_EQ(FaultOf(rows, 1, 1), "CMatrix: invalid number of rows") << rows;
    EXPECT_EQ(FaultOf(rows, rows, 1), "CMatrix: invalid number of rows") << rows;
  }
}

TEST(Matrix, WithANumberOfColumnsBelowZeroIsOutOfRange) {
  for (const unsigned long cols : {static_cast<unsigned long>(-1L), 0x80000000UL, 0xFFFFFFFFUL}) {
    EXPECT_EQ(FaultOf(1, cols, 1), "CMatrix: invalid number of columns") << cols;
  }
}

TEST(Matrix, OfAnotherSizeThanItsDataIsOutOfRange) {
  EXPECT_EQ(FaultOf(2, 3, 5), "CMatrix: size mismatch");
  EXPECT_EQ(FaultOf(2, 3, 7), "CMatrix: size mismatch");
  EXPECT_EQ(FaultOf(2, 3, 0), "CMatrix: size mismatch");
  EXPECT_EQ(FaultOf(0, 0, 1), "CMatrix: size mismatch");
  EXPECT_EQ(FaultOf(0, 3, 3), "CMatrix: size mismatch");
  EXPECT_EQ(FaultOf(3, 0, 3), "CMatrix: size mismatch");
}

TEST(Matrix, WhoseShapeIsBeyondAllNumbersIsOutOfRange) {
  // Each is 0 as an int, and their product is 0 as an unsigned long.
  EXPECT_EQ(FaultOf(1UL << 32, 1UL << 32, 0), "CMatrix: size mismatch");
  EXPECT_EQ(FaultOf(0x7FFFFFFFUL, 0x7FFFFFFFUL, 1), "CMatrix: size mismatch");
}

TEST(Matrix, HasNoElementOutsideItsShape) {
  const CMatrix<double> matrix(2, 3, six, false);
  EXPECT_THROW(matrix.At(2, 0), std::out_of_range);
  EXPECT_THROW(matrix.At(0, 3), std::out_of_range);
  EXPECT_THROW(matrix.At(static_cast<unsigned long>(-1L), 1), std::out_of_range);
  CMatrix<double> changed = matrix;
  EXPECT_THROW(changed.At(2, 0) = 1.0, std::out_of_range);
}

TEST(Matrix, CopiesShapeAndElements) {
  CMatrix<double> copy(1, 1, {9}, false);
  const CMatrix<double> source(2, 3, six, true);
  copy.copy(source);
  EXPECT_EQ(copy.Rows(), 2U);
  EXPECT_EQ(copy.Columns(), 3U);
  EXPECT_EQ(ListOf(copy), ListOf(source));
  copy.At(0, 0) = 50;
  EXPECT_EQ(source.At(0, 0), 1);
  copy.copy(CMatrix<double>(0, 4, {}, false));
  EXPECT_EQ(copy.Rows(), 0U);
  EXPECT_EQ(copy.Columns(), 4U);
  EXPECT_EQ(copy.Data().size(), 0U);
}

TEST(Matrix, CopiesAnotherShapeOfAsManyElements) {
  CMatrix<double> copy(2, 3, six, false);
  copy.copy(CMatrix<double>(3, 2, six, false));
  EXPECT_EQ(copy.Rows(), 3U);
  EXPECT_EQ(copy.Columns(), 2U);
  EXPECT_EQ(copy.At(2, 1), 6);
}

TEST(Matrix, StaysAsItIsWhenCopiedOntoItself) {
  CMatrix<double> matrix(2, 3, six, false);
  const double* const element = &matrix.At(0, 0);
  matrix.copy(matrix);
  EXPECT_EQ(ListOf(matrix), (std::vector<double>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(&matrix.At(0, 0), element);
}

}  // namespace
