#pragma once
// Running the velmora tool and PROJ's cs2cs on the same points, and
// comparing what they give. Distances are in metres on the ground, so that
// geodetic and projected outputs share one tolerance.
#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace VelmoraTest {

using Row = std::array<double, 3>;

struct ProgramRun
{
  int exitCode = -1;
  QByteArray out;
  QByteArray err;
};

// A program with arguments and standard input; Qt kept off any display.
inline ProgramRun RunProgram(QString const & program, QStringList const & arguments, QByteArray const & input = {})
{
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  process.setProcessEnvironment(environment);
  process.start(program, arguments);
  ProgramRun run;
  if (!process.waitForStarted(30000)) {
    run.err = "could not start " + program.toUtf8();
    return run;
  }
  process.write(input);
  process.closeWriteChannel();
  process.waitForFinished(120000);
  run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  run.out = process.readAllStandardOutput();
  run.err = process.readAllStandardError();
  return run;
}

inline ProgramRun RunTool(QStringList const & arguments, QByteArray const & input = {})
{
  return RunProgram(QString(VELMORA_CLI_PATH), arguments, input);
}

// Numbers of each line, blanks, tabs or commas between them; "*" lines give NaN.
inline std::vector<Row> ParseRows(QByteArray const & text)
{
  std::vector<Row> rows;
  for (QByteArray const & line : text.split('\n')) {
    if (line.trimmed().isEmpty())
      continue;
    Row row{NAN, NAN, NAN};
    QList<QByteArray> const fields = line.simplified().replace(',', ' ').split(' ');
    for (int i = 0; i < 3 && i < fields.size(); ++i) {
      bool ok = false;
      double const v = fields[i].toDouble(&ok);
      row[std::size_t(i)] = ok ? v : NAN;
    }
    rows.push_back(row);
  }
  return rows;
}

inline QByteArray PointsText(std::vector<Row> const & points, int dimensions)
{
  QByteArray text;
  for (Row const & p : points) {
    text += QByteArray::number(p[0], 'g', 17) + ' ' + QByteArray::number(p[1], 'g', 17);
    if (dimensions == 3)
      text += ' ' + QByteArray::number(p[2], 'g', 17);
    text += '\n';
  }
  return text;
}

// Ground distance between two results: metres for projected ones, degrees
// turned into metres on a sphere of 6378 km for geodetic ones.
inline double Apart(Row const & a, Row const & b, bool geodetic)
{
  if (std::isnan(a[0]) || std::isnan(a[1]) || std::isnan(b[0]) || std::isnan(b[1]))
    return INFINITY;
  if (!geodetic)
    return std::hypot(a[0] - b[0], a[1] - b[1]);
  constexpr double kMetresPerDegree = 6378137.0 * 3.14159265358979323846 / 180.0;
  double const east = (a[0] - b[0]) * std::cos(a[1] * 3.14159265358979323846 / 180.0);
  return kMetresPerDegree * std::hypot(east, a[1] - b[1]);
}

// One conversion run both ways: the tool with its systems and options, cs2cs
// with PROJ's definitions of the same systems (cs2cs flags such as "-r" or
// "-s" go in front when the PROJ systems have latitude first).
struct ProjCase
{
  QString what;
  QStringList tool;       // e.g. {"--from", "EPSG:4326", "--to", "EPSG:32632", "--route", "none"}
  QStringList cs2cs;      // e.g. {"+proj=longlat", "+datum=WGS84", "+to", "+proj=utm", "+zone=32", ...}
  std::vector<Row> points;
  int dimensions = 2;
  bool geodeticOutput = false;
  double tolerance = 0.001; // metres
};

struct Agreement
{
  double worst = 0.0; // metres
  std::size_t worstIndex = 0;
  std::size_t compared = 0;
};

// Runs both, expects every point converted by each, and returns the largest gap.
inline Agreement CompareWithProj(ProjCase const & c, QString const & dataFile)
{
  Agreement agreement;
  QByteArray const input = PointsText(c.points, c.dimensions);
  ProgramRun const ours = RunTool(QStringList{"convert", "--data", dataFile, "--precision", "10"} + c.tool, input);
  EXPECT_EQ(ours.exitCode, 0) << c.what.toStdString() << ": " << ours.err.toStdString();
  ProgramRun const theirs = RunProgram("cs2cs", QStringList{"-d", "10"} + c.cs2cs, input);
  EXPECT_EQ(theirs.exitCode, 0) << c.what.toStdString() << ": " << theirs.err.toStdString();
  std::vector<Row> const a = ParseRows(ours.out);
  std::vector<Row> const b = ParseRows(theirs.out);
  EXPECT_EQ(a.size(), c.points.size()) << c.what.toStdString();
  EXPECT_EQ(b.size(), c.points.size()) << c.what.toStdString();
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    double const gap = Apart(a[i], b[i], c.geodeticOutput);
    ++agreement.compared;
    if (gap > agreement.worst || std::isinf(gap)) {
      agreement.worst = gap;
      agreement.worstIndex = i;
    }
  }
  return agreement;
}

inline void ExpectAgreesWithProj(ProjCase const & c, QString const & dataFile)
{
  Agreement const agreement = CompareWithProj(c, dataFile);
  EXPECT_GT(agreement.compared, 0u) << c.what.toStdString();
  EXPECT_LE(agreement.worst, c.tolerance)
    << c.what.toStdString() << ": worst at point " << agreement.worstIndex << " ("
    << c.points[agreement.worstIndex][0] << ", " << c.points[agreement.worstIndex][1] << ")";
}

} // namespace VelmoraTest
