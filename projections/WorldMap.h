#pragma once
// World map projections.
// Classes whose mathematics is not yet carried convert nothing: ToPlane and
// FromPlane return false.
#include <velmora/projections/Projection.h>
#include <velmora/projections/MeridionalUtil.h>

namespace Velmora::CS::PJ {

class VELMORA_API CAitoff final : public TNotConverting<CAitoff, CProjection::kAitoff>
{
public:
  explicit CAitoff(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CCrasterParabolic final : public TNotConverting<CCrasterParabolic, CProjection::kCrasterParabolic>
{
public:
  explicit CCrasterParabolic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEckertI final : public TNotConverting<CEckertI, CProjection::kEckertI>
{
public:
  explicit CEckertI(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEckertII final : public TNotConverting<CEckertII, CProjection::kEckertII>
{
public:
  explicit CEckertII(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEckertIII final : public TNotConverting<CEckertIII, CProjection::kEckertIII>
{
public:
  explicit CEckertIII(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEckertIV final : public TNotConverting<CEckertIV, CProjection::kEckertIV>
{
public:
  explicit CEckertIV(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEckertV final : public TNotConverting<CEckertV, CProjection::kEckertV>
{
public:
  explicit CEckertV(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CEckertVI final : public TNotConverting<CEckertVI, CProjection::kEckertVI>
{
public:
  explicit CEckertVI(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CGoodeHomolosine final : public TNotConverting<CGoodeHomolosine, CProjection::kGoodeHomolosine>
{
public:
  explicit CGoodeHomolosine(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CHammerAitoff final : public TNotConverting<CHammerAitoff, CProjection::kHammerAitoff>
{
public:
  explicit CHammerAitoff(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CLoximuthal final : public TNotConverting<CLoximuthal, CProjection::kLoximuthal>
{
public:
  explicit CLoximuthal(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CMcBrydeThomasFlatPolarQuartic final : public TNotConverting<CMcBrydeThomasFlatPolarQuartic, CProjection::kMcBrydeThomasFlatPolarQuartic>
{
public:
  explicit CMcBrydeThomasFlatPolarQuartic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CMollweide final : public TNotConverting<CMollweide, CProjection::kMollweide>
{
public:
  explicit CMollweide(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CQuarticAuthalic final : public TNotConverting<CQuarticAuthalic, CProjection::kQuarticAuthalic>
{
public:
  explicit CQuarticAuthalic(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CRobinson final : public TNotConverting<CRobinson, CProjection::kRobinson>
{
public:
  explicit CRobinson(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CSinusoidal final : public TNotConverting<CSinusoidal, CProjection::kSinusoidal, CMeridionalUtil>
{
public:
  explicit CSinusoidal(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CTimes final : public TNotConverting<CTimes, CProjection::kTimes>
{
public:
  explicit CTimes(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CVanDerGrinten final : public TNotConverting<CVanDerGrinten, CProjection::kVanDerGrinten>
{
public:
  explicit CVanDerGrinten(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CVanDerGrintenIV final : public TNotConverting<CVanDerGrintenIV, CProjection::kVanDerGrintenIV>
{
public:
  explicit CVanDerGrintenIV(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CWinkelI final : public TNotConverting<CWinkelI, CProjection::kWinkelI>
{
public:
  explicit CWinkelI(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CWinkelII final : public TNotConverting<CWinkelII, CProjection::kWinkelII>
{
public:
  explicit CWinkelII(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CWinkelTripel final : public TNotConverting<CWinkelTripel, CProjection::kWinkelTripel>
{
public:
  explicit CWinkelTripel(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
