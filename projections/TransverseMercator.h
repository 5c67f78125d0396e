#pragma once
// The transverse Mercator family and UTM.
#include <velmora/projections/Projection.h>

namespace Velmora::CS::PJ {

class VELMORA_API CTransverseMercator : public TNotConverting<CTransverseMercator, CProjection::kTransverseMercator>
{
public:
  explicit CTransverseMercator(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}

protected:
  CTransverseMercator(CString const & typeName, CHorizontalDatum * datum) : TNotConverting(typeName, datum) {}
};

class VELMORA_API CTransverseMercatorSouthOriented final
  : public TNotConverting<CTransverseMercatorSouthOriented, CProjection::kTransverseMercatorSouthOriented,
                          CTransverseMercator>
{
public:
  explicit CTransverseMercatorSouthOriented(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CTransverseMercatorExtended final
  : public TNotConverting<CTransverseMercatorExtended, CProjection::kTransverseMercatorExtended>
{
public:
  explicit CTransverseMercatorExtended(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CTransverseMercatorSnyder final
  : public TNotConverting<CTransverseMercatorSnyder, CProjection::kTransverseMercatorSnyder>
{
public:
  explicit CTransverseMercatorSnyder(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

class VELMORA_API CUniversalTransverseMercator final
  : public TNotConverting<CUniversalTransverseMercator, CProjection::kUniversalTransverseMercator>
{
public:
  explicit CUniversalTransverseMercator(CHorizontalDatum * datum = nullptr) : TNotConverting(datum) {}
};

} // namespace Velmora::CS::PJ
