#pragma once
// Oblique projections: Hotine, Krovak, Laborde, the Swiss and Hungarian systems.
// Classes whose mathematics is not yet carried convert nothing: ToPlane and
// FromPlane return false.
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

class VELMORA_API CBipolarObliqueConformalConic final : public TNotConverting<CBipolarObliqueConformalConic, CProjection::kBipolarObliqueConformalConic>
{
public:
  explicit CBipolarObliqueConformalConic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEgysegesOrszagosVetulet final : public TNotConverting<CEgysegesOrszagosVetulet, CProjection::kEgysegesOrszagosVetulet>
{
public:
  explicit CEgysegesOrszagosVetulet(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CHotineObliqueMercator final : public TNotConverting<CHotineObliqueMercator, CProjection::kHotineObliqueMercator>
{
public:
  explicit CHotineObliqueMercator(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CHotineObliqueMercator_1 final : public TNotConverting<CHotineObliqueMercator_1, CProjection::kHotineObliqueMercator_1>
{
public:
  explicit CHotineObliqueMercator_1(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CHotineObliqueMercator_2 final : public TNotConverting<CHotineObliqueMercator_2, CProjection::kHotineObliqueMercator_2>
{
public:
  explicit CHotineObliqueMercator_2(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CKrovak final : public TNotConverting<CKrovak, CProjection::kKrovak>
{
public:
  explicit CKrovak(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CLaborde final : public TNotConverting<CLaborde, CProjection::kLaborde>
{
public:
  // The skew comes preset: it is set from the start, at its default value.
  explicit CLaborde(CHorizontalDatum * datum = nullptr) : TNotConverting(datum)
  {
    GetParameters().SetItemSetState(CString("azimuth_skew"), true);
  }
};

class VELMORA_API CObliqueMercatorAzimuth final : public TNotConverting<CObliqueMercatorAzimuth, CProjection::kObliqueMercatorAzimuth>
{
public:
  explicit CObliqueMercatorAzimuth(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CObliqueMercatorTwoPoints final : public TNotConverting<CObliqueMercatorTwoPoints, CProjection::kObliqueMercatorTwoPoints>
{
public:
  explicit CObliqueMercatorTwoPoints(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CSwissObliqueMercator final : public TNotConverting<CSwissObliqueMercator, CProjection::kSwissObliqueMercator>
{
public:
  explicit CSwissObliqueMercator(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
