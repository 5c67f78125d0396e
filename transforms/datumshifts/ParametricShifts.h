#pragma once
// The shift methods that need no data file: the affine family, the
// geocentric translation, Molodensky's formula and the rotation of
// longitudes. Each declares its parameters and rebuilds what it caches once
// all of them are set; while a parameter is unset the point forms refuse to
// shift with code 31.
#include <velmora/measures/BPoint.h>
#include <velmora/transforms/datumshifts/DatumShift.h>
#include <velmora/transforms/mathtransforms/Affine3D.h>

namespace Velmora::CT::DS {

// The frame of the methods that carry a geocentric vector through one affine
// matrix: source ellipsoid to geocentric, the matrix, geocentric to the
// destination ellipsoid, and back through the inverse matrix. The methods
// differ only in how their OnChange builds the matrix.
class VELMORA_API CAffineDatumShift : public CDatumShift
{
public:
  using CDatumShift::ShiftBack;
  using CDatumShift::ShiftForward;

  // The matrix as the last complete set of parameters built it.
  MT::CAffine3D const & GetAffine() const { return m_affine; }

protected:
  explicit CAffineDatumShift(CString const & typeName) : CDatumShift(typeName) {}

  // Geodetic points (degrees, metres) converted in place.
  void ShiftForward(int count, ML::BPoint3D * points) const;
  // Through the exact inverse of the matrix; code 58 when it has none.
  void ShiftBack(int count, ML::BPoint3D * points) const;

  // The pair forms run on the matrix as it stands, set parameters or not.
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

  MT::CAffine3D m_affine;

private:
  // The array routines; without heights for the pair forms, which drop them.
  template <bool withHeight>
  void Forward(int count, ML::BPoint3D * points) const;
  template <bool withHeight>
  void Back(int count, ML::BPoint3D * points) const;
};

// X' = T + s R X with the small-angle rotation R in the position-vector sense.
class VELMORA_API CBursaWolfe : public TDatumShift<CBursaWolfe, CDatumShift::kBursaWolfe, CAffineDatumShift>
{
public:
  CBursaWolfe() = default;
  using CAffineDatumShift::ShiftBack;
  using CAffineDatumShift::ShiftForward;
  void OnChange(unsigned short const * name) override;

protected:
  // For methods built on this one with a class type of their own.
  explicit CBursaWolfe(CString const & typeName) : TDatumShift(typeName) {}
};

// X' = T + s Rz Ry Rx X with exact rotations.
class VELMORA_API CSevenParameter final
  : public TDatumShift<CSevenParameter, CDatumShift::kSevenParameter, CAffineDatumShift>
{
public:
  void OnChange(unsigned short const * name) override;
};

// The seven-parameter form without a scale.
class VELMORA_API CSixParameter final
  : public TDatumShift<CSixParameter, CDatumShift::kSixParameter, CAffineDatumShift>
{
public:
  void OnChange(unsigned short const * name) override;
};

// X' = T + s X.
class VELMORA_API CFourParameter final
  : public TDatumShift<CFourParameter, CDatumShift::kFourParameter, CAffineDatumShift>
{
public:
  void OnChange(unsigned short const * name) override;
};

// X' = s R X + (I - R) P + T about the pivot P; the scale does not reach the pivot term.
class VELMORA_API CMolodenskyBadekas final
  : public TDatumShift<CMolodenskyBadekas, CDatumShift::kMolodenskyBadekas, CAffineDatumShift>
{
public:
  void OnChange(unsigned short const * name) override;
};

// X' = X + T, without a matrix.
class VELMORA_API CGeocentricTranslation final
  : public TDatumShift<CGeocentricTranslation, CDatumShift::kGeocentricTranslation>
{
public:
  using CDatumShift::ShiftBack;
  using CDatumShift::ShiftForward;

  void OnChange(unsigned short const * name) override;
  // Geodetic points (degrees, metres) converted in place.
  void ShiftForward(int count, ML::BPoint3D * points) const;
  void ShiftBack(int count, ML::BPoint3D * points) const;
  // Sets the three translations to the mean geocentric difference of the
  // pairs, on the two datums' ellipsoids; the parameters stay as they are.
  void LeastSquaresApproximation(int count, ML::CGeodeticPoint const * source,
                                 ML::CGeodeticPoint const * destination);

  double GetDx() const { return m_dx; }
  double GetDy() const { return m_dy; }
  double GetDz() const { return m_dz; }

private:
  template <bool withHeight>
  void Translate(int count, ML::BPoint3D * points, double sign) const;

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  double m_dx = 0.0;
  double m_dy = 0.0;
  double m_dz = 0.0;
};

// Molodensky's one-step formula on geodetic coordinates. The way back is the
// same formula at the destination point, not iterated, so a round trip closes
// only to the accuracy of the method.
class VELMORA_API CMolodensky : public TDatumShift<CMolodensky, CDatumShift::kMolodensky>
{
public:
  CMolodensky() = default;
  void OnChange(unsigned short const * name) override;
  // Both directions of every form come here; `height` may be null.
  virtual void Shift(double & lon, double & lat, double * height, bool forward) const;
  // Set once three zero translations have been seen; cleared by nothing.
  bool IsNullShift() const { return m_nullShift; }

protected:
  explicit CMolodensky(CString const & typeName) : TDatumShift(typeName) {}
  // The formula itself with translations (metres) from source to
  // destination; `forward` false runs it from the destination with them negated.
  void Formula(double & lon, double & lat, double * height, bool forward, double tx, double ty, double tz) const;
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  double m_dx = 0.0;
  double m_dy = 0.0;
  double m_dz = 0.0;
  bool m_nullShift = false;
};

// Adds the rotation to the longitude on the way forward, with no wrapping.
class VELMORA_API CLongitudeRotation final : public TDatumShift<CLongitudeRotation, CDatumShift::kLongitudeRotation>
{
public:
  void OnChange(unsigned short const * name) override;

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  double m_rotation = 0.0;
};

} // namespace Velmora::CT::DS
