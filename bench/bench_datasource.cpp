// The data source on a generated file of about 21,600 objects, 1,200 of each
// of the eighteen kinds: LoadFile, Get of a projected system, SearchName over
// the geodetic systems, and CommitToFile; beside the Get, PROJ's
// proj_create("EPSG:32632") per call in the same run. Peak memory (the
// process's maximum resident set) is printed at the end.
#include <velmora/velmora.h>

#include <benchmark/benchmark.h>

#include "RatioReport.h"
#include <proj.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>
#include <string>

using namespace Velmora;

namespace {

constexpr int kPerKind = 1200;

// One object of each kind; "@" is replaced by the object's code. Every
// reference names the objects of code "1" of the kind, or of code "@".
struct Kind
{
  char const * plural;
  char const * object;
};

Kind const kKinds[] = {
  {"angularunits", R"(<angularunit group="100" id="@" name="Degree @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<abbreviation>deg</abbreviation><unitsperdegree>1</unitsperdegree></angularunit>)"},
  {"linearunits", R"(<linearunit group="200" id="@" name="Metre @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<abbreviation>m</abbreviation><unitspermeter>1</unitspermeter></linearunit>)"},
  {"primemeridians", R"(<primemeridian group="300" id="@" name="Greenwich @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<longitude code="1" issuer="VM">0</longitude></primemeridian>)"},
  {"ellipsoids", R"(<ellipsoid group="400" id="@" name="WGS 84 @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<semimajor code="1" issuer="VM">6378137</semimajor><invflattening>298.257223563</invflattening></ellipsoid>)"},
  {"horizontaldatums", R"(<horizontaldatum group="500" id="@" name="WGS 84 @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<ellipsoid code="@" issuer="VM"/><primemeridian code="1" issuer="VM"/></horizontaldatum>)"},
  {"datumshifts", R"(<datumshift group="600" id="@" name="Shift @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<envelope code="1" issuer="VM"/><sourcedatum code="@" issuer="VM"/><targetdatum code="1" issuer="VM"/>
<parameters class="GeocentricTranslation"><linear code="1" issuer="VM" name="dx">-8</linear>
<linear code="1" issuer="VM" name="dy">160</linear><linear code="1" issuer="VM" name="dz">176</linear></parameters>
</datumshift>)"},
  {"cartesianpointstyles", R"(<cartesianpointstyle group="710" id="@" name="XYZ @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<xaxis><label>X</label><units code="1" issuer="VM"/></xaxis><yaxis><label>Y</label><units code="1" issuer="VM"/></yaxis>
<zaxis><label>Z</label><units code="1" issuer="VM"/></zaxis></cartesianpointstyle>)"},
  {"geodeticpointstyles", R"(<geodeticpointstyle group="720" id="@" name="Degrees @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<longitude><label>Longitude</label><units code="1" issuer="VM"/></longitude>
<latitude><label>Latitude</label><units code="1" issuer="VM"/></latitude>
<height><label>Height</label><units code="1" issuer="VM"/></height><stringformat>None</stringformat>
</geodeticpointstyle>)"},
  {"projectedpointstyles", R"(<projectedpointstyle group="730" id="@" name="Metres @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<easting><label>Easting</label><units code="1" issuer="VM"/></easting>
<northing><label>Northing</label><units code="1" issuer="VM"/></northing>
<height><label>Height</label><units code="1" issuer="VM"/></height><stringformat>None</stringformat>
</projectedpointstyle>)"},
  {"envelopes", R"(<envelope group="800" id="@" name="World @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<minimum><geodeticpoint code="1" issuer="VM"><longitude>-180</longitude><latitude>-90</latitude></geodeticpoint></minimum>
<maximum><geodeticpoint code="1" issuer="VM"><longitude>180</longitude><latitude>90</latitude></geodeticpoint></maximum>
</envelope>)"},
  {"verticalreferences", R"(<verticalreference group="900" id="@" name="Heights @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<verticaldatum code="@" issuer="VM"/><heightmodel code="@" issuer="VM"/></verticalreference>)"},
  {"verticaldatums", R"(<verticaldatum group="930" id="@" name="Sea level @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<envelope code="1" issuer="VM"/><parameters class="Unassociated Vertical Datum"></parameters></verticaldatum>)"},
  {"heightmodels", R"(<heightmodel group="960" id="@" name="EGM96 @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<envelope code="1" issuer="VM"/><horizontaldatum code="1" issuer="VM"/>
<parameters class="Earth Geopotential Model of 1996"><string name="file">WW15MGH.GRD</string>
<string name="path">geoids/</string></parameters></heightmodel>)"},
  {"geodeticcoordsystems", R"(<geodeticcoordsys group="1200" id="@" name="WGS 84 @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<pointstyle code="1" issuer="VM"/><envelope code="1" issuer="VM"/><horizontaldatum code="@" issuer="VM"/>
</geodeticcoordsys>)"},
  {"geocentriccoordsystems", R"(<geocentriccoordsys group="1100" id="@" name="Geocentric @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<pointstyle code="1" issuer="VM"/><envelope code="1" issuer="VM"/><horizontaldatum code="@" issuer="VM"/>
</geocentriccoordsys>)"},
  {"projectedcoordsystems", R"(<projectedcoordsys group="1300" id="@" name="UTM @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<pointstyle code="1" issuer="VM"/><envelope code="1" issuer="VM"/><geodeticcoordsys code="@" issuer="VM"/>
<projection class="Transverse Mercator"><angular code="1" issuer="VM" name="central_meridian">9</angular>
<linear code="1" issuer="VM" name="false_easting">500000</linear><linear code="1" issuer="VM" name="false_northing">0</linear>
<angular code="1" issuer="VM" name="latitude_of_origin">0</angular><float name="scale_factor">0.9996</float></projection>
</projectedcoordsys>)"},
  {"fittedcoordsystems", R"(<fittedcoordsys group="1400" id="@" name="Site @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<pointstyle code="1" issuer="VM"/><envelope code="1" issuer="VM"/><basecoordsys code="@" issuer="VM"/>
<transformahead class="Affine"><float name="dx">5</float><float name="dxx">1</float><float name="dxy">0</float>
<float name="dy">7</float><float name="dyx">0</float><float name="dyy">1</float></transformahead>
<transformback class="Affine"><float name="dx">-5</float><float name="dxx">1</float><float name="dxy">0</float>
<float name="dy">-7</float><float name="dyx">0</float><float name="dyy">1</float></transformback></fittedcoordsys>)"},
  {"coordtransforms", R"(<coordtransform group="1500" id="@" name="Transform @">
<identifiers><tag code="@" issuer="VM"/></identifiers>
<sourcecoordsys code="@" issuer="VM"/><targetcoordsys code="1" issuer="VM"/>
<datumshifts><datumshift code="@" issuer="VM" reversed="false"/></datumshifts></coordtransform>)"},
};

struct Files
{
  QTemporaryDir dir;
  QString data;
  QString written;
};

Files & TheFiles()
{
  static Files files = [] {
    Files f;
    f.data = f.dir.filePath("generated.xml");
    f.written = f.dir.filePath("written.xml");
    QFile::copy(VELMORA_SOURCE_DIR "/data/velmora.xsd", f.dir.filePath("velmora.xsd"));
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n<velmora>\n";
    for (Kind const & kind : kKinds) {
      text += std::string("<") + kind.plural + "><grouptree/>\n";
      for (int i = 1; i <= kPerKind; ++i) {
        std::string object = kind.object;
        std::string const code = std::to_string(i);
        for (std::size_t at = object.find('@'); at != std::string::npos; at = object.find('@', at + code.size()))
          object.replace(at, 1, code);
        text += object + "\n";
      }
      text += std::string("</") + kind.plural + ">\n";
    }
    text += "</velmora>\n";
    QFile out(f.data);
    out.open(QIODevice::WriteOnly);
    out.write(text.data(), static_cast<qint64>(text.size()));
    return f;
  }();
  return files;
}

DB::CDataSource & Loaded()
{
  static DB::CDataSource source;
  if (!source.IsLoaded())
    source.LoadFile(CString(TheFiles().data));
  return source;
}

void BM_Velmora_LoadFile(benchmark::State & state)
{
  CString const path(TheFiles().data);
  for (auto _ : state) {
    DB::CDataSource source;
    benchmark::DoNotOptimize(source.LoadFile(path));
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_Velmora_GetProjected(benchmark::State & state)
{
  DB::CDataSource & source = Loaded();
  CString const issuer("VM");
  CString const code("600");
  for (auto _ : state) {
    std::unique_ptr<CS::CProjectedCoordSys> system(source.GetProjectedCoordSys(issuer, code));
    benchmark::DoNotOptimize(system.get());
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_Proj_Create(benchmark::State & state)
{
  PJ_CONTEXT * context = proj_context_create();
  for (auto _ : state) {
    PJ * crs = proj_create(context, "EPSG:32632");
    benchmark::DoNotOptimize(crs);
    proj_destroy(crs);
  }
  proj_context_destroy(context);
  state.SetItemsProcessed(state.iterations());
}

void BM_Velmora_SearchName(benchmark::State & state)
{
  DB::CDataSource & source = Loaded();
  CString const text("wgs 84 11");
  std::size_t found = 0;
  for (auto _ : state) {
    auto const hits = source.SearchName(kObjectGeodeticCoordSys, 1200, text);
    found = hits.size();
    benchmark::DoNotOptimize(found);
  }
  state.counters["hits"] = static_cast<double>(found);
  state.SetItemsProcessed(state.iterations());
}

void BM_Velmora_CommitToFile(benchmark::State & state)
{
  DB::CDataSource & source = Loaded();
  CString const path(TheFiles().written);
  for (auto _ : state)
    benchmark::DoNotOptimize(source.CommitToFile(path));
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_Velmora_LoadFile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Velmora_GetProjected)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Proj_Create)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Velmora_SearchName)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Velmora_CommitToFile)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  int const result = VelmoraBench::RunWithRatios(
    argc, argv, {{"Get of a projected system", "BM_Velmora_GetProjected", "BM_Proj_Create"}}, [] {
      TheFiles();
      std::printf("generated %d objects, %d of each of %zu kinds\n", kPerKind * int(std::size(kKinds)), kPerKind,
                  std::size(kKinds));
      Loaded();
    });
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("peak memory (ru_maxrss): %.1f MiB\n", static_cast<double>(usage.ru_maxrss) / 1024.0);
  return result;
}
