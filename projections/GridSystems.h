#pragma once
// Grid systems: national grids, MGRS, and one-off grids.
// Classes whose mathematics is not yet carried convert nothing: ToPlane and
// FromPlane return false.
#include <velmora/projections/TransverseMercator.h>

namespace Velmora::CS::PJ {

class VELMORA_API CDanishSystem34 final : public TNotConverting<CDanishSystem34, CProjection::kDanishSystem34, CTransverseMercator>
{
public:
  explicit CDanishSystem34(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CDanishSystem34_99 final : public TNotConverting<CDanishSystem34_99, CProjection::kDanishSystem34_99>
{
public:
  explicit CDanishSystem34_99(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CFuller final : public TNotConverting<CFuller, CProjection::kFuller>
{
public:
  explicit CFuller(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CMilitaryGridReferenceSystem final : public TNotConverting<CMilitaryGridReferenceSystem, CProjection::kMilitaryGridReferenceSystem>
{
public:
  explicit CMilitaryGridReferenceSystem(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CNewZealandMapGrid final : public TNotConverting<CNewZealandMapGrid, CProjection::kNewZealandMapGrid>
{
public:
  explicit CNewZealandMapGrid(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CSpaceObliqueMercator final : public TNotConverting<CSpaceObliqueMercator, CProjection::kSpaceObliqueMercator>
{
public:
  explicit CSpaceObliqueMercator(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CTwoPointFit final : public TNotConverting<CTwoPointFit, CProjection::kTwoPointFit>
{
public:
  explicit CTwoPointFit(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CVandH final : public TNotConverting<CVandH, CProjection::kVandH>
{
public:
  explicit CVandH(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
