#pragma once
// Cylindrical and other standard projections.
// Classes whose mathematics is not yet carried convert nothing: ToPlane and
// FromPlane return false.
#include <velmora/projections/Projection.h>
#include <velmora/projections/MeridionalUtil.h>

namespace Velmora::CS::PJ {

class VELMORA_API CEqualAreaCylindrical : public TNotConverting<CEqualAreaCylindrical, CProjection::kEqualAreaCylindrical>
{
public:
  explicit CEqualAreaCylindrical(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}

protected:
  CEqualAreaCylindrical(CString const & typeName, CHorizontalDatum * datum) : TNotConverting(typeName, datum) {}
};

class VELMORA_API CBehrmann final : public TNotConverting<CBehrmann, CProjection::kBehrmann, CEqualAreaCylindrical>
{
public:
  explicit CBehrmann(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CBonne final : public TNotConverting<CBonne, CProjection::kBonne, CMeridionalUtil>
{
public:
  explicit CBonne(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CCassini final : public TNotConverting<CCassini, CProjection::kCassini, CMeridionalUtil>
{
public:
  explicit CCassini(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEquidistantCylindrical final : public TNotConverting<CEquidistantCylindrical, CProjection::kEquidistantCylindrical>
{
public:
  explicit CEquidistantCylindrical(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CGallStereographic final : public TNotConverting<CGallStereographic, CProjection::kGallStereographic>
{
public:
  explicit CGallStereographic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CIMWPolyconic final : public TNotConverting<CIMWPolyconic, CProjection::kIMWPolyconic, CMeridionalUtil>
{
public:
  explicit CIMWPolyconic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CMercator final : public TNotConverting<CMercator, CProjection::kMercator>
{
public:
  explicit CMercator(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CMillerCylindrical final : public TNotConverting<CMillerCylindrical, CProjection::kMillerCylindrical>
{
public:
  explicit CMillerCylindrical(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CPerspectiveConic final : public TNotConverting<CPerspectiveConic, CProjection::kPerspectiveConic>
{
public:
  explicit CPerspectiveConic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CPolyconic final : public TNotConverting<CPolyconic, CProjection::kPolyconic, CMeridionalUtil>
{
public:
  explicit CPolyconic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
