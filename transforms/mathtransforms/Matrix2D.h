#pragma once
// A dense matrix of doubles, row by row, for the small least-squares systems
// of the math transforms. Arithmetic that makes a new matrix returns it on
// the heap; the caller owns it.
#include <velmora/foundation/Export.h>

#include <vector>

namespace Velmora::CT::MT {

class VELMORA_API CMatrix2D
{
public:
  // Negative sizes raise code 56. `zero` asks for the cells to start at
  // 0.0; the storage here always starts so, and the flag stays for callers.
  CMatrix2D(long rows, long columns, bool zero = true);
  CMatrix2D(CMatrix2D const & other) = default;
  virtual ~CMatrix2D();

  long GetRows() const { return m_rows; }
  long GetColumns() const { return m_columns; }

  // The (row, column) of a linear index, so that a vector can be reached by one number.
  void GetRowAndColumn(long index, long & row, long & column) const;

  // Cells by (row, column) or by linear index; an index outside raises code 48.
  virtual double GetCell(long row, long column) const;
  virtual double GetCell(long index) const;
  virtual void SetCell(long row, long column, double value);
  virtual void SetCell(long index, double value);
  virtual void AddToCell(long row, long column, double value);
  virtual void AddToCell(long index, double value);
  virtual void SubtractFromCell(long row, long column, double value);
  virtual void SubtractFromCell(long index, double value);
  void Fill(double value);

  // Takes the other's size and cells.
  CMatrix2D & operator=(CMatrix2D const & other);
  // Same size only, else code 56.
  CMatrix2D & operator+=(CMatrix2D const & other);
  CMatrix2D & operator-=(CMatrix2D const & other);
  CMatrix2D & operator*=(double factor);
  // Gauss-Jordan in place on the diagonal pivots as they stand: no row
  // exchange and no zero test, so a singular or badly ordered matrix leaves
  // infinite or NaN cells. A matrix that is not square raises code 57.
  void InvertSelf();
  void TransposeSelf();

  // New matrices, owned by the caller.
  CMatrix2D * operator+(CMatrix2D const & other) const;
  CMatrix2D * operator-(CMatrix2D const & other) const;
  // Columns of this must equal rows of the other, else code 56.
  CMatrix2D * operator*(CMatrix2D const & other) const;
  CMatrix2D * Transpose() const;
  CMatrix2D * Invert() const;

  // Exact: same size and the same cell values.
  bool operator==(CMatrix2D const & other) const;
  bool operator!=(CMatrix2D const & other) const { return !(*this == other); }
  bool IsSquare() const { return m_rows == m_columns; }
  bool IsSameSize(CMatrix2D const & other) const { return m_rows == other.m_rows && m_columns == other.m_columns; }

private:
  long Index(long row, long column, char const * location) const;
  long Index(long index, char const * location) const;
  void RequireSameSize(CMatrix2D const & other, char const * location) const;

  long m_rows;
  long m_columns;
  std::vector<double> m_cells;
};

} // namespace Velmora::CT::MT
