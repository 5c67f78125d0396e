#pragma once
// The methods that carry a country's own data: the British and the Japanese
// grids, the French NTF grid, the North Sea polynomial and the multiple
// regression equations. They declare their parameters and find their files
// as the grid methods do (code 10 when missing); their mathematics is not
// carried yet, so a shift that gets past those checks raises code 50.
#include <velmora/transforms/datumshifts/GridShifts.h>

namespace Velmora::CT::DS {

class VELMORA_API COSTN02 final : public TDatumShift<COSTN02, CDatumShift::kOrdnanceSurveyGrid>
{
public:
  COSTN02();

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  void InitializeGridFile() const;
  std::string m_dataPath;
};

class VELMORA_API CNTFToRGF93 final : public TDatumShift<CNTFToRGF93, CDatumShift::kNTFToRGF93, CMolodensky>
{
public:
  CNTFToRGF93();
  void Shift(double & lon, double & lat, double * height, bool forward) const override;

private:
  void Setup() const;
  std::string m_dataPath;
};

class VELMORA_API CTokyoToJGD2000 final : public TDatumShift<CTokyoToJGD2000, CDatumShift::kTokyoToJGD2000>
{
public:
  CTokyoToJGD2000();

protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;

private:
  void Setup() const;
  std::string m_dataPath;
};

class VELMORA_API CED50ToED87NorthSea final
  : public TDatumShift<CED50ToED87NorthSea, CDatumShift::kED50ToED87NorthSea, CBursaWolfe>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

class VELMORA_API CMRE final : public TDatumShift<CMRE, CDatumShift::kMRE>
{
protected:
  bool ShiftSrcToDest(double & lon, double & lat) const override;
  bool ShiftSrcToDest(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
  bool ShiftDestToSrc(double & lon, double & lat) const override;
  bool ShiftDestToSrc(ML::CGeodeticPoint const & in, ML::CGeodeticPoint & out) const override;
};

} // namespace Velmora::CT::DS
