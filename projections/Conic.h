#pragma once
// Conic projections: Albers, Lambert and the 1927 state plane zones.
// Classes whose mathematics is not yet carried convert nothing: ToPlane and
// FromPlane return false.
#include <velmora/projections/Projection.h>
#include <velmora/projections/MeridionalUtil.h>

namespace Velmora::CS::PJ {

// The 1927 state plane zones: a zone is projected by its table of constants.
class VELMORA_API CStatePlane27 : public CProjection
{
public:
  static double USFT2MTR(double feet) { return feet * kMetresPerUSFoot; }
  static double MTR2USFT(double metres) { return metres / kMetresPerUSFoot; }

protected:
  static constexpr double kMetresPerUSFoot = 0.3048006096012;
  using CProjection::CProjection;
};

class VELMORA_API CLambertConformalConic : public TNotConverting<CLambertConformalConic, CProjection::kLambertConformalConic>
{
public:
  explicit CLambertConformalConic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}

protected:
  CLambertConformalConic(CString const & typeName, CHorizontalDatum * datum) : TNotConverting(typeName, datum) {}
};

class VELMORA_API CAlaska27 final : public TNotConverting<CAlaska27, CProjection::kAlaska27, CStatePlane27>
{
public:
  explicit CAlaska27(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CAlbersEqualArea final : public TNotConverting<CAlbersEqualArea, CProjection::kAlbersEqualArea>
{
public:
  explicit CAlbersEqualArea(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CBelgium72 final : public TNotConverting<CBelgium72, CProjection::kBelgium72, CLambertConformalConic>
{
public:
  explicit CBelgium72(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEquidistantConic final : public TNotConverting<CEquidistantConic, CProjection::kEquidistantConic, CMeridionalUtil>
{
public:
  explicit CEquidistantConic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CGuam27 final : public TNotConverting<CGuam27, CProjection::kGuam27, CStatePlane27>
{
public:
  explicit CGuam27(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CLambert27 final : public TNotConverting<CLambert27, CProjection::kLambert27, CStatePlane27>
{
public:
  explicit CLambert27(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CLambertConformalConicExtended final : public TNotConverting<CLambertConformalConicExtended, CProjection::kLambertConformalConicExtended, CLambertConformalConic>
{
public:
  explicit CLambertConformalConicExtended(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CLambertTangent final : public TNotConverting<CLambertTangent, CProjection::kLambertTangent>
{
public:
  explicit CLambertTangent(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CMercator27 final : public TNotConverting<CMercator27, CProjection::kMercator27, CStatePlane27>
{
public:
  explicit CMercator27(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
