#include <velmora/foundation/CSerializable.h>

namespace Velmora {

CSerializable::~CSerializable() = default;

bool CSerializable::HasIdentifierIn(CSerializable const & other) const
{
  return GetData().HasIdentifierIn(other.GetData());
}

long CSerializable::GetGroupID() const { return GetData().GetGroupID(); }

EObjectType CSerializable::GetObjectType() const { return GetData().GetObjectType(); }

} // namespace Velmora
