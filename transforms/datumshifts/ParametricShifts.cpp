#include <velmora/transforms/datumshifts/ParametricShifts.h>

#include <velmora/transforms/datumshifts/GridFile_p.h>

namespace Velmora::CT::DS {

using detail::NotCarried;
using detail::RequireParameters;

namespace {

// The point form of an affine method: parameters first, then the computation.
[[noreturn]] void PointForm(CDatumShift const & shift, char const * location)
{
  RequireParameters(shift.GetParameters(), location);
  NotCarried(location, shift.GetTypeName());
}

// The pair form runs on the matrix as it stands, with no look at the parameters.
[[noreturn]] void PairForm(CDatumShift const & shift, char const * location)
{
  NotCarried(location, shift.GetTypeName());
}

} // namespace

// BursaWolfe

// Both directions report under the reverse label: established text.
bool CBursaWolfe::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CBursaWolfe::ShiftDestToSrc");
}

bool CBursaWolfe::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CBursaWolfe::ShiftDestToSrc");
}

bool CBursaWolfe::ShiftSrcToDest(double &, double &) const
{
  PairForm(*this, "CBursaWolfe::ShiftSrcToDest");
}

bool CBursaWolfe::ShiftDestToSrc(double &, double &) const
{
  PairForm(*this, "CBursaWolfe::ShiftDestToSrc");
}

// SevenParameter

bool CSevenParameter::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CSevenParameter::ShiftSrcToDest");
}

bool CSevenParameter::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CSevenParameter::ShiftDestToSrc");
}

bool CSevenParameter::ShiftSrcToDest(double &, double &) const
{
  PairForm(*this, "CSevenParameter::ShiftSrcToDest");
}

bool CSevenParameter::ShiftDestToSrc(double &, double &) const
{
  PairForm(*this, "CSevenParameter::ShiftDestToSrc");
}

// SixParameter

bool CSixParameter::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CSixParameter::ShiftSrcToDest");
}

bool CSixParameter::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CSixParameter::ShiftDestToSrc");
}

bool CSixParameter::ShiftSrcToDest(double &, double &) const
{
  PairForm(*this, "CSixParameter::ShiftSrcToDest");
}

bool CSixParameter::ShiftDestToSrc(double &, double &) const
{
  PairForm(*this, "CSixParameter::ShiftDestToSrc");
}

// FourParameter

bool CFourParameter::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CFourParameter::ShiftSrcToDest");
}

bool CFourParameter::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CFourParameter::ShiftDestToSrc");
}

bool CFourParameter::ShiftSrcToDest(double &, double &) const
{
  PairForm(*this, "CFourParameter::ShiftSrcToDest");
}

bool CFourParameter::ShiftDestToSrc(double &, double &) const
{
  PairForm(*this, "CFourParameter::ShiftDestToSrc");
}

// MolodenskyBadekas

bool CMolodenskyBadekas::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CMolodenskyBadekas::ShiftSrcToDest");
}

bool CMolodenskyBadekas::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CMolodenskyBadekas::ShiftDestToSrc");
}

bool CMolodenskyBadekas::ShiftSrcToDest(double &, double &) const
{
  PairForm(*this, "CMolodenskyBadekas::ShiftSrcToDest");
}

bool CMolodenskyBadekas::ShiftDestToSrc(double &, double &) const
{
  PairForm(*this, "CMolodenskyBadekas::ShiftDestToSrc");
}

// GeocentricTranslation

bool CGeocentricTranslation::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CGeocentricTranslation::ShiftSrcToDest");
}

bool CGeocentricTranslation::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CGeocentricTranslation::ShiftDestToSrc");
}

bool CGeocentricTranslation::ShiftSrcToDest(double &, double &) const
{
  PairForm(*this, "CGeocentricTranslation::ShiftSrcToDest");
}

bool CGeocentricTranslation::ShiftDestToSrc(double &, double &) const
{
  PairForm(*this, "CGeocentricTranslation::ShiftDestToSrc");
}

// Molodensky: every form goes through Shift, so that a method built on it
// replaces the formula alone.

void CMolodensky::Shift(double &, double &, double *, bool) const
{
  RequireParameters(GetParameters(), "CMolodensky::Shift");
  NotCarried("CMolodensky::Shift", GetTypeName());
}

namespace {
// A two-dimensional point goes through with height 0, and receives two values.
bool ShiftPoint(CMolodensky const & shift, ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out, bool forward)
{
  double lon = 0.0, lat = 0.0, height = 0.0;
  if (in.GetDimensions() > 2)
    in.GetInternals(lon, lat, height);
  else
    in.GetInternals(lon, lat);
  shift.Shift(lon, lat, &height, forward);
  if (out.GetDimensions() > 2)
    out.SetInternals(lon, lat, height);
  else
    out.SetInternals(lon, lat);
  return true;
}
} // namespace

bool CMolodensky::ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ShiftPoint(*this, in, out, true);
}

bool CMolodensky::ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const
{
  return ShiftPoint(*this, in, out, false);
}

bool CMolodensky::ShiftSrcToDest(double & lon, double & lat) const
{
  Shift(lon, lat, nullptr, true);
  return true;
}

bool CMolodensky::ShiftDestToSrc(double & lon, double & lat) const
{
  Shift(lon, lat, nullptr, false);
  return true;
}

// LongitudeRotation: the point form of the forward direction alone has no look
// at its parameter.

bool CLongitudeRotation::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  NotCarried("CLongitudeRotation::ShiftSrcToDest", GetTypeName());
}

bool CLongitudeRotation::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  PointForm(*this, "CLongitudeRotation::ShiftDestToSrc");
}

bool CLongitudeRotation::ShiftSrcToDest(double &, double &) const
{
  PointForm(*this, "CLongitudeRotation::ShiftSrcToDest");
}

bool CLongitudeRotation::ShiftDestToSrc(double &, double &) const
{
  PointForm(*this, "CLongitudeRotation::ShiftDestToSrc");
}

} // namespace Velmora::CT::DS
