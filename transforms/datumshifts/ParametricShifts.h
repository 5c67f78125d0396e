#pragma once
// The shift methods that need no data file: the affine family, the
// geocentric translation, Molodensky's formula and the rotation of
// longitudes. Each declares its parameters and, while a parameter is unset,
// refuses to shift with code 31. Their mathematics is not carried yet:
// with every parameter set they raise code 50 rather than pass a point on
// unchanged.
#include <velmora/transforms/datumshifts/DatumShift.h>

namespace Velmora::CT::DS {

class VELMORA_API CBursaWolfe : public TDatumShift<CBursaWolfe, CDatumShift::kBursaWolfe>
{
public:
  CBursaWolfe() = default;

protected:
  // For methods built on this one with a class type of their own.
  explicit CBursaWolfe(CString const & typeName) : TDatumShift(typeName) {}
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

class VELMORA_API CSevenParameter final : public TDatumShift<CSevenParameter, CDatumShift::kSevenParameter>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

class VELMORA_API CSixParameter final : public TDatumShift<CSixParameter, CDatumShift::kSixParameter>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

class VELMORA_API CFourParameter final : public TDatumShift<CFourParameter, CDatumShift::kFourParameter>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

class VELMORA_API CMolodenskyBadekas final : public TDatumShift<CMolodenskyBadekas, CDatumShift::kMolodenskyBadekas>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

class VELMORA_API CGeocentricTranslation final
  : public TDatumShift<CGeocentricTranslation, CDatumShift::kGeocentricTranslation>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

class VELMORA_API CMolodensky : public TDatumShift<CMolodensky, CDatumShift::kMolodensky>
{
public:
  CMolodensky() = default;
  // Both directions of every form come here; `height` may be null.
  virtual void Shift(double & lon, double & lat, double * height, bool forward) const;

protected:
  explicit CMolodensky(CString const & typeName) : TDatumShift(typeName) {}
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

class VELMORA_API CLongitudeRotation final : public TDatumShift<CLongitudeRotation, CDatumShift::kLongitudeRotation>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

} // namespace Velmora::CT::DS
