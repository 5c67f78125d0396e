#include <velmora/measures/AngleText_p.h>

#include <velmora/foundation/VelmoraException.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using Velmora::CString;
using Velmora::EX::CVelmoraException;
using Velmora::ML::CAngleText;

namespace {

CAngleText Engine(char const * format)
{
  CAngleText engine;
  engine.SetFormat(CString(QString::fromUtf8(format)));
  return engine;
}

std::string Write(char const * format, double angle)
{
  return Engine(format).ToString(angle).toStdString();
}

double Read(char const * format, char const * text)
{
  double angle = 0.0;
  EXPECT_TRUE(Engine(format).FromString(CString(QString::fromUtf8(text)), angle)) << text;
  return angle;
}

// Runs f and checks that it raises code 54 with the given location and details.
template <typename F>
void ExpectFailure(F f, char const * location, char const * details, std::string const & what)
{
  try {
    f();
    ADD_FAILURE() << what << ": no exception";
  } catch (CVelmoraException const & e) {
    EXPECT_EQ(e.GetErrorCode(), CVelmoraException::kCustom) << what;
    EXPECT_EQ(e.GetLocation().toStdString(), location) << what;
    EXPECT_EQ(e.GetDetails().toStdString(), details) << what;
  }
}

void ExpectReadFailure(char const * format, char const * text, char const * details,
                       char const * location = "CAngularValue::FromString")
{
  ExpectFailure([&] { Read(format, text); }, location, details, std::string(format) + " / " + text);
}

struct Named {
  char const * format;
  double tolerance; // half a unit of the last written decimal, in degrees
};

std::vector<Named> const kNamed = {
  {"DDdMM", 0.5e-6 / 60.0},     {"DDdMMdSS", 0.5e-6 / 3600.0}, {"DD_MM", 0.5e-6 / 60.0},
  {"DD_MM_SS", 0.5e-6 / 3600.0}, {"DDMM", 0.5e-6 / 60.0},       {"DDMMSS", 0.5e-6 / 3600.0},
  {"Packed DMS", 0.5e-6 / 3600.0}, {"DD", 1e-12}, // 15 significant digits below 1000
};

} // namespace

TEST(AngleText, NamedFormatsWriteTheirShapes)
{
  struct Case { char const * format; double angle; char const * text; };
  Case const cases[] = {
    {"DDdMM", 12.5, "12d30.000000"},
    {"DDdMMdSS", 12.5, "12d30d00.000000"},
    {"DDdMMdSS", 12.0 + 30.0 / 60.0 + 15.25 / 3600.0, "12d30d15.250000"},
    {"DD_MM", 12.5, "12_30.000000"},
    {"DD_MM_SS", 12.5, "12_30_00.000000"},
    {"DD_MM_SS", -0.5, "-0_30_00.000000"},
    {"DD_MM_SS", 179.0 + 59.0 / 60.0 + 59.5 / 3600.0, "179_59_59.500000"},
    {"DDMM", 5.25, "515.000000"},
    {"DDMMSS", 12.5, "123000.000000"},
    {"DDMMSS", -1.0 - 2.0 / 60.0 - 3.0 / 3600.0, "-10203.000000"},
    {"Packed DMS", 12.5, "0123000.000000"},
    {"Packed DMS", 181.0, "1810000.000000"},
    {"Packed DMS", -0.25, "-0001500.000000"},
    {"DD", 12.5, "12.5"},
    {"DD", -0.1, "-0.1"},
    {"DD", 1.0 / 3.0, "0.333333333333333"},
    {"DD", 0.00001, "0.00001"}, // no exponent: the reader would take the 'e' for east
    {"DD", 1e-20, "0"},
    {"", 12.5, "12.5"},
  };
  for (Case const & c : cases)
    EXPECT_EQ(Write(c.format, c.angle), c.text) << c.format << " " << c.angle;
}

