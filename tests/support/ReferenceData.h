#pragma once
// Reference vectors: the files that scripts/gen-*-refs.sh write from PROJ and
// GeographicLib into tests/data, read and measured by one loop.
#include <velmora/projections/Projection.h>
#include <velmora/refsys/Ellipsoid.h>
#include <velmora/refsys/HorizontalDatum.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace VelmoraTest {

// The numbers of each line up to a '#', and the names of its "# columns:" line.
struct ReferenceFile
{
  std::vector<std::string> columns;
  std::vector<std::vector<double>> rows;

  std::size_t Column(std::string const & name) const
  {
    return static_cast<std::size_t>(std::find(columns.begin(), columns.end(), name) - columns.begin());
  }
};

// A file or folder under tests/data.
inline std::string TestData(std::string const & name) { return std::string(VELMORA_TEST_DATA) + "/" + name; }

inline ReferenceFile ReadReference(std::string const & name, std::size_t minColumns = 1)
{
  std::ifstream in(std::string(VELMORA_TEST_DATA) + "/" + name);
  EXPECT_TRUE(in.good()) << name;
  ReferenceFile file;
  std::string line;
  while (std::getline(in, line)) {
    std::string::size_type const named = line.find("# columns:");
    if (named != std::string::npos) {
      std::istringstream names(line.substr(named + 10));
      for (std::string n; names >> n;)
        file.columns.push_back(n);
    }
    std::istringstream fields(line.substr(0, line.find('#')));
    std::vector<double> row;
    for (double v; fields >> v;)
      row.push_back(v);
    if (row.empty())
      continue;
    EXPECT_GE(row.size(), std::max(minColumns, file.columns.size())) << name << ": " << line;
    file.rows.push_back(std::move(row));
  }
  return file;
}

// The words of each line up to a '#', for files that mix numbers and texts.
inline std::vector<std::vector<std::string>> ReadWords(std::string const & name)
{
  std::ifstream in(TestData(name));
  EXPECT_TRUE(in.good()) << name;
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line.substr(0, line.find('#')));
    std::vector<std::string> row;
    for (std::string w; fields >> w;)
      row.push_back(w);
    if (!row.empty())
      rows.push_back(std::move(row));
  }
  return rows;
}

inline std::vector<std::vector<double>> ReadRows(std::string const & name, std::size_t minColumns)
{
  return ReadReference(name, minColumns).rows;
}

// A datum on the figure of semi-major axis a and inverse flattening rf (0: a sphere).
inline std::unique_ptr<Velmora::CS::CHorizontalDatum> MakeDatum(double a, double rf, char const * epsg = nullptr)
{
  Velmora::CS::CEllipsoid e;
  e.GetSemiMajor().SetValue(a);
  if (rf > 0)
    e.SetInvFlattening(rf);
  else
    e.GetSemiMinor().SetValue(a);
  if (epsg)
    e.GetIdentifiers().Add(Velmora::CString("EPSG"), Velmora::CString(epsg));
  auto datum = std::make_unique<Velmora::CS::CHorizontalDatum>();
  datum->SetEllipsoid(e);
  return datum;
}

// A projection's parameter by name: plain doubles as they are, flags whole
// numbers, the others linear or angular values in metres or degrees.
inline void SetParameter(Velmora::CS::PJ::CProjection & p, std::string const & name, double value)
{
  Velmora::CString const parameter(name.c_str());
  if (p.GetParameters().GetItemType(parameter) == Velmora::CParameter::kDouble)
    p.GetParameters().SetDouble(parameter, value);
  else if (p.GetParameters().GetItemType(parameter) == Velmora::CParameter::kLong)
    p.GetParameters().SetLong(parameter, std::lround(value));
  else
    p.GetParameters().SetItemInternal(parameter, value);
}

// Degrees from degrees, minutes and seconds, the sign on the degrees.
inline double Dms(double d, double m, double s) { return d < 0 ? d - m / 60 - s / 3600 : d + m / 60 + s / 3600; }

using Parameters = std::vector<std::pair<char const *, double>>;

// A projection of the type over the datum with the parameters set by name.
inline std::unique_ptr<Velmora::CS::PJ::CProjection> MakeProjection(Velmora::CS::PJ::CProjection::Type type,
                                                                    Velmora::CS::CHorizontalDatum * datum,
                                                                    Parameters const & parameters)
{
  std::unique_ptr<Velmora::CS::PJ::CProjection> p(Velmora::CS::PJ::CProjectionFactory::CreateProjection(type, datum));
  for (auto const & [name, value] : parameters)
    SetParameter(*p, name, value);
  return p;
}

// What one row of lon, lat, x, y gave: forward in metres; inverse of the
// reference x, y and the round trip of the input, in degrees (the larger of
// the longitude and latitude errors); NaN where the inverse refused.
struct RowErrors
{
  double forward, inverse, roundTrip;
};

