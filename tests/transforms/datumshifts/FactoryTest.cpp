// The fifteen methods: the factory and its table, the stored body's type
// lookup, and what each method raises while it cannot shift.
#include <velmora/datasource/CDataSource.h>
#include <velmora/transforms/datumshifts/NationalShifts.h>

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"

#include <cstdio>
#include <filesystem>
#include <memory>

using namespace Velmora;
using namespace Velmora::CT::DS;
using namespace VelmoraTest;
using Velmora::ML::CGeodeticPoint;

namespace {

constexpr auto D = CParameter::kDouble;
constexpr auto S = CParameter::kString;
constexpr auto A = CParameter::kAngularValue;
constexpr auto M = CParameter::kLinearValue;

struct Expected
{
  char const * name;
  std::vector<std::pair<char const *, CParameter::Type>> parameters;
};

// Indexed by type value.
std::vector<Expected> const kExpected = {
  {"BursaWolfe", {{"dx", M}, {"dy", M}, {"dz", M}, {"rx", A}, {"ry", A}, {"rz", A}, {"k", D}}},
  {"CanadianNTV2", {{"cantrans_file", S}}},
  {"ED50ToED87NorthSea", {}},
  {"FourParameter", {{"dx", M}, {"dy", M}, {"dz", M}, {"k", D}}},
  {"GeocentricTranslation", {{"dx", M}, {"dy", M}, {"dz", M}}},
  {"LongitudeRotation", {{"rotation", A}}},
  {"Molodensky", {{"dx", M}, {"dy", M}, {"dz", M}}},
  {"MolodenskyBadekas",
   {{"dx", M}, {"dy", M}, {"dz", M}, {"rx", A}, {"ry", A}, {"rz", A}, {"xp", M}, {"yp", M}, {"zp", M}, {"k", D}}},
  {"MRE", {{"datum_id", S}}},
  {"Nadcon", {{"las_name", S}, {"los_name", S}, {"type", S}}},
  {"NTFToRGF93", {{"file", S}}},
  {"Ordnance Survey Grid", {{"path", S}, {"file", S}}},
  {"SevenParameter", {{"dx", M}, {"dy", M}, {"dz", M}, {"rx", A}, {"ry", A}, {"rz", A}, {"k", D}}},
  {"SixParameter", {{"dx", M}, {"dy", M}, {"dz", M}, {"rx", A}, {"ry", A}, {"rz", A}}},
  {"TokyoToJGD2000", {{"path", S}, {"file", S}}},
};

std::unique_ptr<CDatumShift> Make(int type)
{
  return std::unique_ptr<CDatumShift>(CDatumShiftFactory::CreateDatumShift(type));
}

// A file that exists for the length of a test.
struct TempFile
{
  std::filesystem::path path;
  explicit TempFile(char const * name) : path(std::filesystem::temp_directory_path() / name)
  {
    std::FILE * f = std::fopen(path.c_str(), "wb");
    std::fputs("grid", f);
    std::fclose(f);
  }
  ~TempFile() { std::filesystem::remove(path); }
  CString Name() const { return CString(path.filename().string()); }
  CString Full() const { return CString(path.string()); }
  CString Folder() const { return CString(path.parent_path().string()); }
};

} // namespace

TEST(DatumShiftFactory, EveryTypeHasItsClassTypeAndDeclaredParameters)
{
  ASSERT_EQ(kExpected.size(), static_cast<size_t>(CDatumShift::kTypeCount));
  for (int type = 0; type < CDatumShift::kTypeCount; ++type) {
    Expected const & row = kExpected[type];
    auto const shift = Make(type);
    ASSERT_NE(shift, nullptr) << type;
    EXPECT_EQ(shift->GetType(), type);
    EXPECT_EQ(shift->GetTypeName(), CString(row.name));
    EXPECT_EQ(CDatumShift::TypeName(type), CString(row.name));
    EXPECT_EQ(CDatumShiftDataDB::GetDatumShiftType(CString(row.name)), type);
    EXPECT_EQ(shift->GetObjectType(), kObjectDatumShift);
    EXPECT_EQ(shift->GetGroupID(), 600);
    EXPECT_FALSE(shift->GetReverseUsage());

    std::vector<CString> const declared = CDatumShiftFactory::GetParameterNames(static_cast<CDatumShift::Type>(type));
    CParameterCollection const & parameters = shift->GetParameters();
    ASSERT_EQ(parameters.Count(), static_cast<long>(row.parameters.size())) << row.name;
    ASSERT_EQ(declared.size(), row.parameters.size()) << row.name;
    for (size_t i = 0; i < row.parameters.size(); ++i) {
      auto const & [name, kind] = row.parameters[i];
      EXPECT_EQ(declared[i], CString(name)) << row.name << " position " << i;
      ASSERT_TRUE(parameters.Exists(CString(name))) << row.name << " " << name;
      EXPECT_EQ(parameters.GetItemType(CString(name)), kind) << row.name << " " << name;
      EXPECT_FALSE(parameters.IsItemSet(CString(name))) << row.name << " " << name;
    }
    EXPECT_EQ(parameters.AllItemsSet(), row.parameters.empty()) << row.name;
  }
}

