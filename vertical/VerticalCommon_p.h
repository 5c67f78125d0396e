#pragma once
// What the height models, vertical datums and references share inside the
// library: completeness checks of inner objects and parameter registration.
#include <velmora/datasource/SourceLookup_p.h>
#include <velmora/foundation/ParameterCollection.h>
#include <velmora/foundation/VelmoraException.h>
#include <velmora/vertical/VerticalTables_p.h>

namespace Velmora::CS::VR::detail {

inline constexpr auto const & kNoName = kNoParameterName;

// An inner object needs a "VM" code (code 25) and must be in the source (26).
inline void CheckReference(CSerializable const & object, char const * location, char const * needsIdentifier,
                           char const * notFound, DB::CDataSource const * source)
{
  using EX::CVelmoraException;
  if (!object.GetIdentifiers().Exists("VM"))
    throw CVelmoraException(CVelmoraException::kReferenceNeedsIdentifier, location, needsIdentifier);
  if (!DB::detail::SourceHolds(source, object))
    throw CVelmoraException(CVelmoraException::kReferenceNotFound, location, notFound);
}

// The row's parameters, in its order, as unset texts.
inline void RegisterParameters(CParameterCollection & parameters, Table::Row const * row)
{
  if (!row)
    return;
  for (char const * name : row->parameters)
    parameters.AddString(CString(name), false);
}

// A model's grid file: "path" and "file" joined by one separator.
inline CString ModelFileName(CParameterCollection const & parameters)
{
  CString path = parameters.GetString(Table::kPath);
  CString const file = parameters.GetString(Table::kFile);
  if (!path.isEmpty() && !path.endsWith(QLatin1Char('/')) && !path.endsWith(QLatin1Char('\\')))
    path += '/';
  return CString(path + file);
}

} // namespace Velmora::CS::VR::detail
