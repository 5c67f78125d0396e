#include <velmora/datasource/SourceLookup_p.h>

namespace Velmora::DB::detail {

// The data source keeps no objects yet: only its process-wide settings exist,
// so no reference can be found missing. The object store answers this.
bool SourceHolds(CDataSource const *, CSerializable const &) { return true; }

} // namespace Velmora::DB::detail
