#pragma once
// The eleven height model types, each interpolating in its grid files: the
// NGS formats, the Ordnance Survey's shift records, the EGM96 world raster
// and the simple rasters.
#include <velmora/vertical/HeightModel.h>
#include <velmora/vertical/NGSGriddedData.h>
#include <velmora/vertical/OSGriddedData.h>
#include <velmora/vertical/SimpleGriddedData.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Velmora::CS::VR {

// Gives a class its type.
template <class Base, CHeightModel::Type TypeValue>
class THeightModel : public Base
{
public:
  static constexpr CHeightModel::Type kType = TypeValue;

  CHeightModel::Type GetType() const override { return TypeValue; }
  using Base::operator=;

protected:
  THeightModel() : Base(TypeValue) {}
  THeightModel(THeightModel const &) = default;
  THeightModel & operator=(THeightModel const &) = default;
};

// A geoid over NGS grid files: "path" a folder or a .par list, "extension"
// of the files. The height is quadratic in a 3 by 3 window of nodes. Codes:
// 43 outside the envelope, 10 where no file holds the point or none can be
// opened, 59 for a file whose header or length is wrong or a window that
// can't be read.
class VELMORA_API CNGSGeoidModel : public CHeightModel, public CNGSGriddedData
{
public:
  double Interpolate(ML::CGeodeticPoint const & point) const override;
  // A change of "path" or "extension" lets the files go.
  void OnChange(unsigned short const * name) override;
  CHeightModel & operator=(CHeightModel const & other) override;

protected:
  // GEOID96 reads titled files, the others binary ones.
  explicit CNGSGeoidModel(Type type);
  CNGSGeoidModel(CNGSGeoidModel const &) = default;
  CNGSGeoidModel & operator=(CNGSGeoidModel const &) = default;
};

// A model over one fixed raster, named by the parameters "path" and "file".
class VELMORA_API CSimpleRasterModel : public CHeightModel, public CSimpleGriddedData
{
public:
  // The raster's bilinear height. Codes: 43 outside the envelope or where
  // the grid has no data, 10 for a file that can't be opened, 59 for a
  // short one.
  double Interpolate(ML::CGeodeticPoint const & point) const override;
  // A parameter changed: the open grid is let go, and found again at the next call.
  void OnChange(unsigned short const * name) override;
  // From a model of the same type also the data path.
  CHeightModel & operator=(CHeightModel const & other) override;

  // "path" and "file" joined by one separator, as the grid is looked for.
  CString GridFileName() const;

protected:
  explicit CSimpleRasterModel(Type type);
  CSimpleRasterModel(CSimpleRasterModel const &) = default;
  CSimpleRasterModel & operator=(CSimpleRasterModel const &) = default;
};

class VELMORA_API CGEOID96 final : public THeightModel<CNGSGeoidModel, CHeightModel::kGEOID96>
{
public:
  CGEOID96() = default;
};

class VELMORA_API CGEOID99 final : public THeightModel<CNGSGeoidModel, CHeightModel::kGEOID99>
{
public:
  CGEOID99() = default;
};

class VELMORA_API CGEOID03 final : public THeightModel<CNGSGeoidModel, CHeightModel::kGEOID03>
{
public:
  CGEOID03() = default;
};

class VELMORA_API CAUSGEOID98 final : public THeightModel<CNGSGeoidModel, CHeightModel::kAUSGEOID98>
{
public:
  CAUSGEOID98() = default;
};

// OSGM02, the geoid of Great Britain's National Grid, on the Ordnance
// Survey's shift records ("path" and "file"): bilinear in its 1 km cell.
// Codes: 43 outside the envelope, the grid, or where a corner has no data;
// 10 for a file that can't be opened; 59 for a damaged one.
class VELMORA_API COSGM02 final : public THeightModel<CHeightModel, CHeightModel::kOSGM02>, public COSGriddedData
{
public:
  COSGM02() = default;
  double Interpolate(ML::CGeodeticPoint const & point) const override;
  // A change of "path" or "file" closes the grid.
  void OnChange(unsigned short const * name) override;
  CHeightModel & operator=(CHeightModel const & other) override;
};

// The EGM96 geoid on its whole-world raster of 15 minutes ("WW15MGH.DAC":
// 721 rows from 90 N to 90 S by 1440 columns from 0 E, big-endian 16-bit
// centimetres), read whole once and shared by copies. The height is a
// natural cubic spline in each row of a 4 by 4 window of nodes and then one
// across the rows' results (the equidistant spline of the NGA's EGM96
// interpolation program), bilinear where the window would leave the poles'
// rows. Codes: 10 for a file that can't be opened, 59 for one of another size.
class VELMORA_API CEGM96 final : public THeightModel<CHeightModel, CHeightModel::kEGM96>
{
public:
  static constexpr long kRows = 721;
  static constexpr long kColumns = 1440;
  static constexpr double kNodesPerDegree = 4.0;

  CEGM96();
  double Interpolate(ML::CGeodeticPoint const & point) const override;
  // A change of "path" or "file" lets the raster go; it is read again at the next call.
  void OnChange(unsigned short const * name) override;
  CHeightModel & operator=(CHeightModel const & other) override;

private:
  void SetupInner() const;
  // In metres, at a position in the padded buffer's columns and rows.
  double EquidistantSplineInterpolation(double column, double row, int window) const;
  double BilinearInterpolation(double column, double row) const;
  double Node(long row, long column) const; // centimetres; 0 outside

  int m_window = 4; // nodes across the spline window
  int m_pad = 10;   // columns copied across longitude 0 on either side
  CString m_dataPath;
  mutable std::shared_ptr<std::vector<std::int16_t> const> m_grid;
};

class VELMORA_API CGEOCOL04 final : public THeightModel<CSimpleRasterModel, CHeightModel::kGEOCOL04>
{
public:
  CGEOCOL04() = default;
};

class VELMORA_API CGSIGEO2000 final : public THeightModel<CSimpleRasterModel, CHeightModel::kGSIGEO2000>
{
public:
  CGSIGEO2000() = default;
};

class VELMORA_API CMGCV04 final : public THeightModel<CSimpleRasterModel, CHeightModel::kMGCV04>
{
public:
  CMGCV04() = default;
};

class VELMORA_API CIGG2005 final : public THeightModel<CSimpleRasterModel, CHeightModel::kIGG2005>
{
public:
  CIGG2005() = default;
};

class VELMORA_API CIBERGEO95 final : public THeightModel<CSimpleRasterModel, CHeightModel::kIBERGEO95>
{
public:
  CIBERGEO95() = default;
};

} // namespace Velmora::CS::VR
