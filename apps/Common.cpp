#include "Cli.h"

#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/CSerializable.h>
#include <velmora/foundation/ObjectTypes.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/measures/CoordPoints.h>
#include <velmora/refsys/CoordSys.h>

#include <filesystem>
#include <system_error>

namespace VelmoraCli {

using namespace Velmora;
namespace fs = std::filesystem;

std::string Utf8(CString const & text) { return text.toStdString(); }

AxisUnits UnitsOf(DB::CDataSource & store, CS::CCoordSys const & system)
{
  // A stored system refers to its style, which keeps the units, by code.
  std::unique_ptr<CSerializable> stored;
  ML::CCoordPoint const * referred = &system.GetPointStyle();
  CString const code = VmCode(*referred);
  if (!code.isEmpty()) {
    ML::ECoordPointType const type = referred->GetType();
    long const kind = type == ML::kGeodeticPoint    ? kObjectGeodeticPoint
                      : type == ML::kProjectedPoint ? kObjectProjectedPoint
                                                    : kObjectCartesianPoint;
    stored.reset(store.GetSerializable(kind, CString("VM"), code));
    if (auto const * point = dynamic_cast<ML::CCoordPoint const *>(stored.get()))
      referred = point;
  }
  ML::CCoordPoint const & style = *referred;
  AxisUnits units;
  // One of each axis's unit, in internal units: the style's own conversion.
  std::unique_ptr<ML::CCoordPoint> one(ML::CCoordPointFactory::CreatePoint(style, 3));
  one->SetInUnits(1.0, 1.0, 1.0);
  one->GetInternals(units.perUnit[0], units.perUnit[1], units.perUnit[2]);
  auto name = [](auto const & value) { return Utf8(value.GetUnits().GetName()); };
  if (auto const * g = dynamic_cast<ML::CGeodeticPoint const *>(&style)) {
    units.names[0] = name(g->GetLon());
    units.names[1] = name(g->GetLat());
    units.names[2] = name(g->GetHgt());
  } else if (auto const * p = dynamic_cast<ML::CProjectedPoint const *>(&style)) {
    units.names[0] = name(p->GetEast());
    units.names[1] = name(p->GetNorth());
    units.names[2] = name(p->GetHgt());
  } else if (auto const * c = dynamic_cast<ML::CCartesianPoint const *>(&style)) {
    units.names[0] = name(c->GetX());
    units.names[1] = name(c->GetY());
    units.names[2] = name(c->GetZ());
  }
  return units;
}

std::string Quoted(CString const & text)
{
  std::string quoted(1, '"');
  quoted += Utf8(text);
  quoted += '"';
  return quoted;
}

Code ParseCode(std::string const & text)
{
  std::size_t const colon = text.find(':');
  Code result;
  if (colon == std::string::npos) {
    result.issuer = CString("VM");
    result.code = CString(text);
  } else {
    result.issuer = CString(text.substr(0, colon));
    result.code = CString(text.substr(colon + 1));
  }
  if (result.issuer.isEmpty() || result.code.isEmpty())
    throw CliError("'" + text + "' is not an identifier: write AUTHORITY:CODE, such as EPSG:4326");
  return result;
}

std::string ToText(Code const & code) { return Utf8(code.issuer) + ":" + Utf8(code.code); }

std::string Identifiers(CSerializable const & object)
{
  std::string text;
  CIdentifierCollection const & ids = object.GetIdentifiers();
  for (long i = 0; i < ids.Count(); ++i) {
    CString issuer, code;
    ids.GetItem(i, issuer, code);
    if (!text.empty())
      text += ", ";
    text += ToText({issuer, code});
  }
  return text;
}

CString VmCode(CSerializable const & object)
{
  CIdentifierCollection const & ids = object.GetIdentifiers();
  return ids.Exists(CString("VM")) ? ids.GetItem(CString("VM")) : CString();
}

std::string PreferredCode(CSerializable const & object)
{
  CIdentifierCollection const & ids = object.GetIdentifiers();
  for (char const * issuer : {"EPSG", "VM"}) {
    if (ids.Exists(CString(issuer)))
      return ToText({CString(issuer), ids.GetItem(CString(issuer))});
  }
  return ids.Count() > 0 ? Identifiers(object) : std::string("(no identifier)");
}

namespace {

fs::path ExecutableDirectory()
{
  std::error_code error;
  fs::path const self = fs::read_symlink("/proc/self/exe", error);
  return error ? fs::path() : self.parent_path();
}

} // namespace

std::string DataFilePath(std::string const & given)
{
  if (!given.empty())
    return given;
  fs::path const here = ExecutableDirectory();
  // Installed: bin/velmora and share/velmora/velmora.xml. Built: apps/velmora
  // and data/velmora.xml, where the data generator writes.
  fs::path const installed = here / ".." / "share" / "velmora" / "velmora.xml";
  fs::path const built = here / ".." / "data" / "velmora.xml";
  for (fs::path const & candidate : {installed, built}) {
    std::error_code error;
    if (fs::is_regular_file(candidate, error))
      return fs::weakly_canonical(candidate, error).string();
  }
  throw CliError("no data file found (looked for " + installed.lexically_normal().string() + " and " +
                 built.lexically_normal().string() + "); give one with --data FILE");
}

std::unique_ptr<DB::CDataSource> OpenStore(std::string const & path)
{
  std::error_code error;
  if (!fs::is_regular_file(path, error))
    throw CliError("cannot read the data file " + path);
  // Geoid rasters and other grid files that ship lie beside the data file;
  // objects take the data path when they are made.
  if (DB::CDataSource::GetDataPath().isEmpty())
    DB::CDataSource::SetDataPath(CString(QString::fromStdString(fs::absolute(path, error).parent_path().string() + "/")));
  auto store = std::make_unique<DB::CDataSource>();
  try {
    store->LoadFile(CString(path));
  } catch (EX::CVelmoraException const & e) {
    throw CliError(path + ": " + Utf8(e.GetFullMessage()));
  }
  return store;
}

} // namespace VelmoraCli
