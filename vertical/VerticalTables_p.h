#pragma once
// The two tables of the vertical subsystem, one row per type: the name as
// stored and shown, the class (for failure locations), the parameters in
// registration order (all texts), how a grid that can't be opened is
// reported, and for simple rasters their layout. Also the texts the
// subsystem reports with.
#include <velmora/vertical/SimpleGriddedData.h>

#include <initializer_list>

namespace Velmora::CS::VR::Table {

struct Row
{
  char const * name;
  char const * className;
  std::initializer_list<char const *> parameters;
  char const * openLocation; // code 10 for a grid that can't be opened
  char const * openDetails;
  CSimpleGriddedData::Layout const * raster; // null unless a simple raster
};

// Indexed by type; null for a value out of range.
Row const * HeightModelRow(int type);
Row const * VerticalDatumRow(int type);
// The type with exactly this name, or -1.
int HeightModelTypeOf(CString const & name);
int VerticalDatumTypeOf(CString const & name);

inline constexpr char kOutsideEnvelope[] = "Point is not within the specified envelope.";
inline constexpr char kCannotOpenFile[] = "Cannot open specified grid data file.";
inline constexpr char kCannotOpenFileList[] = "Cannot open specified grid data file(s).";
inline constexpr char kNoGridData[] = "No grid data exists for that location.";
inline constexpr char kGridReadFailure[] = "Grid interpolation failure.";
inline constexpr char kGridSizeMismatch[] = "Grid file data doesn't match specified size.";

// Parameter names of grid files.
inline constexpr char kPath[] = "path";
inline constexpr char kFile[] = "file";
inline constexpr char kExtension[] = "extension";

} // namespace Velmora::CS::VR::Table
