// The object browser on the shipped data file (about 11,000 objects), under
// the offscreen platform: opening the picker of every coordinate system with
// its listing, and one search as you type; beside them PROJ's listing of
// every CRS of its database and its search of objects by name, in the same
// run. The browser must open and answer a search in under 0.3 s.
#include <velmora/dialogs/DataSourcePicker.h>
#include <velmora/foundation/Startup.h>

#include <benchmark/benchmark.h>

#include "RatioReport.h"
#include <proj.h>

#include <QApplication>
#include <QLineEdit>
#include <QTreeWidget>

#include <memory>

using namespace Velmora;

namespace {

constexpr char kSearchText[] = "Amersfoort";

DB::CDataSource & Store()
{
  static DB::CDataSource source;
  if (!source.IsLoaded())
    source.LoadFile(QStringLiteral(VELMORA_BUILD_DIR "/data/velmora.xml"));
  return source;
}

void BM_Velmora_OpenBrowser(benchmark::State & state)
{
  for (auto _ : state) {
    QtDialogs::CDataSourcePicker picker(&Store(), kObjectAnyCoordSys);
    picker.show();
    QApplication::processEvents();
    benchmark::DoNotOptimize(picker.GetObjectsListView()->topLevelItemCount());
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Velmora_OpenBrowser)->Unit(benchmark::kMillisecond);

void BM_Velmora_SearchAsYouType(benchmark::State & state)
{
  QtDialogs::CDataSourcePicker picker(&Store(), kObjectAnyCoordSys);
  picker.show();
  for (auto _ : state) {
    picker.filterEdit->setText(kSearchText);
    QApplication::processEvents();
    benchmark::DoNotOptimize(picker.GetObjectsListView()->topLevelItemCount());
    state.PauseTiming();
    picker.filterEdit->clear();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Velmora_SearchAsYouType)->Unit(benchmark::kMillisecond);

void BM_Proj_ListCrs(benchmark::State & state)
{
  PJ_CONTEXT * context = proj_context_create();
  for (auto _ : state) {
    int count = 0;
    PROJ_CRS_INFO ** list = proj_get_crs_info_list_from_database(context, "EPSG", nullptr, &count);
    benchmark::DoNotOptimize(count);
    proj_crs_info_list_destroy(list);
  }
  proj_context_destroy(context);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Proj_ListCrs)->Unit(benchmark::kMillisecond);

void BM_Proj_SearchByName(benchmark::State & state)
{
  PJ_CONTEXT * context = proj_context_create();
  PJ_TYPE const types[] = {PJ_TYPE_GEOGRAPHIC_2D_CRS, PJ_TYPE_GEOGRAPHIC_3D_CRS, PJ_TYPE_GEOCENTRIC_CRS,
                           PJ_TYPE_PROJECTED_CRS};
  for (auto _ : state) {
    PJ_OBJ_LIST * found = proj_create_from_name(context, "EPSG", kSearchText, types, std::size(types), 1, 0, nullptr);
    benchmark::DoNotOptimize(proj_list_get_count(found));
    proj_list_destroy(found);
  }
  proj_context_destroy(context);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Proj_SearchByName)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char ** argv)
{
  qputenv("QT_QPA_PLATFORM", "offscreen");
  VMInitialize();
  return VelmoraBench::RunWithRatios(argc, argv,
                                     {{"open, list all systems", "BM_Velmora_OpenBrowser", "BM_Proj_ListCrs"},
                                      {"search by name", "BM_Velmora_SearchAsYouType", "BM_Proj_SearchByName"}},
                                     [] { Store(); });
}
