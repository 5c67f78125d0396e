#pragma once
// Grids of the US National Geodetic Survey's formats, one or several files a
// model, of which one at a time is open and read window by window:
// - titled: a record of a 56-character title, an 8-character identifier
//   ("GEOGRD..." or "vertc2.0"), three counts and five floats, then rows of
//   columns + 1 floats from the south, each behind a lead word (GEOID96's
//   .geo files, VERTCON's .94 files);
// - binary: a 44-byte header of south, west, row and column spacing (doubles)
//   and row, column and kind counts (32 bits), then rows of floats from the
//   south (GEOID99, GEOID03, AUSGeoid98).
// A model's files are the ones of a folder with its extension, or the ones a
// .par list names.
#include <velmora/foundation/CString.h>

#include <cstdio>
#include <memory>
#include <vector>

namespace Velmora::CS::VR {

// One grid file: its name, header and, while it is the open one, its file.
struct VELMORA_API CGridFile
{
  CString name;
  std::FILE * file = nullptr;
  char title[57] = {};
  char identifier[9] = {};
  long columns = 0, rows = 0, third = 0;
  // Degrees. Titled files keep them as 32-bit floats, binary ones as doubles:
  // kept as doubles for both, so that neither loses digits.
  double west = 0, columnSpacing = 0, south = 0, rowSpacing = 0, angle = 0;
  double east = 0, north = 0; // of the last column and row

  // Whether the file holds the point; `lon` becomes the longitude as the file
  // counts it (from -180 or from 0 to 360) when it does.
  bool Contains(double lat, double & lon) const;
};

class VELMORA_API CNGSGriddedData
{
public:
  enum Format { kTitled, kBinary };

  // The files are set up again by a copy when it needs them.
  explicit CNGSGriddedData(Format format);
  CNGSGriddedData(CNGSGriddedData const & other);
  CNGSGriddedData & operator=(CNGSGriddedData const & other);
  virtual ~CNGSGriddedData();

  Format GetFormat() const { return m_format; }
  std::vector<std::unique_ptr<CGridFile>> const & GetGridFiles() const { return m_files; }
  // Closes and forgets every file.
  void SmokeGridFileCollection() const;
  // Adds the files of a folder whose names end in the extension, in name order.
  void GetFileListFromDirectory(CString path, CString const & extension) const;
  // Adds the files a .par list names: the last word of each line of more than
  // one character, but comment lines ("*..."), in the list's folder, with the extension.
  void ReadParFile(CString const & name, CString const & extension) const;

  // a + t (b - a) + ((c - b) - (b - a)) t (t - 1) / 2: the parabola through
  // (0, a), (1, b), (2, c).
  static double QuadraticInterpolation(double t, double a, double b, double c);
  // Corners in the order south-west, south-east, north-west, north-east.
  static double BilinearInterpolation(float t, float u, float const * corners);

protected:
  // The list from the folder or .par list `path` names (as given, else after
  // the data path), with every header read; code 10 at `location` with
  // `details` when no file can be had. Done once until the files are smoked.
  void SetupFiles(CString const & path, CString const & extension, char const * location, char const * details) const;
  // The file holding the point opened (the open one kept if it holds it);
  // code 10 at `location` where no file does.
  CGridFile & FileFor(double lat, double lon, char const * location) const;
  // `count` floats at `offset` of the open file; false when they are not all there.
  bool ReadFloats(long offset, int count, float * values) const;
  // Byte offset of node (row, column), both from the south-west, in a file of this format.
  long NodeOffset(CGridFile const & grid, long row, long column) const;
  // The quadratic 3 by 3 window at the point, which `nearest` centres on the
  // nearest node (GEOID96) instead of stepping back one from the point's cell.
  double Quadratic(double lat, double lon, bool nearest, char const * location) const;
  bool IsSetUp() const { return m_ready; }

private:
  void ReadHeader(CGridFile & grid) const;
  void Close() const;

  Format m_format;
  CString m_dataPath;
  mutable std::vector<std::unique_ptr<CGridFile>> m_files;
  mutable CGridFile * m_open = nullptr;
  mutable bool m_ready = false;
};

} // namespace Velmora::CS::VR
