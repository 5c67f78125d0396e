#pragma once
// How an object's completeness check asks whether a data source holds an
// object it refers to.
#include <velmora/foundation/CSerializable.h>

namespace Velmora::DB::detail {

// True when `source` is null (nothing to check against) or holds an object
// with the same "VM" code and kind as `object`.
VELMORA_API bool SourceHolds(CDataSource const * source, CSerializable const & object);

} // namespace Velmora::DB::detail
