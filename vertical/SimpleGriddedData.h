#pragma once
// Fixed rasters of geoid heights: equal cells after a start offset, in one
// of four orders, of one numeric cell type, optionally byte-swapped. A
// raster is read cell by cell from its open file, or loaded whole once.
#include <velmora/foundation/CString.h>

#include <cstdio>
#include <memory>
#include <vector>

namespace Velmora::CS::VR {

class VELMORA_API CSimpleGriddedData
{
public:
  // Cell types by their number in a layout. The two long types are 32 bits
  // wide, as the files were written.
  enum CellType : int {
    kFloatCell = 0,
    kDoubleCell = 1,
    kShortCell = 2,
    kUnsignedShortCell = 3,
    kLongCell = 4,
    kUnsignedLongCell = 5,
  };
  // Where node (row, column) sits in the file; rows count from the south,
  // columns from the west.
  enum CellOrder : int {
    kNorthWestFirst = 0, // (rows - row - 1) * columns + column
    kSouthWestFirst = 1, // columns * row + column
    kNorthEastFirst = 2, // (rows - row) * columns - column - 1
    kSouthEastFirst = 3, // (row + 1) * columns - column - 1
  };

  // One raster. Rows and columns count nodes; the first node is the south-west one.
  struct Layout
  {
    double south;
    double west;
    double rowSpacing;
    double columnSpacing;
    long rows;
    long columns;
    CellOrder order;
    CellType cellType;
    bool swap;        // cells are in the other byte order than the host's
    long startOffset; // bytes before the first cell
    bool loadWhole;   // read every cell at set-up instead of one by one
    bool snap;        // a position within kSnapTolerance of a node takes that node
  };

  // A height that no raster may give: outside the grid, or a cell without data.
  static constexpr double kNoDataValue = 999.0;
  // In cells.
  static constexpr double kSnapTolerance = 1e-5;

  // Takes the data source's data path as it is now.
  explicit CSimpleGriddedData(Layout const & layout);
  // Layout and data path; the copy opens its file again when it needs it.
  CSimpleGriddedData(CSimpleGriddedData const & other);
  CSimpleGriddedData & operator=(CSimpleGriddedData const & other);
  virtual ~CSimpleGriddedData();

  Layout const & GetLayout() const { return m_layout; }
  // The data path taken when this object was built.
  CString const & GetGridDataPath() const { return m_dataPath; }
  static int CellSize(CellType type);
  long CellIndex(long row, long column) const;

  // Opens `name`, or else the data path followed by `name`; code 10 if
  // neither opens. A file open before is closed first.
  void InitializeGridFile(CString const & name) const;
  // With the whole flag: reads every cell and closes the file (code 59 if
  // it is short). Without it: nothing.
  void LoadData() const;
  bool IsGridReady() const { return m_ready; }
  // The name given to InitializeGridFile, before any data path.
  CString const & GetGridFileName() const { return m_fileName; }
  void CloseGridFile() const;

  // The height at a point between the four nodes around it, or kNoDataValue
  // outside the grid or where a corner that counts has no data. Corners
  // with no weight are not read, so points on the last row or column work.
  double BilinearInterpolation(double lat, double lon) const;

private:
  struct FileCloser
  {
    void operator()(std::FILE * file) const;
  };

  double Cell(long row, long column) const;
  // Counts and offset positive, a known order and cell type, and no offset
  // of a cell beyond what a long holds: a layout read from a file is
  // checked before anything is allocated or computed from it.
  bool LayoutIsSane() const;
  double Decode(unsigned char * bytes) const;

  Layout m_layout;
  CString m_dataPath;
  mutable std::unique_ptr<std::FILE, FileCloser> m_file;
  mutable CString m_fileName;
  mutable long long m_fileLength = 0;
  mutable bool m_ready = false;
  mutable std::vector<double> m_cells; // the whole raster, in file order, when loaded
};

} // namespace Velmora::CS::VR
