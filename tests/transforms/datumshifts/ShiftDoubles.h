#pragma once
// Shifts with known behaviour, for the framework's own rules: a fixed offset
// that records which of its directions ran.
#include <velmora/refsys/HorizontalDatum.h>
#include <velmora/transforms/datumshifts/DatumShift.h>

#include <string>
#include <vector>

namespace VelmoraTest {

// A datum on a figure of semi-major axis and inverse flattening; two of PROJ's.
inline Velmora::CS::CHorizontalDatum Datum(double semiMajor, double inverseFlattening)
{
  Velmora::CS::CHorizontalDatum datum;
  datum.GetEllipsoid().GetSemiMajor().SetValue(semiMajor);
  datum.GetEllipsoid().SetInvFlattening(inverseFlattening);
  return datum;
}
inline Velmora::CS::CHorizontalDatum const kWgs84 = Datum(6378137.0, 298.257223563);
inline Velmora::CS::CHorizontalDatum const kIntl = Datum(6378388.0, 297.0);

// Adds (dLon, dLat) from source to destination, subtracts it the other way.
// Every call appends "<tag>+" or "<tag>-" to the shared log, if one is given.
class COffsetShift : public Velmora::CT::DS::CDatumShift
{
public:
  COffsetShift(double dLon, double dLat, std::string tag = "s", std::vector<std::string> * log = nullptr)
    : CDatumShift(Velmora::CString("GeocentricTranslation")), m_dLon(dLon), m_dLat(dLat), m_tag(std::move(tag)),
      m_log(log)
  {
  }

  Type GetType() const override { return kGeocentricTranslation; }

  // Metres added to a height from source to destination, taken off the other way.
  double heightStep = 0.0;
  mutable int pointCalls = 0;
  mutable int pairCalls = 0;

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override { return Pair(lon, lat, +1.0); }
  bool ShiftDestToSrc(double & lon, double & lat) const override { return Pair(lon, lat, -1.0); }
  bool ShiftSrcToDest(Velmora::ML::CGeodeticPoint const & in, Velmora::ML::CGeodeticPoint & out) const override
  {
    return Point(in, out, +1.0);
  }
  bool ShiftDestToSrc(Velmora::ML::CGeodeticPoint const & in, Velmora::ML::CGeodeticPoint & out) const override
  {
    return Point(in, out, -1.0);
  }

private:
  void Note(double sign) const
  {
    if (m_log)
      m_log->push_back(m_tag + (sign > 0 ? "+" : "-"));
  }
  bool Pair(double & lon, double & lat, double sign) const
  {
    ++pairCalls;
    Note(sign);
    lon += sign * m_dLon;
    lat += sign * m_dLat;
    return true;
  }
  // The height passes, moved by the height step, when both points have one.
  bool Point(Velmora::ML::CGeodeticPoint const & in, Velmora::ML::CGeodeticPoint & out, double sign) const
  {
    ++pointCalls;
    Note(sign);
    double lon, lat, height = 0.0;
    if (in.GetDimensions() == 3)
      in.GetInternals(lon, lat, height);
    else
      in.GetInternals(lon, lat);
    lon += sign * m_dLon;
    lat += sign * m_dLat;
    height += sign * heightStep;
    if (out.GetDimensions() == 3)
      out.SetInternals(lon, lat, height);
    else
      out.SetInternals(lon, lat);
    return true;
  }

  double m_dLon;
  double m_dLat;
  std::string m_tag;
  std::vector<std::string> * m_log;
};

// Has only the point forms: its pair forms are the base's wrappers.
class CPointOnlyShift : public Velmora::CT::DS::CDatumShift
{
public:
  CPointOnlyShift() : CDatumShift(Velmora::CString("Molodensky")) {}
  Type GetType() const override { return kMolodensky; }

protected:
  bool ShiftSrcToDest(Velmora::ML::CGeodeticPoint const & in, Velmora::ML::CGeodeticPoint & out) const override
  {
    double lon, lat;
    in.GetInternals(lon, lat);
    out.SetInternals(lon * 2.0, lat * 2.0);
    return true;
  }
  bool ShiftDestToSrc(Velmora::ML::CGeodeticPoint const & in, Velmora::ML::CGeodeticPoint & out) const override
  {
    double lon, lat;
    in.GetInternals(lon, lat);
    out.SetInternals(lon / 2.0, lat / 2.0);
    return false; // a soft failure is handed on as it is
  }
};

// A geodetic envelope from (minLon, minLat) to (maxLon, maxLat) that tests.
inline Velmora::ML::CEnvelope GeodeticEnvelope(double minLon, double minLat, double maxLon, double maxLat)
{
  Velmora::ML::CEnvelope envelope;
  envelope.SetMinPoint(Velmora::ML::CGeodeticPoint(minLon, minLat));
  envelope.SetMaxPoint(Velmora::ML::CGeodeticPoint(maxLon, maxLat));
  envelope.SetAlwaysAccept(false);
  return envelope;
}

} // namespace VelmoraTest