TEST(DatumShiftFactory, UnknownTypesAndNames)
{
  for (int type : {15, -1, 1000}) {
    auto const e = Raised([&] { Make(type); });
    EXPECT_EQ(e.GetErrorCode(), 50) << type;
    EXPECT_EQ(e.GetLocation(), CString("CDatumShiftFactory::CreateDatumShift"));
    EXPECT_EQ(CDatumShift::TypeName(type), CString());
    EXPECT_TRUE(CDatumShiftFactory::GetParameterNames(static_cast<CDatumShift::Type>(type)).empty());
  }
  // Exactly as spelt: other spellings and the class names are not type strings.
  for (char const * name : {"bursawolfe", "OSTN02", "Ordnance_Survey_Grid", "COSTN02", " Molodensky", ""})
    EXPECT_EQ(CDatumShiftDataDB::GetDatumShiftType(CString(name)), -1) << name;
}

TEST(DatumShiftFactory, ClassHierarchyOfTheDerivedMethods)
{
  EXPECT_NE(dynamic_cast<CMolodensky *>(Make(CDatumShift::kNTFToRGF93).get()), nullptr);
  EXPECT_NE(dynamic_cast<CBursaWolfe *>(Make(CDatumShift::kED50ToED87NorthSea).get()), nullptr);
  EXPECT_NE(dynamic_cast<COSTN02 *>(Make(CDatumShift::kOrdnanceSurveyGrid).get()), nullptr);
}

TEST(DatumShiftDataDB, TypeSetterTakesKnownNamesOnly)
{
  CDatumShiftDataDB body;
  EXPECT_EQ(body.GetShiftType(), -1);
  EXPECT_EQ(body.GetDataObjectType(), kEDataObjectDB);
  EXPECT_EQ(body.SetShiftType(CString("SixParameter")), 13);
  EXPECT_EQ(body.GetClassType(), CString("SixParameter"));
  EXPECT_EQ(body.SetShiftType(CString("Six Parameter")), -1);
  EXPECT_EQ(body.GetShiftType(), 13);
  body.SetShiftType(99);
  EXPECT_EQ(body.GetShiftType(), 13);
  // The store's copy of a caller's shift knows its type from the class string.
  CNadcon nadcon;
  CDatumShiftDataDB const stored(nadcon.ShiftData(), nullptr);
  EXPECT_EQ(stored.GetShiftType(), CDatumShift::kNadcon);
  EXPECT_EQ(stored.GetParameters().Count(), 3);
}

TEST(DatumShiftDataDB, ShiftOverAStoredBodySharesItUntilWritten)
{
  CDatumShiftDataDB body;
  body.SetShiftType(CDatumShift::kMolodensky);
  body.SetName(CString("stored"));
  std::unique_ptr<CDatumShift> shift(CDatumShiftFactory::CreateDatumShift(body));
  EXPECT_NE(dynamic_cast<CMolodensky *>(shift.get()), nullptr);
  EXPECT_EQ(&shift->ShiftData(), static_cast<CDatumShiftData const *>(&body));
  shift->SetName(CString("mine"));
  EXPECT_NE(&shift->ShiftData(), static_cast<CDatumShiftData const *>(&body));
  EXPECT_EQ(body.GetName(), CString("stored"));

  CDatumShiftDataDB unknown;
  EXPECT_EQ(Raised([&] { CDatumShiftFactory::CreateDatumShift(unknown); }).GetErrorCode(), 50);
}

