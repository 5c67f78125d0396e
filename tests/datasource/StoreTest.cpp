// The object store without a file: Get, Put and Remove with their codes in
// order, identifiers shared between objects, removed objects until the next
// load, folders, searches, summaries and the listener's actions.
#include <velmora/datasource/CDataSource.h>
#include <velmora/measures/Units.h>

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include <memory>
#include <string>
#include <vector>

using namespace Velmora;
using namespace Velmora::DB;
using namespace VelmoraTest;
using Velmora::ML::CAngularUnit;

namespace {

CAngularUnit Unit(char const * name, char const * code, double perDegree)
{
  CAngularUnit unit(CString(name), CString(""), perDegree);
  unit.GetIdentifiers().Add("VM", code);
  return unit;
}

// A loaded, empty store.
struct Store
{
  CDataSource source;
  Store() { source.SetLoaded(true); }
};

// Writes each action as "action:s1/s2/s3".
class Recorder : public CDataSourceListener
{
public:
  using CDataSourceListener::CDataSourceListener;
  std::vector<std::string> heard;
  void NotifyListener(ListenerActionType action, EObjectType, CString const & s1, CString const & s2,
                      CString const & s3, CString const &, CString const &) override
  {
    heard.push_back(std::to_string(action) + ":" + (s1 + "/" + s2 + "/" + s3).toStdString());
  }
};

} // namespace

TEST(DataSourceStore, ReadsAndEditsNeedALoadedStore)
{
  CDataSource empty;
  CAngularUnit const degree = Unit("Degree", "DEG", 1.0);
  ExpectFailures({
    {"get", [&] { delete empty.GetAngularUnit(CString("VM"), CString("DEG")); }, 7, "CDataSource::Get##name", ""},
    {"put", [&] { empty.PutAngularUnit(degree, true); }, 7, "CDataSource::Put##name", ""},
    {"remove", [&] { empty.RemoveAngularUnit(CString("DEG")); }, 7, "CDataSource::Remove##name", ""},
  });
  EXPECT_EQ(empty.GetAngularUnitNonThrow(CString("VM"), CString("DEG")), nullptr);
}

TEST(DataSourceStore, PutGetOverwriteAndTheirCodesInOrder)
{
  Store s;
  Recorder recorder(&s.source);
  ASSERT_TRUE(s.source.PutAngularUnit(Unit("Degree", "DEG", 1.0), false));
  std::unique_ptr<CAngularUnit> got(s.source.GetAngularUnit(CString("DEG"))); // default issuer "VM"
  ASSERT_TRUE(got);
  EXPECT_EQ(got->GetName(), CString("Degree"));
  EXPECT_EQ(got->GetUnitsPerDegree(), 1.0);
  EXPECT_TRUE(got->IsNearlyEqual(Unit("Degree", "DEG", 1.0)));
  // The handle is the caller's own: changing it leaves the store alone.
  got->SetName(CString("Changed"));
  std::unique_ptr<CAngularUnit> again(s.source.GetAngularUnit(CString("DEG")));
  EXPECT_EQ(again->GetName(), CString("Degree"));

  CAngularUnit noCode(CString("Grad"), CString(""), 400.0 / 360.0);
  ExpectFailures({
    {"no VM even with overwrite", [&] { s.source.PutAngularUnit(noCode, true); }, 22, "CDataSource::Put##name",
     ""},
    {"existing without overwrite", [&] { s.source.PutAngularUnit(Unit("Deg", "DEG", 1.0), false); }, 13,
     "CDataSource::Put##name", ""},
    {"absent", [&] { delete s.source.GetAngularUnit(CString("VM"), CString("GRAD")); }, 24,
     "CDataSource::Get##name", "VM/name/GRAD"},
  });
  ASSERT_TRUE(s.source.PutAngularUnit(Unit("Degree (renamed)", "DEG", 1.0), true));
  std::unique_ptr<CAngularUnit> renamed(s.source.GetAngularUnit(CString("DEG")));
  EXPECT_EQ(renamed->GetName(), CString("Degree (renamed)"));
  EXPECT_EQ(recorder.heard, (std::vector<std::string>{"1:VM/DEG/Degree", "0:VM/DEG/Degree (renamed)"}));
  EXPECT_EQ(s.source.GetNumberOfModifications(), 2);

  s.source.SetReadOnly(true);
  s.source.SetFileName(CString("/data/units.xml"));
  auto const e = Raised([&] { s.source.PutAngularUnit(noCode, true); }); // before the object is looked at
  EXPECT_EQ(e.GetErrorCode(), 12);
  EXPECT_EQ(e.GetDetails(), CString("/data/units.xml"));
}