TEST(AngleText, FieldsRollOverInsteadOfShowingSixty)
{
  // 59.9999999999999999 is 60 as a double: the next minute.
  EXPECT_EQ(Write("DD_MM_SS", 12.0 + 30.0 / 60.0 + 59.9999999999999999 / 3600.0), "12_31_00.000000");
  // Closer to 60 than the decimals show: the minute, then the degree, carries.
  EXPECT_EQ(Write("DD_MM_SS", 10.0 + 59.0 / 60.0 + 59.9999999 / 3600.0), "11_00_00.000000");
  EXPECT_EQ(Write("Packed DMS", 89.0 + 59.0 / 60.0 + 59.99999996 / 3600.0), "0900000.000000");
  EXPECT_EQ(Write("DD_MM", 12.9999999999), "13_00.000000");
  EXPECT_EQ(Write("DDdMM", -0.99999999999), "-1d00.000000");
  EXPECT_EQ(Write("DD MM SS", 10.0 + 59.0 / 60.0 + 59.6 / 3600.0), "11 00 00");
  EXPECT_EQ(Write("DD.dd", 9.999), "10.00");
  // Just under the rounding point nothing carries.
  EXPECT_EQ(Write("DD_MM_SS", 10.0 + 59.0 / 60.0 + 59.9999994 / 3600.0), "10_59_59.999999");
}

TEST(AngleText, NamedFormatsRoundTripOverTheWholeRange)
{
  std::vector<double> angles = {0.0, 180.0, -180.0, 359.99, -359.99, 1.0 / 3.0, 45.0 + 1e-9,
                                89.0 + 59.0 / 60.0 + 59.99999999 / 3600.0, 1e-7, -1e-7};
  for (double a = -180.0; a <= 180.0; a += 0.3791)
    angles.push_back(a);
  for (Named const & named : kNamed) {
    CAngleText const engine = Engine(named.format);
    for (double a : angles) {
      double back = 1e300;
      CString const text = engine.ToString(a);
      ASSERT_TRUE(engine.FromString(text, back)) << named.format;
      EXPECT_NEAR(back, a, named.tolerance) << named.format << " " << text.toStdString();
    }
  }
}

TEST(AngleText, ReadsSignsHemispheresAndLooseSeparators)
{
  double const a = 12.0 + 30.0 / 60.0 + 15.0 / 3600.0;
  EXPECT_NEAR(Read("DD_MM_SS", "12 30 15 S"), -a, 1e-12);
  EXPECT_NEAR(Read("DD_MM_SS", "W12\u00b030'15\""), -a, 1e-12);
  EXPECT_NEAR(Read("DD_MM_SS", "n 12-30-15"), a, 1e-12); // an inner minus separates
  EXPECT_NEAR(Read("DD_MM_SS", "  -12_30_15"), -a, 1e-12);
  EXPECT_NEAR(Read("DD_MM_SS", "123015"), a, 1e-12);   // packed, from the right
  EXPECT_NEAR(Read("DDMMSS", "12 30 15.5"), a + 0.5 / 3600.0, 1e-12);
  EXPECT_NEAR(Read("DDdMMdSS", "12d30d15s"), -a, 1e-12);
  EXPECT_NEAR(Read("DDMM", "0530.5"), 5.0 + 30.5 / 60.0, 1e-12);
  EXPECT_NEAR(Read("DD_MM", "30"), 0.5, 1e-12);
  EXPECT_NEAR(Read("Packed DMS", "1800000"), 180.0, 1e-12);
  EXPECT_NEAR(Read("Packed DMS", "3015"), 0.5 + 15.0 / 3600.0, 1e-12);
  EXPECT_NEAR(Read("DD", "S 33.5"), -33.5, 1e-12);
  EXPECT_NEAR(Read("DD", "720"), 720.0, 1e-12); // no range reduction here
  // A pattern's fraction may be left out, or given on its finest field.
  EXPECT_NEAR(Read("DD.dddd", "12"), 12.0, 1e-12);
  EXPECT_NEAR(Read("DD MM SS", "12 30 15.5"), a + 0.5 / 3600.0, 1e-12);
  ExpectReadFailure("DD MM SS", "12.5 30 15", "Bad Format");

  double angle = 7.0;
  CAngleText const engine = Engine("DD");
  EXPECT_FALSE(engine.FromString(CString(), angle));
  EXPECT_FALSE(engine.FromString(CString(""), angle));
  EXPECT_EQ(angle, 7.0);
}

