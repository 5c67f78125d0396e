// Builds the data file that ships with the library from the EPSG registry as
// PROJ's proj.db holds it, through the library's own store and writer, and
// prints how many objects of each kind the file holds.
//
//   gen_velmora_data --out build/data/velmora.xml [--db /usr/share/proj/proj.db]
//                    [--schema data/velmora.xsd] [--only-codes 4326,32632,...]
//
// --only-codes limits the coordinate systems and datum shifts to those EPSG
// codes (what they refer to comes along), so that a small file is made fast.
#include "velmora_data/Builder.h"
#include "velmora_data/Registry.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/ObjectTypes.h>
#include <velmora/foundation/VelmoraException.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <cstdio>
#include <exception>
#include <set>
#include <string>

namespace {

using namespace Velmora;

int Usage()
{
  std::fputs("usage: gen_velmora_data --out FILE [--db proj.db] [--schema velmora.xsd] [--only-codes A,B,...]\n",
             stderr);
  return 2;
}

std::set<std::string> Split(std::string const & list)
{
  std::set<std::string> codes;
  std::size_t start = 0;
  while (start <= list.size()) {
    std::size_t const end = std::min(list.find(',', start), list.size());
    if (end > start)
      codes.insert(list.substr(start, end - start));
    start = end + 1;
  }
  return codes;
}

} // namespace

int main(int argc, char ** argv)
{
  std::string db = "/usr/share/proj/proj.db", out, schema, only;
  bool limited = false;
  for (int i = 1; i < argc; ++i) {
    std::string const arg = argv[i];
    if (i + 1 >= argc)
      return Usage();
    if (arg == "--db")
      db = argv[++i];
    else if (arg == "--out")
      out = argv[++i];
    else if (arg == "--schema")
      schema = argv[++i];
    else if (arg == "--only-codes") {
      only = argv[++i];
      limited = true;
    } else
      return Usage();
  }
  if (out.empty())
    return Usage();

  // The store starts the library's application object; a core one does for a
  // program without windows.
  QCoreApplication application(argc, argv);
  auto const started = std::chrono::steady_clock::now();
  try {
    VelmoraData::Registry const registry(db);
    DB::CDataSource store;
    store.SetLoaded(true);
    std::set<std::string> const codes = Split(only);
    VelmoraData::Builder builder(registry, store, limited ? &codes : nullptr);
    builder.Build();

    // The schema lies beside the file; an old file is replaced, not backed up.
    QFileInfo const target(QString::fromStdString(out));
    QDir().mkpath(target.absolutePath());
    QString const besides = target.absoluteDir().filePath(QStringLiteral("velmora.xsd"));
    if (!schema.empty()) {
      QFile::remove(besides);
      if (!QFile::copy(QString::fromStdString(schema), besides)) {
        std::fprintf(stderr, "gen_velmora_data: cannot copy %s beside the output\n", schema.c_str());
        return 1;
      }
    }
    QFile::remove(target.absoluteFilePath());
    store.SetFileName(CString(target.absoluteFilePath()));
    if (!store.CommitToFile()) {
      std::fprintf(stderr, "gen_velmora_data: writing %s failed\n", out.c_str());
      return 1;
    }

    double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    std::printf("EPSG registry %s -> %s (%.1f s)\n", registry.version.c_str(), out.c_str(), seconds);
    struct Kind
    {
      long type;
      char const * name;
    };
    for (Kind const kind : {Kind{kObjectAngularUnit, "angular units"}, Kind{kObjectLinearUnit, "linear units"},
                            Kind{kObjectPrimeMeridian, "prime meridians"}, Kind{kObjectEllipsoid, "ellipsoids"},
                            Kind{kObjectHorizontalDatum, "horizontal datums"},
                            Kind{kObjectGeodeticPoint, "geodetic point styles"},
                            Kind{kObjectProjectedPoint, "projected point styles"},
                            Kind{kObjectCartesianPoint, "cartesian point styles"}, Kind{kObjectEnvelope, "envelopes"},
                            Kind{kObjectGeodeticCoordSys, "geodetic coordinate systems"},
                            Kind{kObjectGeocentricCoordSys, "geocentric coordinate systems"},
                            Kind{kObjectProjectedCoordSys, "projected coordinate systems"},
                            Kind{kObjectDatumShift, "datum shifts"}})
      std::printf("%8zu  %s\n", store.SearchDB(kind.type).size(), kind.name);
    std::printf("made:\n");
    for (auto const & [what, count] : builder.Made())
      std::printf("%8d  %s\n", count, what.c_str());
    if (!builder.LeftOut().empty()) {
      std::printf("left out:\n");
      for (auto const & [reason, count] : builder.LeftOut())
        std::printf("%8d  %s\n", count, reason.c_str());
    }
  } catch (EX::CVelmoraException const & e) {
    std::fprintf(stderr, "gen_velmora_data: %s\n", e.GetFullMessage().toStdString().c_str());
    return 1;
  } catch (std::exception const & e) {
    std::fprintf(stderr, "gen_velmora_data: %s\n", e.what());
    return 1;
  }
  return 0;
}
