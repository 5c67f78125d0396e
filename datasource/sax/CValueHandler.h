#pragma once
// The entry by which the XML reader hands element and attribute values to an
// object, keyed by element name.
#include <velmora/foundation/TWLVariant.h>

namespace Velmora::DB::SAX {

class VELMORA_API CValueHandler
{
public:
  virtual ~CValueHandler();
  virtual void SetValue(CString const & key, TWLVariant & value) = 0;
};

} // namespace Velmora::DB::SAX