// What each method raises where it can't go on. Grid files that don't exist
// give code 10 at their loader; parametric methods with unset parameters code
// 31 at their own labels.
TEST(DatumShiftMethods, UnsetParametersAndMissingFiles)
{
  DB::CDataSource::SetDataPath(CString());
  auto const method = [](int type) { return std::shared_ptr<CDatumShift>(CDatumShiftFactory::CreateDatumShift(type)); };
  struct Row
  {
    int type;
    char const * srcPoint;
    char const * destPoint;
    char const * srcPair;
    char const * destPair;
    int code;
    char const * details;
  };
  Row const rows[] = {
    // Both point directions of this one report under the reverse label.
    {0, "CBursaWolfe::ShiftDestToSrc", "CBursaWolfe::ShiftDestToSrc", nullptr, nullptr, 31, ""},
    {12, "CSevenParameter::ShiftSrcToDest", "CSevenParameter::ShiftDestToSrc", nullptr, nullptr, 31, ""},
    {13, "CSixParameter::ShiftSrcToDest", "CSixParameter::ShiftDestToSrc", nullptr, nullptr, 31, ""},
    {3, "CFourParameter::ShiftSrcToDest", "CFourParameter::ShiftDestToSrc", nullptr, nullptr, 31, ""},
    {7, "CMolodenskyBadekas::ShiftSrcToDest", "CMolodenskyBadekas::ShiftDestToSrc", nullptr, nullptr, 31, ""},
    {4, "CGeocentricTranslation::ShiftSrcToDest", "CGeocentricTranslation::ShiftDestToSrc", nullptr, nullptr, 31,
     ""},
    {6, "CMolodensky::Shift", "CMolodensky::Shift", "CMolodensky::Shift", "CMolodensky::Shift", 31, ""},
    // The point form of the forward direction alone does not look.
    {5, nullptr, "CLongitudeRotation::ShiftDestToSrc", "CLongitudeRotation::ShiftSrcToDest",
     "CLongitudeRotation::ShiftDestToSrc", 31, ""},
    {8, "CMRE::ShiftSrcToDest", "CMRE::ShiftDestToSrc", "CMRE::ShiftSrcToDest", "CMRE::ShiftDestToSrc", 31, ""},
    {11, "COSTN02::ShiftSrcToDest", "COSTN02::ShiftDestToSrc", "COSTN02::ShiftSrcToDest", "COSTN02::ShiftDestToSrc",
     31, ""},
    {1, "CCanadianNTV2::OpenFile", "CCanadianNTV2::OpenFile", "CCanadianNTV2::OpenFile", "CCanadianNTV2::OpenFile", 10,
     "Couldn't open NTV2 file"},
    {9, "CNadcon::Setup", "CNadcon::Setup", "CNadcon::Setup", "CNadcon::Setup", 10,
     "Couldn't open las and/or los files"},
    {10, "CNTFToRGF93::Setup", "CNTFToRGF93::Setup", "CNTFToRGF93::Setup", "CNTFToRGF93::Setup", 10,
     "Couldn't open grid shift file"},
    {14, "CTokyoToJGD2000::Setup", "CTokyoToJGD2000::Setup", "CTokyoToJGD2000::Setup", "CTokyoToJGD2000::Setup", 10,
     "Couldn't open grid shift file"},
  };
  for (Row const & row : rows) {
    auto const shift = method(row.type);
    CGeodeticPoint const in(1.0, 2.0);
    CGeodeticPoint out(2);
    double lon = 1.0, lat = 2.0;
    struct Call
    {
      char const * location;
      std::function<void()> run;
    };
    Call const calls[] = {
      {row.srcPoint, [&] { shift->ShiftForward(in, out); }},
      {row.destPoint, [&] { shift->ShiftBack(in, out); }},
      {row.srcPair, [&] { shift->ShiftForward(lon, lat); }},
      {row.destPair, [&] { shift->ShiftBack(lon, lat); }},
    };
    for (Call const & call : calls) {
      lon = 1.0, lat = 2.0;
      if (!call.location) {
        // This form has no look at the parameters and runs on what it has.
        EXPECT_NO_THROW(call.run()) << shift->GetTypeName().toStdString();
        continue;
      }
      auto const e = Raised(call.run);
      EXPECT_EQ(e.GetErrorCode(), row.code) << call.location;
      EXPECT_EQ(e.GetLocation(), CString(call.location));
      EXPECT_EQ(e.GetDetails(), CString(row.details)) << call.location;
      // The input is never touched by a refused shift.
      EXPECT_DOUBLE_EQ(lon, 1.0);
      EXPECT_DOUBLE_EQ(lat, 2.0);
    }
  }
}

