#pragma once
#include <velmora/foundation/ObjectTypes.h>

namespace Velmora {

// Root of every body: it can say whether it is owned by one handle or shared
// from a data source.
class VELMORA_API CDataObject
{
public:
  virtual EDataObjectType GetDataObjectType() const = 0;
  virtual ~CDataObject();
};

} // namespace Velmora
