// velmora: conversions and look-ups on the data file from the command line.
#include "Cli.h"

#include <velmora/foundation/VelmoraException.h>

#include <QtGlobal>

#include <charconv>
#include <cstdio>
#include <cstring>

using namespace VelmoraCli;

namespace {

char const kUsage[] =
  "usage:\n"
  "  velmora convert --from AUTH:CODE --to AUTH:CODE [--inverse] [--precision N] [--si]\n"
  "                  [--strict] [--route none|SHIFT[,SHIFT]] [--grids DIR[:DIR]] [--verbose]\n"
  "                  [--data FILE] [POINT...]\n"
  "  velmora info AUTH:CODE [--wkt] [--data FILE]\n"
  "  velmora import FILE [--data FILE]\n"
  "  velmora search TEXT [--type KIND] [--data FILE]\n"
  "  velmora routes --from AUTH:CODE --to AUTH:CODE [--data FILE]\n"
  "\n"
  "convert reads points from the arguments or, without them, from standard input,\n"
  "one per line: \"x y [z]\", longitude and latitude for geodetic systems (from the\n"
  "system's prime meridian), easting and northing for projected ones, each in the\n"
  "system's own units (\"velmora info\" names them). It writes one line per input\n"
  "line; a line that fails is written as \"*\" and told on standard error with its\n"
  "number. Points outside an area of use are converted, and their count is told\n"
  "on standard error.\n"
  "  --si            metres and degrees in and out, whatever the systems' units\n"
  "  --strict        refuse points outside a system's or a datum shift's area of use\n"
  "  --from, --to    also a .prj, WKT or MapInfo .tab file, or a WKT string\n"
  "  --wkt           info writes the system as WKT\n"
  "  --inverse       the points are in the --to system and go to the --from one\n"
  "  --precision N   decimals written (default 9 for degrees, 4 for metres)\n"
  "  --route none    no datum shift\n"
  "  --route LIST    these stored shifts in order, as AUTH:CODE; \"-AUTH:CODE\" or\n"
  "                  \"AUTH:CODE:reverse\" uses a shift from its target to its source\n"
  "  --grids DIRS    folders of grid files, looked in before VELMORA_GRIDS, PROJ_DATA,\n"
  "                  PROJ_LIB and /usr/share/proj\n"
  "  --verbose       tell on standard error which datum shift route and grids were taken\n"
  "Without --route, the route is the store's own pick unless another serves better:\n"
  "one whose grid files are all found, whose areas of use hold the first point, that\n"
  "takes a national grid, with fewer shifts, in that order.\n"
  "A bare CODE means the issuer VM. The data file defaults to the installed one\n"
  "(<exe dir>/../share/velmora/velmora.xml), else a build tree's data/velmora.xml.\n";

// Numbers may be negative: "-12.5" is a value, not an option.
bool LooksLikeOption(char const * text)
{
  return text[0] == '-' && text[1] != '\0' && !(text[1] >= '0' && text[1] <= '9') && text[1] != '.';
}

Options Parse(int argc, char ** argv)
{
  if (argc < 2)
    throw CliError("no command given");
  Options o;
  o.command = argv[1];
  if (o.command == "--help" || o.command == "-h" || o.command == "help")
    return o;
  for (int i = 2; i < argc; ++i) {
    char const * a = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc)
        throw CliError(std::string(a) + " needs a value");
      return argv[++i];
    };
    if (!std::strcmp(a, "--from"))
      o.from = value();
    else if (!std::strcmp(a, "--to"))
      o.to = value();
    else if (!std::strcmp(a, "--inverse"))
      o.inverse = true;
    else if (!std::strcmp(a, "--si"))
      o.si = true;
    else if (!std::strcmp(a, "--strict"))
      o.strict = true;
    else if (!std::strcmp(a, "--verbose") || !std::strcmp(a, "-v"))
      o.verbose = true;
    else if (!std::strcmp(a, "--route"))
      o.route = value();
    else if (!std::strcmp(a, "--data"))
      o.data = value();
    else if (!std::strcmp(a, "--grids"))
      o.grids = value();
    else if (!std::strcmp(a, "--wkt"))
      o.wkt = true;
    else if (!std::strcmp(a, "--type"))
      o.type = value();
    else if (!std::strcmp(a, "--precision")) {
      std::string const text = value();
      int n = -1;
      auto const r = std::from_chars(text.data(), text.data() + text.size(), n);
      if (r.ec != std::errc() || r.ptr != text.data() + text.size() || n < 0 || n > 17)
        throw CliError("--precision takes a whole number from 0 to 17, not '" + text + "'");
      o.precision = n;
    } else if (!std::strcmp(a, "--"))
      for (++i; i < argc; ++i)
        o.positional.push_back(argv[i]);
    else if (LooksLikeOption(a))
      throw CliError(std::string("unknown option ") + a);
    else
      o.positional.push_back(a);
  }
  return o;
}

} // namespace

int main(int argc, char ** argv)
{
  // The library's start-up brings up Qt, whose notes about the platform are
  // no business of the tool's users; only Qt's errors pass.
  qInstallMessageHandler([](QtMsgType type, QMessageLogContext const &, QString const & message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
      std::fprintf(stderr, "velmora: %s\n", message.toLocal8Bit().constData());
  });
  try {
    Options const options = Parse(argc, argv);
    if (options.command == "convert")
      return RunConvert(options);
    if (options.command == "info")
      return options.wkt ? RunInfoWkt(options) : RunInfo(options);
    if (options.command == "import")
      return RunImport(options);
    if (options.command == "search")
      return RunSearch(options);
    if (options.command == "routes")
      return RunRoutes(options);
    if (options.command == "--help" || options.command == "-h" || options.command == "help") {
      std::fputs(kUsage, stdout);
      return kExitOk;
    }
    throw CliError("unknown command '" + options.command + "'");
  } catch (CliError const & e) {
    std::fprintf(stderr, "velmora: %s\n", e.what());
    if (argc < 2 || std::strstr(e.what(), "command"))
      std::fputs(kUsage, stderr);
  } catch (Velmora::EX::CVelmoraException const & e) {
    std::fprintf(stderr, "velmora: %s\n", e.GetFullMessage().toStdString().c_str());
  } catch (std::exception const & e) {
    std::fprintf(stderr, "velmora: %s\n", e.what());
  }
  return kExitError;
}
