#pragma once
// The table of datum shift methods: class type string and parameters, in the
// order each method declares them.
#include <velmora/foundation/CString.h>

#include <initializer_list>

namespace Velmora::CT::DS::Table {

enum class Kind { kDouble, kString, kAngular, kLinear };

struct Parameter
{
  char const * name;
  Kind kind;
};

struct Row
{
  char const * name;
  std::initializer_list<Parameter> parameters;
};

// Indexed by type; null for a value out of range.
Row const * RowOf(int type);
// The type with exactly this class type string, or -1.
int TypeOf(CString const & name);
int TypeCount();

} // namespace Velmora::CT::DS::Table
