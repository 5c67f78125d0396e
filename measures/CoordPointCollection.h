#pragma once
// Many locations in one point style: the bulk form of points. Locations are
// kept as internal numbers, or as text when the style is a text format
// (Georef, MGRS, USNG).
#include <velmora/measures/CoordPoints.h>

#include <memory>
#include <vector>

namespace Velmora::ML {

class VELMORA_API CCoordPointCollection
{
public:
  CCoordPointCollection();
  explicit CCoordPointCollection(CCoordPoint const & style);
  CCoordPointCollection(CCoordPointCollection const & other);
  CCoordPointCollection & operator=(CCoordPointCollection const & other);
  ~CCoordPointCollection();
  bool operator==(CCoordPointCollection const & other) const;
  bool operator!=(CCoordPointCollection const & other) const { return !(*this == other); }

  // Replaces the style; the records stay as they are.
  void SetPointStyle(CCoordPoint const & style);
  CCoordPoint const * GetPointStyle() const { return m_style.get(); }
  CCoordPoint * GetPointStyle() { return m_style.get(); }
  // False for a geodetic or projected style in a text format.
  bool IsNormalPoint() const { return m_normal; }

  long Count() const { return static_cast<long>(m_xyz.size() / 3); }
  // Room for this many records, for callers that know how many will come.
  void Reserve(long count) { m_xyz.reserve(static_cast<size_t>(count) * 3); }
  void AddPoint(CCoordPoint const & point);
  void AddInternals(double x, double y, double z);
  void AddInUnits(double x, double y, double z);
  // A new point of the style's class; the caller owns it.
  CCoordPoint * GetPoint(long index) const;
  CCoordPoint * GetPoint(unsigned short const * name) const;
  // A literal index such as 0 would otherwise be taken for a null name.
  CCoordPoint * GetPoint(int index) const { return GetPoint(static_cast<long>(index)); }
  long IndexWithName(unsigned short const * name) const;
  bool Exists(unsigned short const * name) const;
  void GetInternals(long index, double & x, double & y, double & z) const;
  void SetInternals(long index, double x, double y, double z);
  void SetPoint(long index, CCoordPoint const & point);
  void SetPoint(unsigned short const * name, CCoordPoint const & point);
  void SetPoint(int index, CCoordPoint const & point) { SetPoint(static_cast<long>(index), point); }
  CString GetLocationString(long index) const;
  void SetLocationString(long index, unsigned short const * text);
  void Remove(long index);
  void Clear();

  // Raw access to the numbers, three internals a record, for bulk conversion.
  double const * Internals() const { return m_xyz.data(); }
  double * Internals() { return m_xyz.data(); }

private:
  void CheckIndex(long index, char const * location) const;
  void CheckStringFormat(bool wanted, char const * location) const;
  void Store(long index, CCoordPoint const & point);
  static void SetText(std::vector<QString> & texts, long index, long count, QString const & text);

  std::unique_ptr<CCoordPoint> m_style;
  // Whether the style keeps numbers: asked on every access, fixed with the style.
  bool m_normal = true;
  std::vector<double> m_xyz;
  // Names and location texts are rare: empty until the first one is given,
  // then one per record.
  std::vector<QString> m_names;
  std::vector<QString> m_locations;
};

} // namespace Velmora::ML