TEST(DataSourceStore, IdentifiersAreSharedOnlyByTheirOwnObject)
{
  Store s;
  CAngularUnit degree = Unit("Degree", "DEG", 1.0);
  ASSERT_TRUE(s.source.PutAngularUnit(degree, false));
  ASSERT_TRUE(s.source.PutAngularUnit(Unit("Grad", "GRAD", 400.0 / 360.0), false));
  // A second, free identifier joins the stored object.
  degree.GetIdentifiers().Add("EPSG", "9102");
  ASSERT_TRUE(s.source.PutAngularUnit(degree, true));
  std::unique_ptr<CAngularUnit> byEpsg(s.source.GetAngularUnit(CString("EPSG"), CString("9102")));
  EXPECT_EQ(byEpsg->GetName(), CString("Degree"));
  // Another object may not take it.
  CAngularUnit grad = Unit("Grad", "GRAD", 400.0 / 360.0);
  grad.GetIdentifiers().Add("EPSG", "9102");
  auto const e = Raised([&] { s.source.PutAngularUnit(grad, true); });
  EXPECT_EQ(e.GetErrorCode(), 65);
  EXPECT_EQ(e.GetLocation(), CString("CDataSource::Put##name"));
  std::unique_ptr<CAngularUnit> still(s.source.GetAngularUnit(CString("EPSG"), CString("9102")));
  EXPECT_EQ(still->GetName(), CString("Degree"));
}

TEST(DataSourceStore, RemovedObjectsHideTheirIdentifiersUntilTheNextLoad)
{
  Store s;
  Recorder recorder(&s.source);
  ASSERT_TRUE(s.source.PutAngularUnit(Unit("Degree", "DEG", 1.0), false));
  ASSERT_TRUE(s.source.PutAngularUnit(Unit("Grad", "GRAD", 0.9), false));
  EXPECT_TRUE(s.source.RemoveAngularUnit(CString("VM"), CString("GRAD")));
  ExpectFailures({
    {"get removed", [&] { delete s.source.GetAngularUnit(CString("GRAD")); }, 66, "CDataSource::FindObject", ""},
    {"remove absent", [&] { s.source.RemoveAngularUnit(CString("RAD")); }, 24, "CDataSource::Remove##name",
     "VM/name/RAD"},
  });
  EXPECT_EQ(s.source.GetAngularUnitNonThrow(CString("VM"), CString("GRAD")), nullptr);
  // Summaries and searches leave it out; so do names for forms.
  std::unique_ptr<CObjectInfoSet> infos(s.source.GetObjectInfoSet(kObjectAngularUnit));
  ASSERT_EQ(infos->Count(), 1);
  CObjectInfo info;
  infos->GetItem(0, &info);
  EXPECT_EQ(info, CObjectInfo(CString("Degree"), CString("VM"), CString("DEG"), 100));
  EXPECT_EQ(Raised([&] { infos->GetItem(1, &info); }).GetLocation(), CString("CObjectInfoSet::GetItem"));
  EXPECT_EQ(s.source.GetAngularUnitNames(), std::vector<CString>{CString("Degree")});
  EXPECT_EQ(s.source.SearchDB(kObjectAngularUnit).size(), 1u);
  // The listener heard of the removal before anything changed; a failed removal is heard too.
  EXPECT_EQ(recorder.heard.back(), std::string("2:VM/RAD/"));
}

