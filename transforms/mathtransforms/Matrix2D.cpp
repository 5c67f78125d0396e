#include <velmora/transforms/mathtransforms/Matrix2D.h>

#include <velmora/foundation/VelmoraException.h>

#include <algorithm>
#include <memory>

namespace Velmora::CT::MT {

using EX::CVelmoraException;

CMatrix2D::CMatrix2D(long rows, long columns, bool)
  : m_rows(rows), m_columns(columns)
{
  if (rows < 0 || columns < 0)
    throw CVelmoraException(CVelmoraException::kMatrixSize, "CMatrix2D::CMatrix2D");
  m_cells.assign(static_cast<size_t>(rows) * static_cast<size_t>(columns), 0.0);
}

CMatrix2D::~CMatrix2D() = default;

void CMatrix2D::GetRowAndColumn(long index, long & row, long & column) const
{
  Index(index, "CMatrix2D::GetRowAndColumn");
  row = index / m_columns;
  column = index % m_columns;
}

long CMatrix2D::Index(long row, long column, char const * location) const
{
  if (row < 0 || row >= m_rows || column < 0 || column >= m_columns)
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, location);
  return row * m_columns + column;
}

long CMatrix2D::Index(long index, char const * location) const
{
  if (index < 0 || index >= static_cast<long>(m_cells.size()))
    throw CVelmoraException(CVelmoraException::kIndexOutOfRange, location);
  return index;
}

void CMatrix2D::RequireSameSize(CMatrix2D const & other, char const * location) const
{
  if (!IsSameSize(other))
    throw CVelmoraException(CVelmoraException::kMatrixSize, location);
}

double CMatrix2D::GetCell(long row, long column) const
{
  return m_cells[static_cast<size_t>(Index(row, column, "CMatrix2D::GetCell"))];
}

double CMatrix2D::GetCell(long index) const { return m_cells[static_cast<size_t>(Index(index, "CMatrix2D::GetCell"))]; }

void CMatrix2D::SetCell(long row, long column, double value)
{
  m_cells[static_cast<size_t>(Index(row, column, "CMatrix2D::SetCell"))] = value;
}

void CMatrix2D::SetCell(long index, double value) { m_cells[static_cast<size_t>(Index(index, "CMatrix2D::SetCell"))] = value; }

void CMatrix2D::AddToCell(long row, long column, double value)
{
  m_cells[static_cast<size_t>(Index(row, column, "CMatrix2D::AddToCell"))] += value;
}

void CMatrix2D::AddToCell(long index, double value)
{
  m_cells[static_cast<size_t>(Index(index, "CMatrix2D::AddToCell"))] += value;
}

void CMatrix2D::SubtractFromCell(long row, long column, double value)
{
  m_cells[static_cast<size_t>(Index(row, column, "CMatrix2D::SubtractFromCell"))] -= value;
}

void CMatrix2D::SubtractFromCell(long index, double value)
{
  m_cells[static_cast<size_t>(Index(index, "CMatrix2D::SubtractFromCell"))] -= value;
}

void CMatrix2D::Fill(double value) { std::fill(m_cells.begin(), m_cells.end(), value); }

CMatrix2D & CMatrix2D::operator=(CMatrix2D const & other)
{
  m_rows = other.m_rows;
  m_columns = other.m_columns;
  m_cells = other.m_cells;
  return *this;
}

CMatrix2D & CMatrix2D::operator+=(CMatrix2D const & other)
{
  RequireSameSize(other, "CMatrix2D::operator+=");
  for (size_t i = 0; i < m_cells.size(); ++i)
    m_cells[i] += other.m_cells[i];
  return *this;
}

CMatrix2D & CMatrix2D::operator-=(CMatrix2D const & other)
{
  RequireSameSize(other, "CMatrix2D::operator-=");
  for (size_t i = 0; i < m_cells.size(); ++i)
    m_cells[i] -= other.m_cells[i];
  return *this;
}

CMatrix2D & CMatrix2D::operator*=(double factor)
{
  for (double & cell : m_cells)
    cell *= factor;
  return *this;
}

void CMatrix2D::InvertSelf()
{
  if (!IsSquare())
    throw CVelmoraException(CVelmoraException::kMatrixNotSquare, "CMatrix2D::InvertSelf");
  long const n = m_rows;
  auto a = [this, n](long i, long j) -> double & { return m_cells[static_cast<size_t>(i * n + j)]; };
  for (long k = 0; k < n; ++k) {
    double const pivot = a(k, k);
    for (long j = 0; j < n; ++j)
      if (j != k)
        a(k, j) /= pivot;
    a(k, k) = 1.0 / pivot;
    for (long i = 0; i < n; ++i) {
      if (i == k)
        continue;
      for (long j = 0; j < n; ++j)
        if (j != k)
          a(i, j) -= a(i, k) * a(k, j);
    }
    double const negated = -a(k, k);
    for (long i = 0; i < n; ++i)
      if (i != k)
        a(i, k) *= negated;
  }
}

void CMatrix2D::TransposeSelf()
{
  std::vector<double> turned(m_cells.size());
  for (long i = 0; i < m_rows; ++i)
    for (long j = 0; j < m_columns; ++j)
      turned[static_cast<size_t>(j * m_rows + i)] = m_cells[static_cast<size_t>(i * m_columns + j)];
  m_cells.swap(turned);
  std::swap(m_rows, m_columns);
}

CMatrix2D * CMatrix2D::operator+(CMatrix2D const & other) const
{
  RequireSameSize(other, "CMatrix2D::operator+");
  auto sum = std::make_unique<CMatrix2D>(*this);
  *sum += other;
  return sum.release();
}

CMatrix2D * CMatrix2D::operator-(CMatrix2D const & other) const
{
  RequireSameSize(other, "CMatrix2D::operator-");
  auto difference = std::make_unique<CMatrix2D>(*this);
  *difference -= other;
  return difference.release();
}

CMatrix2D * CMatrix2D::operator*(CMatrix2D const & other) const
{
  if (m_columns != other.m_rows)
    throw CVelmoraException(CVelmoraException::kMatrixSize, "CMatrix2D::operator*");
  auto product = std::make_unique<CMatrix2D>(m_rows, other.m_columns, true);
  for (long i = 0; i < m_rows; ++i)
    for (long k = 0; k < m_columns; ++k) {
      double const left = m_cells[static_cast<size_t>(i * m_columns + k)];
      for (long j = 0; j < other.m_columns; ++j)
        product->m_cells[static_cast<size_t>(i * other.m_columns + j)] +=
          left * other.m_cells[static_cast<size_t>(k * other.m_columns + j)];
    }
  return product.release();
}

CMatrix2D * CMatrix2D::Transpose() const
{
  auto turned = std::make_unique<CMatrix2D>(*this);
  turned->TransposeSelf();
  return turned.release();
}

CMatrix2D * CMatrix2D::Invert() const
{
  auto inverse = std::make_unique<CMatrix2D>(*this);
  inverse->InvertSelf();
  return inverse.release();
}

bool CMatrix2D::operator==(CMatrix2D const & other) const { return IsSameSize(other) && m_cells == other.m_cells; }

} // namespace Velmora::CT::MT
