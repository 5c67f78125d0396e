#pragma once
// The methods that take their shifts from NTv2 and NADCON grid files. The
// file is found on the first shift, by its name and then by the data path
// the object copied when it was built; one that can't be opened raises
// code 10. The grid readers themselves are not carried yet: with the file
// at hand the shift raises code 50.
#include <velmora/transforms/datumshifts/ParametricShifts.h>

#include <string>

namespace Velmora::CT::DS {

class VELMORA_API CCanadianNTV2 final : public TDatumShift<CCanadianNTV2, CDatumShift::kCanadianNTV2>
{
public:
  CCanadianNTV2();
  // Loads the file unless it is loaded.
  void Init() const;
  long NumberOfSubFiles() const { return 0; }

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  std::string m_dataPath;
};

class VELMORA_API CNadcon final : public TDatumShift<CNadcon, CDatumShift::kNadcon>
{
public:
  CNadcon();
  // Loads the latitude and the longitude file unless they are loaded.
  void Setup() const;

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  std::string m_dataPath;
};

} // namespace Velmora::CT::DS