TEST(DataSourceStore, FoldersMovesAndSearchesByName)
{
  Store s;
  Recorder recorder(&s.source);
  for (auto [name, code] : {std::pair{"Degree", "DEG"}, {"Grad", "GRAD"}, {"Arc-second", "SEC"}})
    ASSERT_TRUE(s.source.PutAngularUnit(Unit(name, code, 1.0), false));
  long const sexagesimal = s.source.AddNewGroup(CString("Sexagesimal units"), kObjectAngularUnit, 100);
  EXPECT_EQ(sexagesimal, s.source.GetLargestGroupID());
  EXPECT_TRUE(s.source.AssignGroupID(sexagesimal, kObjectAngularUnit, CString("VM"), CString("SEC")));
  EXPECT_EQ(s.source.FindObjectPath(kObjectAngularUnit, CString("VM"), CString("SEC")),
            (std::vector<long>{sexagesimal, 100}));
  EXPECT_EQ(s.source.GetType(sexagesimal), kObjectAngularUnit);
  EXPECT_EQ(s.source.GetGroupName(sexagesimal, kObjectAngularUnit), CString("Sexagesimal units"));

  auto names = [](std::vector<CSerializableDataDB *> const & bodies) {
    std::vector<std::string> out;
    for (auto const * body : bodies)
      out.push_back(body->GetName().toStdString());
    return out;
  };
  // On the primary folder the text filters names, without regard to case, in tree order.
  EXPECT_EQ(names(s.source.SearchName(kObjectAngularUnit, 100, CString("DEG"))),
            (std::vector<std::string>{"Degree"}));
  EXPECT_EQ(names(s.source.SearchName(kObjectAngularUnit, 100, CString("SEXA"))),
            (std::vector<std::string>{"Arc-second"})); // a folder whose name matches brings all
  // On a subfolder whose name holds the text, everything in it.
  EXPECT_EQ(names(s.source.SearchName(kObjectAngularUnit, sexagesimal, CString("units"))),
            (std::vector<std::string>{"Arc-second"}));
  EXPECT_TRUE(s.source.SearchName(kObjectAngularUnit, 4242, CString("x")).empty());

  std::unique_ptr<CGroupInfoSet> groups(s.source.GetGroupInfoSet(kObjectAngularUnit));
  ASSERT_EQ(groups->Count(), 1); // the primary folder sits under the root and is left out
  EXPECT_TRUE(s.source.AssignGroupName(CString("Old units"), kObjectAngularUnit, sexagesimal));
  EXPECT_EQ(Raised([&] { s.source.AssignGroupName(CString("x"), kObjectAngularUnit, 4242); }).GetDetails(),
            CString("Can't find folder"));
  EXPECT_EQ(Raised([&] { s.source.AddNewGroup(CString("x"), kObjectEllipsoid, 400); }).GetDetails(),
            CString("GroupType doesn't exist"));

  // Removing a folder erases what it holds for good: not 66 but 24.
  EXPECT_TRUE(s.source.RemoveGroup(kObjectAngularUnit, sexagesimal));
  EXPECT_EQ(Raised([&] { delete s.source.GetAngularUnit(CString("SEC")); }).GetErrorCode(), 24);
  EXPECT_EQ(s.source.GetChildCategories(kObjectAngularUnit, 100).size(), 0u);
  EXPECT_EQ(recorder.heard.size(), 3u + 4u);
  EXPECT_EQ(recorder.heard[3].substr(0, 2), "6:");
  EXPECT_EQ(recorder.heard[4].substr(0, 2), "3:");
  EXPECT_EQ(recorder.heard[5].substr(0, 2), "5:");
  EXPECT_EQ(recorder.heard[6], "7:" + std::to_string(sexagesimal) + "/Old units/");
}

TEST(DataSourceStore, CopiesEquivalentsAndKindHelpers)
{
  Store s;
  ASSERT_TRUE(s.source.PutAngularUnit(Unit("Degree", "DEG", 1.0), false));
  CObjectInfo const info(CString("Degree"), CString("VM"), CString("DEG"), 100);
  std::unique_ptr<CObjectInfo> copy(
    s.source.AddObjectCopy(kObjectAngularUnit, CString("Degree copy"), CString("DEG2"), &info));
  EXPECT_EQ(copy->GetCode(), CString("DEG2"));
  std::unique_ptr<CAngularUnit> copied(s.source.GetAngularUnit(CString("DEG2")));
  EXPECT_EQ(copied->GetName(), CString("Degree copy"));
  // Both stored degrees are equivalent to a degree from elsewhere.
  EXPECT_EQ(s.source.Equivalent(Unit("Deg", "OTHER", 1.0)).size(), 2u);
  EXPECT_TRUE(s.source.AssignObjectName(CString("Degree (copy)"), kObjectAngularUnit, CString("VM"), CString("DEG2")));
  CString name, group;
  ASSERT_TRUE(s.source.GetObjectInfo(kObjectAngularUnit, CString("VM"), CString("DEG2"), name, group));
  EXPECT_EQ(name, CString("Degree (copy)"));
  EXPECT_EQ(group, CString("100"));

  EXPECT_EQ(CDataSource::GetEffectiveObjectType(kObjectAnyCoordPoint | kObjectGeodeticCoordSys), 448);
  EXPECT_EQ(CDataSource::GetEffectiveObjectType(kObjectGeodeticCoordSys | kObjectProjectedCoordSys), 30720);
  EXPECT_FALSE(CDataSource::IsSingleType(0));
  EXPECT_EQ(CDataSource::GetTypeNameFromConstant(kObjectEllipsoid), CString("Angular Units"));
  EXPECT_EQ(CDataSource::GetPath(CString("/a/b/c.xml")), CString("/a/b/"));
  EXPECT_EQ(CDataSource::GetPath(CString("C:\\a\\c.xml")), CString("C:\\a\\"));
  EXPECT_EQ(CDataSource::GetPath(CString("c.xml")), CString(""));
}
