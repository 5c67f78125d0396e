#pragma once
// Azimuthal and stereographic projections.
// Classes whose mathematics is not yet carried convert nothing: ToPlane and
// FromPlane return false.
#include <velmora/projections/Projection.h>
#include <velmora/projections/MeridionalUtil.h>

namespace Velmora::CS::PJ {

class VELMORA_API CAzimuthalEqualArea final : public TNotConverting<CAzimuthalEqualArea, CProjection::kAzimuthalEqualArea>
{
public:
  explicit CAzimuthalEqualArea(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CAzimuthalEquidistant final : public TNotConverting<CAzimuthalEquidistant, CProjection::kAzimuthalEquidistant, CMeridionalUtil>
{
public:
  explicit CAzimuthalEquidistant(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CDoubleStereographic final : public TNotConverting<CDoubleStereographic, CProjection::kDoubleStereographic>
{
public:
  explicit CDoubleStereographic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEuropeanStereographic final : public TNotConverting<CEuropeanStereographic, CProjection::kEuropeanStereographic>
{
public:
  explicit CEuropeanStereographic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CGnomic final : public TNotConverting<CGnomic, CProjection::kGnomic>
{
public:
  explicit CGnomic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API COrthographic final : public TNotConverting<COrthographic, CProjection::kOrthographic>
{
public:
  explicit COrthographic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CPolarAzimuthalEqualArea final : public TNotConverting<CPolarAzimuthalEqualArea, CProjection::kPolarAzimuthalEqualArea>
{
public:
  explicit CPolarAzimuthalEqualArea(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CPolarEquidistant final : public TNotConverting<CPolarEquidistant, CProjection::kPolarEquidistant, CMeridionalUtil>
{
public:
  explicit CPolarEquidistant(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CPolarStereographic final : public TNotConverting<CPolarStereographic, CProjection::kPolarStereographic>
{
public:
  explicit CPolarStereographic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CStereographic final : public TNotConverting<CStereographic, CProjection::kStereographic>
{
public:
  explicit CStereographic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CStereographic70 final : public TNotConverting<CStereographic70, CProjection::kStereographic70>
{
public:
  explicit CStereographic70(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CTiltedPerspective final : public TNotConverting<CTiltedPerspective, CProjection::kTiltedPerspective>
{
public:
  explicit CTiltedPerspective(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CVerticalPerspective final : public TNotConverting<CVerticalPerspective, CProjection::kVerticalPerspective>
{
public:
  explicit CVerticalPerspective(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
