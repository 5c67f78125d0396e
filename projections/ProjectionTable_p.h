#pragma once
// The table of projection types: name and parameters, in the order they are
// registered, shown and written.
#include <velmora/foundation/CString.h>

#include <initializer_list>

namespace Velmora::CS::PJ::Table {

enum class Kind { kDouble, kLong, kString, kAngular, kLinear, kUnknown };

struct Row
{
  char const * name;
  std::initializer_list<char const *> parameters;
};

// Indexed by type; null for a value out of range.
Row const * RowOf(int type);
// The type with exactly this name, or -1.
int TypeOf(CString const & name);
Kind KindOf(char const * parameter);

} // namespace Velmora::CS::PJ::Table
