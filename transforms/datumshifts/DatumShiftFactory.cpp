#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/datumshifts/DatumShiftTable_p.h>
#include <velmora/transforms/datumshifts/NationalShifts.h>

#include <array>
#include <cstddef>
#include <memory>

namespace Velmora::CT::DS {

using EX::CVelmoraException;

namespace {
template <class T>
CDatumShift * Make()
{
  static_assert(T::kType >= 0 && T::kType < CDatumShift::kTypeCount);
  return new T();
}

using Maker = CDatumShift * (*)();

// Indexed by type: each class's own type places it, so an entry out of order fails to build.
struct Entry
{
  CDatumShift::Type type;
  Maker make;
};
template <class... T>
constexpr auto Entries()
{
  return std::array<Entry, sizeof...(T)>{Entry{T::kType, &Make<T>}...};
}

constexpr auto kMakers =
  Entries<CBursaWolfe, CCanadianNTV2, CED50ToED87NorthSea, CFourParameter, CGeocentricTranslation, CLongitudeRotation,
          CMolodensky, CMolodenskyBadekas, CMRE, CNadcon, CNTFToRGF93, COSTN02, CSevenParameter, CSixParameter,
          CTokyoToJGD2000>();

constexpr bool InTypeOrder()
{
  for (std::size_t i = 0; i < kMakers.size(); ++i)
    if (kMakers[i].type != static_cast<int>(i))
      return false;
  return kMakers.size() == CDatumShift::kTypeCount;
}
static_assert(InTypeOrder(), "the factory lists every type once, in type order");

bool InRange(int type) { return static_cast<unsigned>(type) < static_cast<unsigned>(CDatumShift::kTypeCount); }
} // namespace

CDatumShift * CDatumShiftFactory::CreateDatumShift(CDatumShift::Type type)
{
  // Compared unsigned, so that -1 is out of range too.
  if (!InRange(type))
    throw CVelmoraException(CVelmoraException::kClassNotImplemented, "CDatumShiftFactory::CreateDatumShift");
  return kMakers[static_cast<std::size_t>(type)].make();
}

CDatumShift * CDatumShiftFactory::CreateDatumShift(CDatumShiftDataDB const & body)
{
  int type = body.GetShiftType();
  if (!InRange(type))
    type = CDatumShiftDataDB::GetDatumShiftType(body.GetClassType());
  std::unique_ptr<CDatumShift> shift(CreateDatumShift(type));
  shift->AttachBody(body);
  return shift.release();
}

std::vector<CString> CDatumShiftFactory::GetParameterNames(CDatumShift::Type type)
{
  std::vector<CString> names;
  if (Table::Row const * row = Table::RowOf(type))
    for (Table::Parameter const & parameter : row->parameters)
      names.emplace_back(parameter.name);
  return names;
}

} // namespace Velmora::CT::DS