TEST(AngleText, ReadingFailuresNameTheField)
{
  // Two sign marks.
  ExpectReadFailure("DD", "N-12.5", "Bad Format");
  ExpectReadFailure("DD", "-12.5 S", "Bad Format");
  ExpectReadFailure("DD_MM_SS", "+12 30 00 E", "Bad Format");
  // Not a number of the format.
  ExpectReadFailure("DD", "12x5", "Bad Format");
  ExpectReadFailure("DD", "1.2.3", "Bad Format");
  ExpectReadFailure("DD_MM_SS", "12 30", "Bad Format");
  ExpectReadFailure("DD_MM", "12.5 30", "Bad Format");
  ExpectReadFailure("DD_MM_SS", "12 30.5 15", "Bad Format for Minutes");
  // Minutes and seconds of 60 or more.
  ExpectReadFailure("DD_MM", "12_60", "Bad Format for Minutes");
  ExpectReadFailure("DDMM", "1260.5", "Bad Format for Minutes");
  ExpectReadFailure("DDdMMdSS", "12d75d00", "Bad Format for Minutes");
  ExpectReadFailure("DD_MM_SS", "12 30 60", "Bad Format for Seconds");
  ExpectReadFailure("Packed DMS", "0123060.0", "Bad Format for Seconds");
  ExpectReadFailure("DD MM SS.ss", "12 61 00.00", "Bad Format for Minutes");
  ExpectReadFailure("DD MM SS.ss", "12 30 60.00", "Bad Format for Seconds");
  // Up to 59.999... is fine.
  EXPECT_NEAR(Read("DD_MM_SS", "0 59 59.999"), 59.0 / 60.0 + 59.999 / 3600.0, 1e-12);
}

TEST(AngleText, DirectionalLettersOnlyWhereThePatternHasThem)
{
  char const * const location = "CAngularValue::ReplaceSpecialChars";
  char const * const details = "Directional special character found in an illegal location";
  // Named formats: before the first number or after the last.
  ExpectReadFailure("DD_MM_SS", "12 N 30 00", details, location);
  ExpectReadFailure("DD", "12.5S7", details, location);
  // A pattern with a placeholder: there and nowhere else, and of its kind.
  ExpectReadFailure("DD MM N", "S 12 30", details, location);
  ExpectReadFailure("DD MM N", "12 30 E", details, location);
  ExpectReadFailure("N DD MM", "12 30 S", details, location);
  ExpectReadFailure("E DDD MM", "12 + 30", details, location);
  EXPECT_NEAR(Read("DD MM N", "12 30 s"), -12.5, 1e-12);
  EXPECT_NEAR(Read("DD MM N", "-12 30"), -12.5, 1e-12); // a leading minus always reads
  EXPECT_NEAR(Read("DD MM P", "12 30 -"), -12.5, 1e-12);
  EXPECT_NEAR(Read("DD-MM", "12-30"), 12.5, 1e-12); // a minus inside is the pattern's own
}

TEST(AngleText, PatternsWriteTheirFields)
{
  struct Case { char const * format; double angle; char const * text; };
  double const a = 12.0 + 30.0 / 60.0 + 15.25 / 3600.0;
  Case const cases[] = {
    {"DDD\u00b0MM'SS.ss\"N", a, "012\u00b030'15.25\"N"},
    {"DDD\u00b0MM'SS.ss\"N", -a, "012\u00b030'15.25\"S"},
    {"DDDoMM'SS.ss\"E", -a, "012\u00b030'15.25\"W"},
    {"DD MM SS.sss", -a, "-12 30 15.250"},
    {"DD MM SS.SSS", a, "12 30 15.250"},
    {"dd mm ss", a, "12 30 15"},
    {"DD.dddddd", -12.5, "-12.500000"},
    {"N DD MM.mmm", 12.5, "N 12 30.000"},
    {"P DDD MM SS", 12.5, "+ 012 30 00"},
    {"DDMMSS.ss", 123.5, "1233000.00"},
    {"DD.MM.SS", 12.5, "12.30.00"},
    {"MMMM.mm", 12.5, "0750.00"},           // all in minutes
    {"SSSSSS", 1.5, "005400"},              // all in seconds
    {"DD SSSS", 1.5, "01 1800"},            // seconds of the degree
    {"DD.ddddddddddddddd", 0.1, "00.100000000000000"}, // 15 decimals, the most
    {"<DD>", -3.0, "-<03>"},
  };
  for (Case const & c : cases)
    EXPECT_EQ(Write(c.format, c.angle), QString::fromUtf8(c.text).toStdString()) << c.format;
}

