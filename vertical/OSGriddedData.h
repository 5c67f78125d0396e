#pragma once
// The Ordnance Survey's grid of shift records (OSTN02 and OSGM02): after a
// header of a 16-bit kind and four doubles (columns, rows, first column and
// first row in kilometres), one record of 26 bytes a node (east shift, north
// shift and geoid height as doubles, and a 16-bit flag, 0 for no data), from
// the south-west, (columns + 1) records a row, 1 km apart on the grid's
// transverse Mercator: the National Grid (kind 0) or Irish Transverse
// Mercator (kinds 1 and 2).
#include <velmora/foundation/CString.h>

#include <cstdio>
#include <memory>

namespace Velmora::CS {
class CHorizontalDatum;
namespace PJ {
class CTransverseMercator;
}
} // namespace Velmora::CS

namespace Velmora::CS::VR {

class VELMORA_API COSGriddedData
{
public:
  // One node's values.
  struct Record
  {
    double east = 0.0, north = 0.0, geoid = 0.0; // metres
    short flag = 0;
  };

  COSGriddedData();
  // The copy opens the file again when it needs it.
  COSGriddedData(COSGriddedData const & other);
  COSGriddedData & operator=(COSGriddedData const & other);
  virtual ~COSGriddedData();

  // Opens the file (as named, else after the data path), reads its header
  // and makes the grid's projection on `datum`: code 10 at
  // "COSGriddedData::InitializeGridFile" when it can't be opened, 59 when its
  // header or length is wrong.
  void InitializeGridFile(CString const & name, CHorizontalDatum const & datum) const;
  // The same, and a second projection of the grid's kind on `outDatum`, on
  // which a shifted point is taken back (the datum shift's other side).
  void InitializeGridFile(CString const & name, CHorizontalDatum const & datum,
                          CHorizontalDatum const & outDatum) const;
  bool IsGridReady() const { return m_file != nullptr; }
  void CloseGridFile() const;

  // The projections of the kinds, on `datum`.
  void SetNationalGrid(CHorizontalDatum const & datum) const;
  void SetIrishTM(CHorizontalDatum const & datum) const;

  // The records of the south-west and north-east corners of the cell of a
  // point given in degrees; code 43 at `location` outside the grid. `x` and
  // `y` are its grid coordinates in metres.
  void GetRecordNumbers(double lon, double lat, long & low, long & high, double & x, double & y,
                        char const * location) const;
  // The same for grid coordinates (metres) on the grid's projection.
  void GetRecordNumbersAt(double x, double y, long & low, long & high, char const * location) const;
  // The grid's projection, and the one on the other side; null until opened.
  PJ::CTransverseMercator const * GetProjection() const { return m_projection.get(); }
  PJ::CTransverseMercator const * GetOutProjection() const { return m_outProjection.get(); }
  // One record; code 43 at `location` for a flag of 0.
  Record LookUpGridShift(long record, char const * location) const;
  // The bilinear geoid height of the cell's four records; code 43 when one has no data.
  double LookUpGeoidShift(long low, long high, double x, double y, char const * location) const;

private:
  Record Read(long record, char const * location) const;

  CString m_dataPath;
  mutable std::FILE * m_file = nullptr;
  mutable short m_kind = -1;
  mutable double m_columns = 0, m_rows = 0, m_firstColumn = 0, m_firstRow = 0;
  mutable std::unique_ptr<CHorizontalDatum> m_datum;
  mutable std::unique_ptr<PJ::CTransverseMercator> m_projection;
  mutable std::unique_ptr<CHorizontalDatum> m_outDatum;
  mutable std::unique_ptr<PJ::CTransverseMercator> m_outProjection;
};

} // namespace Velmora::CS::VR