inline double AngleError(double lon, double lat, double refLon, double refLat)
{
  return std::max(std::fabs(std::remainder(lon - refLon, 360.0)), std::fabs(lat - refLat));
}

// Each row forward and back through the projection: `prepare(row)` sets it
// up for the row, `sink(row, errors)` takes the result; lon, lat, x, y are
// the columns from `first` on.
template <class Prepare, class Sink>
void MeasureRows(Velmora::CS::PJ::CProjection & p, std::vector<std::vector<double>> const & rows,
                 std::size_t first, Prepare prepare, Sink sink)
{
  double const nan = std::nan("");
  for (auto const & r : rows) {
    prepare(r);
    double x = r[first], y = r[first + 1];
    ASSERT_TRUE(p.ToPlane(x, y)) << r[first] << " " << r[first + 1];
    RowErrors e{std::hypot(x - r[first + 2], y - r[first + 3]), nan, nan};
    if (p.FromPlane(x, y))
      e.roundTrip = AngleError(x, y, r[first], r[first + 1]);
    x = r[first + 2];
    y = r[first + 3];
    if (p.FromPlane(x, y))
      e.inverse = AngleError(x, y, r[first], r[first + 1]);
    sink(r, e);
  }
}

// The worst of each error over a file whose columns name the figure (a, rf),
// then the projection's parameters, then lon lat x y; the figure and the
// parameters are set whenever a row changes them. A refused inverse counts
// as an infinite error.
inline RowErrors MeasureFile(Velmora::CS::PJ::CProjection & p, std::string const & name)
{
  ReferenceFile const file = ReadReference(name);
  std::size_t const first = file.Column("lon");
  EXPECT_GT(file.rows.size(), 100u) << name;
  EXPECT_LT(first, file.columns.size()) << name;
  std::unique_ptr<Velmora::CS::CHorizontalDatum> datum;
  std::vector<double> setup;
  auto const prepare = [&](std::vector<double> const & r) {
    if (std::equal(r.begin(), r.begin() + first, setup.begin(), setup.end()))
      return;
    setup.assign(r.begin(), r.begin() + first);
    auto fresh = MakeDatum(r[0], r[1]);
    p.SetHorizontalDatum(fresh.get());
    datum = std::move(fresh);
    for (std::size_t i = 2; i < first; ++i)
      SetParameter(p, file.columns[i], r[i]);
  };
  RowErrors worst{0, 0, 0};
  auto const sink = [&](std::vector<double> const &, RowErrors const & e) {
    worst.forward = std::max(worst.forward, e.forward);
    worst.inverse = std::max(worst.inverse, std::isnan(e.inverse) ? INFINITY : e.inverse);
    worst.roundTrip = std::max(worst.roundTrip, std::isnan(e.roundTrip) ? INFINITY : e.roundTrip);
  };
  MeasureRows(p, file.rows, first, prepare, sink);
  std::printf("%s: forward %.3g m, inverse %.3g deg, round trip %.3g deg\n", name.c_str(), worst.forward,
              worst.inverse, worst.roundTrip);
  return worst;
}

// A projection against its reference file: forward within `metres`, the
// inverse and the round trip within `degrees`.
inline void ExpectReference(Velmora::CS::PJ::CProjection & p, std::string const & name, double metres,
                            double degrees)
{
  RowErrors const worst = MeasureFile(p, name);
  EXPECT_LE(worst.forward, metres) << name;
  EXPECT_LE(worst.inverse, degrees) << name;
  EXPECT_LE(worst.roundTrip, degrees) << name;
}

// A published worked example: the point both ways within half its last printed digit.
struct Example
{
  char const * what;
  Velmora::CS::PJ::CProjection::Type type;
  double a, rf;
  Parameters parameters;
  double lon, lat, east, north; // degrees; metres
  double metres, degrees;
};

inline void ExpectExamples(std::vector<Example> const & examples)
{
  for (Example const & e : examples) {
    auto datum = MakeDatum(e.a, e.rf);
    auto p = MakeProjection(e.type, datum.get(), e.parameters);
    double x = e.lon, y = e.lat;
    ASSERT_TRUE(p->ToPlane(x, y)) << e.what;
    EXPECT_NEAR(x, e.east, e.metres) << e.what;
    EXPECT_NEAR(y, e.north, e.metres) << e.what;
    x = e.east;
    y = e.north;
    ASSERT_TRUE(p->FromPlane(x, y)) << e.what;
    EXPECT_NEAR(x, e.lon, e.degrees) << e.what;
    EXPECT_NEAR(y, e.lat, e.degrees) << e.what;
  }
}

} // namespace VelmoraTest
