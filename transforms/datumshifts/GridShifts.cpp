#include <velmora/transforms/datumshifts/GridShifts.h>

#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/datumshifts/GridFile_p.h>

namespace Velmora::CT::DS {

using EX::CVelmoraException;
using detail::GridFileOpens;
using detail::NotCarried;

// NTv2: the file is sought at the first shift in either direction; a missing
// one is reported there, not when the object is built.

CCanadianNTV2::CCanadianNTV2() : m_dataPath(detail::CurrentDataPath()) {}

void CCanadianNTV2::Init() const
{
  if (!GridFileOpens(GetParameters().GetString(CString("cantrans_file")), m_dataPath))
    throw CVelmoraException(CVelmoraException::kFileNotFound, "CCanadianNTV2::OpenFile", "Couldn't open NTV2 file");
  NotCarried("CCanadianNTV2::Init", GetTypeName());
}

bool CCanadianNTV2::ShiftSrcToDest(double &, double &) const
{
  Init();
  return false;
}

bool CCanadianNTV2::ShiftDestToSrc(double &, double &) const
{
  Init();
  return false;
}

bool CCanadianNTV2::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  Init();
  return false;
}

bool CCanadianNTV2::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  Init();
  return false;
}

// NADCON: both files must open; no other look at the parameters.

CNadcon::CNadcon() : m_dataPath(detail::CurrentDataPath()) {}

void CNadcon::Setup() const
{
  CParameterCollection const & parameters = GetParameters();
  if (!GridFileOpens(parameters.GetString(CString("las_name")), m_dataPath) ||
      !GridFileOpens(parameters.GetString(CString("los_name")), m_dataPath))
    throw CVelmoraException(CVelmoraException::kFileNotFound, "CNadcon::Setup", "Couldn't open las and/or los files");
  NotCarried("CNadcon::Setup", GetTypeName());
}

bool CNadcon::ShiftSrcToDest(double &, double &) const
{
  Setup();
  return false;
}

bool CNadcon::ShiftDestToSrc(double &, double &) const
{
  Setup();
  return false;
}

bool CNadcon::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  Setup();
  return false;
}

bool CNadcon::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  Setup();
  return false;
}

} // namespace Velmora::CT::DS
