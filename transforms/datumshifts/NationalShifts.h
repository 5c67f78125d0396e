#pragma once
// The methods that carry a country's own data: the Ordnance Survey's grid of
// shift records, the French geocentric grid from NTF to RGF93, the Japanese
// mesh from Tokyo to JGD2000, the North Sea polynomial from ED50 to ED87 and
// the multiple regression equations of the World Geodetic System report.
// Their files are found as the grid methods find theirs (code 10 when
// missing), read on the first shift and kept for the life of the object and
// of its copies; a damaged file raises code 59, a point outside the data
// code 43 and an inverse that does not settle code 9.
#include <velmora/transforms/datumshifts/GridShifts.h>
#include <velmora/vertical/OSGriddedData.h>

#include <unordered_map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Velmora::CT::DS {

// OSTN02: 1 km shift records on the National Grid (or Irish Transverse
// Mercator), from the terrestrial frame (the destination datum, projected on
// its own ellipsoid) to the national one (the source datum). So the
// destination-to-source direction is the table's own: project, add the
// bilinear shifts, take the result back on the source datum. Source to
// destination inverts it in grid coordinates, at most 21 rounds, until the
// shifts move by 0.1 mm or less (code 9 past that). Bilinear between the
// records, exact for a field that is bilinear within each cell.
class VELMORA_API COSTN02 final : public TDatumShift<COSTN02, CDatumShift::kOrdnanceSurveyGrid>,
                                  public CS::VR::COSGriddedData
{
public:
  COSTN02();
  void OnChange(unsigned short const * name) override;

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  void InitializeGridFile() const;
  // The two shifts, metres, at grid coordinates (x, y) of the table's side.
  void ComputeShiftValues(double x, double y, double & dEast, double & dNorth) const;
  void Forward(double & lon, double & lat) const;
  void Inverse(double & lon, double & lat) const;

  std::string m_dataPath;
};

// NTF to RGF93 by the French geocentric grid (IGN's GR3D1 text format):
// translations in metres at the nodes of a regular grid in degrees, bilinear
// at the point and put through Molodensky's formula from the source datum
// (NTF, Clarke 1880 IGN) to the destination. The way back iterates the way
// forward to 1e-9 degree, at most 10 rounds (code 9 past that). Against the
// exact geocentric translation (PROJ's xyzgridshift on the same values) the
// formula stays within Molodensky's own error, a few centimetres over France.
class VELMORA_API CNTFToRGF93 final : public TDatumShift<CNTFToRGF93, CDatumShift::kNTFToRGF93, CMolodensky>
{
public:
  CNTFToRGF93();
  using CDatumShift::ShiftBack;
  void Shift(double & lon, double & lat, double * height, bool forward) const override;

private:
  struct Grid
  {
    double west = 0, east = 0, south = 0, north = 0, dLon = 0, dLat = 0;
    long columns = 0, rows = 0;  // cells
    std::vector<double> values;  // three a node, latitude running fastest
  };

  void Setup() const;
  // The bilinear translations at a point; code 43 outside the grid.
  void PrepareParams(double lon, double lat, double t[3]) const;
  void ShiftBack(double & lon, double & lat, double * height) const;

  std::string m_dataPath;
  mutable std::shared_ptr<Grid const> m_grid;
};

// Tokyo to JGD2000 by the Geospatial Information Authority of Japan's mesh
// file: latitude and longitude shifts in seconds at the corners of the
// third-order mesh (30" of latitude by 45" of longitude), keyed by the mesh
// code, bilinear within a cell. The way back iterates the way forward to
// 1e-9 degree, at most 10 rounds (code 9 past that).
class VELMORA_API CTokyoToJGD2000 final : public TDatumShift<CTokyoToJGD2000, CDatumShift::kTokyoToJGD2000>
{
public:
  CTokyoToJGD2000();

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  using Mesh = std::unordered_map<long, std::pair<double, double>>; // code to (latitude, longitude) shift, seconds

  void Setup() const;
  // Adds the shift at the point.
  void GridShift(double & lat, double & lon) const;
  // ShiftBack of the mesh: iterates GridShift back to the given point.
  void IterateMeshBack(double & lat, double & lon) const;

  std::string m_dataPath;
  mutable std::shared_ptr<Mesh const> m_mesh;
};

// ED50 to ED87 in the North Sea: the reversible polynomial of degree 4 of the
// Norwegian Mapping Authority south of 62 N, the Bursa-Wolf transformation
// north of 65 N (held as its inverse, ED87 to ED50, and used backwards), and
// between them a linear blend of the polynomial's shift at 62 N with the
// Bursa-Wolf shift at 65 N. The way back subtracts the same shifts taken at
// the given point, without iteration.
class VELMORA_API CED50ToED87NorthSea final
  : public TDatumShift<CED50ToED87NorthSea, CDatumShift::kED50ToED87NorthSea, CBursaWolfe>
{
public:
  CED50ToED87NorthSea();

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  // The shift (degrees) from ED50 to ED87 at a point.
  void Shifts(double lon, double lat, double & dLon, double & dLat) const;
};

// The multiple regression equations of DMA/NIMA TR 8350.2 from a local datum
// to WGS 84: polynomials in the normalised latitude and longitude, chosen by
// `datum_id`. The way back subtracts the shift taken at the given point.
class VELMORA_API CMRE final : public TDatumShift<CMRE, CDatumShift::kMRE>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  // The shifts (degrees) at a point; code 15 for a datum without a block.
  void MREDatumTransformation(double lat, double lon, double & dLat, double & dLon, char const * location) const;
};

} // namespace Velmora::CT::DS
