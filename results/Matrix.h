#pragma once

#include <stdexcept>
#include <valarray>

/// A small matrix in memory, of int or double. It owns its elements and keeps them row by row.
///
/// Failures are those of the standard library: std::out_of_range.
template <class T>
class CMatrix {
 public:
  /// With `byColumns`, `data` stands column by column, else row by row.
  /// THROWS for a number that is negative as an int, and for data of another size than the shape's.
  CMatrix(unsigned long rows, unsigned long cols, const std::valarray<T>& data, bool byColumns)
      : m_Data(data), m_nRows(rows), m_nCols(cols) {
    if (static_cast<int>(rows) < 0) throw std::out_of_range("CMatrix: invalid number of rows");
    if (static_cast<int>(cols) < 0) throw std::out_of_range("CMatrix: invalid number of columns");
    if (!Fits(rows, cols, data.size())) throw std::out_of_range("CMatrix: size mismatch");
    if (byColumns) TakeColumns(data);
  }

  /// Takes shape and elements of another matrix.
  void copy(const CMatrix<T>& other) {
    if (this != &other) *this = other;
  }

  unsigned long Rows() const { return m_nRows; }
  unsigned long Columns() const { return m_nCols; }
  /// The elements, row by row.
  const std::valarray<T>& Data() const { return m_Data; }

  /// An element, both positions from 0. THROWS for a position outside.
  T& At(unsigned long row, unsigned long col) { return m_Data[PlaceOf(row, col)]; }
  const T& At(unsigned long row, unsigned long col) const { return m_Data[PlaceOf(row, col)]; }

 private:
  /// Whether rows times columns is `size`. The product itself may be beyond all numbers.
  static bool Fits(unsigned long rows, unsigned long cols, unsigned long size) {
    if (cols == 0) return size == 0;
    return size % cols == 0 && size / cols == rows;
  }

  void TakeColumns(const std::valarray<T>& data) {
    for (unsigned long col = 0; col < m_nCols; ++col) {
      m_Data[std::slice(col, m_nRows, m_nCols)] = data[std::slice(col * m_nRows, m_nRows, 1)];
    }
  }

  unsigned long PlaceOf(unsigned long row, unsigned long col) const {
    if (row >= m_nRows || col >= m_nCols) throw std::out_of_range("CMatrix: no such element");
    return row * m_nCols + col;
  }

  std::valarray<T> m_Data;
  unsigned long m_nRows;
  unsigned long m_nCols;
};