TEST(AngleText, PatternsRoundTrip)
{
  struct Pattern { char const * format; double tolerance; };
  Pattern const patterns[] = {
    {"DDD\u00b0MM'SS.ss\"N", 0.5e-2 / 3600.0}, {"DDDoMM'SS.sss\"E", 0.5e-3 / 3600.0},
    {"DD MM SS.sss", 0.5e-3 / 3600.0},         {"DD MM SS.SSS", 0.5e-3 / 3600.0},
    {"DD.dddddd", 0.5e-6},                     {"N DD MM.mmm", 0.5e-3 / 60.0},
    {"P DDD MM SS", 0.5 / 3600.0},             {"DDMMSS.ss", 0.5e-2 / 3600.0},
    {"DD.MM.SS.ss", 0.5e-2 / 3600.0},          {"MMMM.mm", 0.5e-2 / 60.0},
    {"SSSSSS.s", 0.5e-1 / 3600.0},             {"dd:mm:ss.ss E", 0.5e-2 / 3600.0},
    {"DD.ddddddddddddddd", 1e-13},
  };
  for (Pattern const & p : patterns) {
    CAngleText const engine = Engine(p.format);
    for (double a = -180.0; a <= 180.0; a += 1.2345) {
      for (double x : {a, a + 1e-10, 359.99}) {
        double back = 1e300;
        CString const text = engine.ToString(x);
        ASSERT_TRUE(engine.FromString(text, back)) << p.format;
        EXPECT_NEAR(back, x, p.tolerance) << p.format << " " << text.toStdString();
      }
    }
  }
}

TEST(AngleText, FormatScanFailures)
{
  char const * const location = "CAngularValue::FindReserveChars";
  char const * const broken = "There was a break in a sequence of reserve characters";
  char const * const digits = "Regular expression is not allowed to contain numerical digits";
  for (char const * format : {"DD MM DD", "SS.SS.SS", "DD.dd dd", "N DD N", "DoMoSo"})
    ExpectFailure([&] { Engine(format); }, location, broken, format);
  for (char const * format : {"DD 1 MM", "0DD"})
    ExpectFailure([&] { Engine(format); }, location, digits, format);
  for (char const * format : {"DDdMM", "DDdMMdSS", "DD_MM", "DD_MM_SS", "DDMM", "DDMMSS",
                              "Packed DMS", "DD", "", "DD MM SS.SSS", "SS.ss"})
    EXPECT_NO_THROW(Engine(format)) << format;
  // The format is kept even when it fails the scan.
  CAngleText engine;
  EXPECT_THROW(engine.SetFormat(CString("DD 7")), CVelmoraException);
  EXPECT_EQ(engine.GetFormat(), CString("DD 7"));
}

TEST(AngleText, MoreThanFifteenDecimalsIsRefused)
{
  CAngleText const engine = Engine("DD.dddddddddddddddd"); // 16
  ExpectFailure([&] { engine.ToString(1.0); }, "CAngularValue::ReplaceReserveChars",
                "Decimal precision beyond 15 digits is not supported", "16 decimals");
  ExpectFailure([&] { Engine("DD MM SS.ssssssssssssssss").ToString(1.0); },
                "CAngularValue::ReplaceReserveChars",
                "Decimal precision beyond 15 digits is not supported", "16 decimals of seconds");
}

TEST(AngleText, PositionOrderAndDigitTest)
{
  EXPECT_TRUE(CAngleText::LessThanNonNeg(1, 2));
  EXPECT_FALSE(CAngleText::LessThanNonNeg(2, 2));
  EXPECT_TRUE(CAngleText::LessThanNonNeg(5, -1)); // found before not found
  EXPECT_FALSE(CAngleText::LessThanNonNeg(-1, 5));
  EXPECT_FALSE(CAngleText::LessThanNonNeg(-1, -1));
  EXPECT_TRUE(CAngleText::LessThanNonNeg(0, -1));

  EXPECT_TRUE(CAngleText::HasNumber(CString("DD0")));
  EXPECT_FALSE(CAngleText::HasNumber(CString("DD MM SS.sss N")));
  EXPECT_FALSE(CAngleText::HasNumber(CString()));
}