// A file found is read: four bytes are no grid (59 for NTv2, 11 for NADCON),
// and a mesh of no codes has none for the point (43).
TEST(DatumShiftMethods, FilesAreFoundByNameThenByTheDataPathKeptAtConstruction)
{
  TempFile const grid("velmora_dshift_grid.gsb");
  DB::CDataSource::SetDataPath(CString());

  CGeodeticPoint out(2);

  // Found by the name as given, then by the data path kept at construction.
  std::unique_ptr<CDatumShift> byName(CDatumShiftFactory::CreateDatumShift(CDatumShift::kCanadianNTV2));
  byName->GetParameters().SetString(CString("cantrans_file"), grid.Full());
  EXPECT_EQ(Raised([&] { byName->ShiftBack(CGeodeticPoint(1.0, 2.0), out); }).GetErrorCode(), 59);

  std::unique_ptr<CDatumShift> before(CDatumShiftFactory::CreateDatumShift(CDatumShift::kCanadianNTV2));
  DB::CDataSource::SetDataPath(grid.Folder() + CString("/"));
  std::unique_ptr<CDatumShift> after(CDatumShiftFactory::CreateDatumShift(CDatumShift::kCanadianNTV2));
  DB::CDataSource::SetDataPath(CString());
  for (auto * shift : {before.get(), after.get()})
    shift->GetParameters().SetString(CString("cantrans_file"), grid.Name());
  EXPECT_EQ(Raised([&] { before->ShiftForward(CGeodeticPoint(1.0, 2.0), out); }).GetErrorCode(), 10);
  EXPECT_EQ(Raised([&] { after->ShiftForward(CGeodeticPoint(1.0, 2.0), out); }).GetErrorCode(), 59);

  // The two-part names join folder and file with a separator.
  std::unique_ptr<CDatumShift> tokyo(CDatumShiftFactory::CreateDatumShift(CDatumShift::kTokyoToJGD2000));
  tokyo->GetParameters().SetString(CString("path"), grid.Folder());
  tokyo->GetParameters().SetString(CString("file"), grid.Name());
  EXPECT_EQ(Raised([&] { tokyo->ShiftForward(CGeodeticPoint(101.0, 2.0), out); }).GetErrorCode(), 43);

  std::unique_ptr<CDatumShift> ostn(CDatumShiftFactory::CreateDatumShift(CDatumShift::kOrdnanceSurveyGrid));
  ostn->GetParameters().SetString(CString("path"), grid.Folder());
  ostn->GetParameters().SetString(CString("file"), CString("missing.dat"));
  ExpectFailures({{"OSTN02 missing file", [&] { ostn->ShiftForward(CGeodeticPoint(1.0, 2.0), out); }, 10,
                   "COSTN02::InitializeGridFile", "Invalid grid shift file specified."}});

  // NADCON needs both files; a folder is no file.
  std::unique_ptr<CDatumShift> nadcon(CDatumShiftFactory::CreateDatumShift(CDatumShift::kNadcon));
  nadcon->GetParameters().SetString(CString("las_name"), grid.Full());
  nadcon->GetParameters().SetString(CString("los_name"), grid.Folder());
  EXPECT_EQ(Raised([&] { nadcon->ShiftForward(CGeodeticPoint(1.0, 2.0), out); }).GetErrorCode(), 10);
  nadcon->GetParameters().SetString(CString("los_name"), grid.Full());
  EXPECT_EQ(Raised([&] { nadcon->ShiftForward(CGeodeticPoint(1.0, 2.0), out); }).GetErrorCode(), 11);

}
