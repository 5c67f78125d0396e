#pragma once
// The methods that take their shifts from grid files: an NTv2 file of one or
// more nested sub-grids, and a NADCON pair of latitude and longitude files.
// The file is found on the first shift, by its name and then by the data
// path the object copied when it was built, read whole, and kept in memory
// for the life of the object and of its copies; one that can't be opened
// raises code 10, a damaged one code 59 (NTv2) or 11, 15 and 48 (NADCON).
#include <velmora/transforms/datumshifts/ParametricShifts.h>

#include <memory>
#include <string>
#include <vector>

namespace Velmora::CT::DS {

// NTv2 (Natural Resources Canada's "National Transformation version 2"
// format): shifts in seconds of arc at the nodes of nested grids, positive
// longitudes to the west, bilinear between the four nodes of a cell. The
// back direction takes four fixed steps of the forward shift, without a test
// of convergence; on the grids of proj-data it agrees with PROJ's iterated
// inverse to 1e-10 degree, and the forward shift with PROJ's to 1e-10.
class VELMORA_API CCanadianNTV2 final : public TDatumShift<CCanadianNTV2, CDatumShift::kCanadianNTV2>
{
public:
  CCanadianNTV2();
  // Loads the file unless it is loaded.
  void Init() const;
  long NumberOfSubFiles() const { return m_count; }

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  // One sub-grid; bounds and steps in seconds, longitudes positive west.
  struct SubFile
  {
    std::string parent, name;
    double sLat = 0, nLat = 0, eLong = 0, wLong = 0, latInc = 0, longInc = 0;
    long first = 0;  // record index of its first node in the file
    long count = 0;  // its nodes
    // The corners of the last cell used, by the record index of its first corner.
    mutable long cached = -1;
    mutable double corners[8] = {};

    bool Holds(double lat, double lonW) const;
    int EdgeClass(double lat, double lonW) const;
  };

  void InitInner() const;
  // The deepest sub-file holding the point, 0 for none, and the point's edge class in it.
  void FGrid(double lat, double lonW, int & edge, long & sub) const;
  // The two shifts, seconds, at the point in sub-file `sub`.
  void Interpolate(long sub, int edge, double lat, double lonW, double & dlat, double & dlon,
                   char const * location) const;
  void Forward(double & lon, double & lat) const;
  void Back(double & lon, double & lat) const;

  std::string m_dataPath;
  mutable long m_count = 0;
  mutable int m_overviewRecords = 0;
  mutable int m_subFileRecords = 0;
  mutable std::vector<SubFile> m_subFiles; // entry 0 stays empty
  mutable std::shared_ptr<std::vector<unsigned char> const> m_buffer;
};

// NADCON (the US National Geodetic Survey's North American Datum
// Conversion): latitude and longitude shifts in seconds on one regular grid,
// bilinear between nodes. The back direction iterates the forward shift to
// 1e-9 degree, at most ten times (code 9 past that).
class VELMORA_API CNadcon final : public TDatumShift<CNadcon, CDatumShift::kNadcon>
{
public:
  CNadcon();
  // Loads the latitude and the longitude file unless they are loaded.
  void Setup() const;
  // The shifts at (lat, lon), in degrees, to be added.
  void ConvertToNAD83(double lat, double lon, double & dlat, double & dlon) const;

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  void SetupInner() const;
  // Bilinear value of one file's grid at (row + v, col + u), seconds.
  double Bilinear(std::vector<unsigned char> const & grid, long row, long col, double u, double v) const;
  void Forward(double & lon, double & lat) const;
  // False when the iteration did not settle; the values are the last step's then.
  bool Back(double & lon, double & lat) const;

  std::string m_dataPath;
  mutable bool m_loaded = false;
  mutable bool m_negate = false;
  mutable std::string m_identification, m_program;
  mutable int m_nc = 0, m_nr = 0, m_nz = 0;
  mutable double m_xmin = 0, m_dx = 0, m_ymin = 0, m_dy = 0, m_angle = 0, m_xmax = 0, m_ymax = 0;
  mutable long m_rowSize = 0;
  mutable std::shared_ptr<std::vector<unsigned char> const> m_las, m_los;
};

} // namespace Velmora::CT::DS
