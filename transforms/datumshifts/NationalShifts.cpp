#include <velmora/transforms/datumshifts/NationalShifts.h>

#include <velmora/foundation/VelmoraException.h>
#include <velmora/transforms/datumshifts/GridFile_p.h>

namespace Velmora::CT::DS {

using EX::CVelmoraException;
using detail::GridFileOpens;
using detail::NotCarried;
using detail::RequireParameters;

namespace {
// The British and the Japanese grids name a folder and a file in it.
CString FolderAndFile(CParameterCollection const & parameters)
{
  return parameters.GetString(CString("path")) + CString("/") + parameters.GetString(CString("file"));
}
} // namespace

// OSTN02

COSTN02::COSTN02() : m_dataPath(detail::CurrentDataPath()) {}

void COSTN02::InitializeGridFile() const
{
  if (!GridFileOpens(FolderAndFile(GetParameters()), m_dataPath))
    throw CVelmoraException(CVelmoraException::kFileNotFound, "COSTN02::InitializeGridFile",
                            "Invalid grid shift file specified.");
  NotCarried("COSTN02::InitializeGridFile", GetTypeName());
}

bool COSTN02::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  RequireParameters(GetParameters(), "COSTN02::ShiftSrcToDest");
  InitializeGridFile();
  return false;
}

bool COSTN02::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  RequireParameters(GetParameters(), "COSTN02::ShiftDestToSrc");
  InitializeGridFile();
  return false;
}

bool COSTN02::ShiftSrcToDest(double &, double &) const
{
  RequireParameters(GetParameters(), "COSTN02::ShiftSrcToDest");
  InitializeGridFile();
  return false;
}

bool COSTN02::ShiftDestToSrc(double &, double &) const
{
  RequireParameters(GetParameters(), "COSTN02::ShiftDestToSrc");
  InitializeGridFile();
  return false;
}

// NTF to RGF93: the grid replaces Molodensky's three constants, so every form
// arrives here through the base's Shift.

CNTFToRGF93::CNTFToRGF93() : m_dataPath(detail::CurrentDataPath()) {}

void CNTFToRGF93::Setup() const
{
  if (!GridFileOpens(GetParameters().GetString(CString("file")), m_dataPath))
    throw CVelmoraException(CVelmoraException::kFileNotFound, "CNTFToRGF93::Setup", "Couldn't open grid shift file");
  NotCarried("CNTFToRGF93::Setup", GetTypeName());
}

void CNTFToRGF93::Shift(double &, double &, double *, bool) const { Setup(); }

// Tokyo to JGD2000

CTokyoToJGD2000::CTokyoToJGD2000() : m_dataPath(detail::CurrentDataPath()) {}

void CTokyoToJGD2000::Setup() const
{
  if (!GridFileOpens(FolderAndFile(GetParameters()), m_dataPath))
    throw CVelmoraException(CVelmoraException::kFileNotFound, "CTokyoToJGD2000::Setup",
                            "Couldn't open grid shift file");
  NotCarried("CTokyoToJGD2000::Setup", GetTypeName());
}

bool CTokyoToJGD2000::ShiftSrcToDest(double &, double &) const
{
  Setup();
  return false;
}

bool CTokyoToJGD2000::ShiftDestToSrc(double &, double &) const
{
  Setup();
  return false;
}

bool CTokyoToJGD2000::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  Setup();
  return false;
}

bool CTokyoToJGD2000::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  Setup();
  return false;
}

// ED50 to ED87 in the North Sea: fixed constants, nothing to check.

bool CED50ToED87NorthSea::ShiftSrcToDest(double &, double &) const
{
  NotCarried("CED50ToED87NorthSea::ShiftSrcToDest", GetTypeName());
}

bool CED50ToED87NorthSea::ShiftDestToSrc(double &, double &) const
{
  NotCarried("CED50ToED87NorthSea::ShiftDestToSrc", GetTypeName());
}

bool CED50ToED87NorthSea::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  NotCarried("CED50ToED87NorthSea::ShiftSrcToDest", GetTypeName());
}

bool CED50ToED87NorthSea::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  NotCarried("CED50ToED87NorthSea::ShiftDestToSrc", GetTypeName());
}

// Multiple regression equations: the datum must be named before its
// coefficients can be chosen.

bool CMRE::ShiftSrcToDest(double &, double &) const
{
  RequireParameters(GetParameters(), "CMRE::ShiftSrcToDest");
  NotCarried("CMRE::ShiftSrcToDest", GetTypeName());
}

bool CMRE::ShiftDestToSrc(double &, double &) const
{
  RequireParameters(GetParameters(), "CMRE::ShiftDestToSrc");
  NotCarried("CMRE::ShiftDestToSrc", GetTypeName());
}

bool CMRE::ShiftSrcToDest(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  RequireParameters(GetParameters(), "CMRE::ShiftSrcToDest");
  NotCarried("CMRE::ShiftSrcToDest", GetTypeName());
}

bool CMRE::ShiftDestToSrc(ML::CGeodeticPoint const &, ML::CGeodeticPoint &) const
{
  RequireParameters(GetParameters(), "CMRE::ShiftDestToSrc");
  NotCarried("CMRE::ShiftDestToSrc", GetTypeName());
}

} // namespace Velmora::CT::DS
