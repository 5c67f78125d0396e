#pragma once
// The eleven height model types. The simple rasters interpolate in their
// grid files; the models whose grid formats are not read yet keep their
// parameters and report a set-up model as having no grid available.
#include <velmora/vertical/HeightModel.h>
#include <velmora/vertical/SimpleGriddedData.h>

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

// A model whose grid format this library does not read yet: with every
// parameter set it raises code 10, as for a grid file that can't be opened.
class VELMORA_API CUnreadGridModel : public CHeightModel
{
public:
  double Interpolate(ML::CGeodeticPoint const & point) const override;

protected:
  using CHeightModel::CHeightModel;
  CUnreadGridModel(CUnreadGridModel const &) = default;
  CUnreadGridModel & operator=(CUnreadGridModel const &) = default;
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

class VELMORA_API CGEOID96 final : public THeightModel<CUnreadGridModel, CHeightModel::kGEOID96>
{
public:
  CGEOID96() = default;
};

class VELMORA_API CGEOID99 final : public THeightModel<CUnreadGridModel, CHeightModel::kGEOID99>
{
public:
  CGEOID99() = default;
};

class VELMORA_API CGEOID03 final : public THeightModel<CUnreadGridModel, CHeightModel::kGEOID03>
{
public:
  CGEOID03() = default;
};

class VELMORA_API CAUSGEOID98 final : public THeightModel<CUnreadGridModel, CHeightModel::kAUSGEOID98>
{
public:
  CAUSGEOID98() = default;
};

class VELMORA_API COSGM02 final : public THeightModel<CUnreadGridModel, CHeightModel::kOSGM02>
{
public:
  COSGM02() = default;
};

class VELMORA_API CEGM96 final : public THeightModel<CUnreadGridModel, CHeightModel::kEGM96>
{
public:
  CEGM96() = default;
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
