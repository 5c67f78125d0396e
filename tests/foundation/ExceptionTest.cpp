#include <velmora/foundation/VelmoraException.h>

#include <gtest/gtest.h>

#include <map>

using Velmora::CString;
using Velmora::EX::CVelmoraException;

namespace {

// The fixed text of every code that has one.
std::map<int, char const *> const kTexts = {
  {0, "Undefined exception"},
  {1, "Failure to initialize the Xerces-C platform"},
  {2, "Exception thrown by Xerces-C during parsing"},
  {3, "Exception thrown by Xerces-C during writing"},
  {4, "DOM exception thrown by Xerces-C"},
  {5, "XPath parsing or evaluation error"},
  {7, "DataSource object has not been loaded"},
  {8, "COM function call returned HRESULT less than zero"},
  {9, "Error occurred in mathematical computation"},
  {10, "Specified file not found"},
  {11, "Error occurred while trying to read a file"},
  {12, "Attempted to write to a read only file"},
  {13, "Attempted to write to a pre-existing element without overwrite permission"},
  {14, "Attempted to assign an invalid value"},
  {15, "Passed an invalid value to a function parameter"},
  {16, "Passed an invalid null value to a function parameter"},
  {17, "Data source XML is not well-formed"},
  {18, "Data sourse XML did not conform to schema"},
  {19, "Object in data source not fully specified"},
  {20, "Referenced data source element is not of an appropriate type"},
  {21, "Cannot find expected element in data source file"},
  {22, "Objects written to the data source require an identifier with a \"VM\" issuer"},
  {23, "Objects written to the data source require an identifier"},
  {24, "Specified identifier not found in data source"},
  {25, "Object to be referenced requires an identifier"},
  {26, "Referenced object not found in data source"},
  {27, "Specified parameter not found in the collection"},
  {28, "Specified parameter name not valid for this collection"},
  {29, "Attempted to create a collection item that already exists"},
  {30, "Attempted to get a parameter using the wrong variable type"},
  {31, "One or more collection items have not been set prior to use"},
  {32, "Expected inner object not allocated or assigned"},
  {33, "Expected coordinate system object not allocated"},
  {34, "Expected vertical reference object not allocated"},
  {35, "Expected projection object not allocated"},
  {36, "Expected math transfor object not allocated"},
  {37, "Expected horizontal datum object not allocated"},
  {38, "Cannot directly set the datum pointer of a projection created by another object"},
  {39, "Cannot directly set the class of a projection created by another object"},
  {40, "Cannot directly set the class of a math transform created by another object"},
  {41, "Cannot directly set the class of a datum shift created by another object"},
  {42, "Cannot directly set the class of a vertical reference created by another object"},
  {43, "Input point out of bounds"},
  {44, "Output point out of bounds"},
  {45, "Input point has the wrong class type"},
  {46, "Output point has the wrong class type"},
  {47, "Attempted to access third dimension of a two-dimensional point"},
  {48, "Specified index value out of range"},
  {49, "Insufficient number of points to compute a math transform"},
  {50, "Specified class type not implemented by Velmora"},
  {51, "Specified parameter type not implemented by Velmora"},
  {52, "Class of passed object not supported in this context"},
  {53, "Attempted to cram serialized data into the wrong class"},
  {54, "Custom exception"},
  {55, "Null pointer passed to function"},
  {56, "Matrices not of the correct size to perform operation"},
  {57, "Matrix must be square to perform operation"},
  {58, "The operation requires a matrix inversion, but the specified matrix cannot be inverted"},
  {59, "Grid data read error; possibly a format issue"},
  {60, "Cannot create a valid vertical transform"},
  {61, "Cannot Import Coordinate System from file/stream"},
  {62, "Cannot Export Coordinate System to file/stream"},
  {64, "GML parse error"},
  {65, "Duplicate authority and code found in the datasource"},
  {66, "Referenced Object has been deleted."},
};

} // namespace

TEST(CVelmoraException, EveryCodeHasItsTextAndComposes)
{
  for (int code = 0; code <= 70; ++code) {
    CVelmoraException const e(code, CString("A::B"), CString("detail"));
    auto const it = kTexts.find(code);
    CString const expected = it == kTexts.end() ? CString("") : CString(it->second);
    EXPECT_EQ(e.GetErrorCode(), code);
    EXPECT_EQ(e.GetMessageA(), expected) << code;
    EXPECT_EQ(e.GetFullMessage(), expected + CString(" [A::B]: detail")) << code;
  }
  EXPECT_EQ(kTexts.size(), 65u); // 0 to 66 less the two unused codes
}

TEST(CVelmoraException, ConstructorsFillCodeLocationAndDetails)
{
  CVelmoraException const none;
  EXPECT_EQ(none.GetErrorCode(), 0);
  EXPECT_TRUE(none.GetLocation().isEmpty());
  EXPECT_EQ(none.GetFullMessage(), CString("Undefined exception"));

  CVelmoraException const custom(CString("X"));
  EXPECT_EQ(custom.GetErrorCode(), 54);
  EXPECT_EQ(custom.GetFullMessage(), CString("Custom exception [X]"));

  CVelmoraException const unspecified(27, CString());
  EXPECT_EQ(unspecified.GetLocation(), CString("(Unspecified)"));
  EXPECT_EQ(unspecified.GetFullMessage(),
            CString("Specified parameter not found in the collection [(Unspecified)]"));
  EXPECT_EQ(CVelmoraException(CString()).GetLocation(), CString("(Unspecified)"));
  EXPECT_EQ(CVelmoraException(9, CString(""), CString("d")).GetFullMessage(),
            CString("Error occurred in mathematical computation [(Unspecified)]: d"));

  CVelmoraException const item(CVelmoraException::kItemNotFound, "CIdentifierCollection::GetItem", "EPSG");
  EXPECT_EQ(item.GetFullMessage(),
            CString("Specified parameter not found in the collection [CIdentifierCollection::GetItem]: EPSG"));
  EXPECT_EQ(item.GetDetails(), CString("EPSG"));
}

TEST(CVelmoraException, UnusedAndUnknownCodesHaveNoText)
{
  for (int code : {6, 63, 67, 1000}) {
    CVelmoraException const e(code, CString("L"));
    EXPECT_TRUE(e.GetMessageA().isEmpty()) << code;
    EXPECT_EQ(e.GetFullMessage(), CString(" [L]")) << code;
  }
  CVelmoraException const bare(63, CString("L"), CString("why"));
  EXPECT_EQ(bare.GetFullMessage(), CString(" [L]: why"));
}

TEST(CVelmoraException, AssignmentKeepsTheFormerFullMessage)
{
  CVelmoraException a(10, CString("A::Open"), CString("a.gsb"));
  CVelmoraException const b(43, CString("B::Shift"), CString("point"));
  CString const before = a.GetFullMessage();
  a = b;
  EXPECT_EQ(a.GetErrorCode(), 43);
  EXPECT_EQ(a.GetMessageA(), b.GetMessageA());
  EXPECT_EQ(a.GetLocation(), CString("B::Shift"));
  EXPECT_EQ(a.GetDetails(), CString("point"));
  EXPECT_EQ(a.GetFullMessage(), before);

  // The copy constructor has no such gap.
  CVelmoraException const c(b);
  EXPECT_EQ(c.GetFullMessage(), b.GetFullMessage());
}

TEST(CVelmoraException, ThrownAndCaughtByValue)
{
  try {
    throw CVelmoraException(CVelmoraException::kNullPointer, "F::G");
  } catch (CVelmoraException const & e) {
    EXPECT_EQ(e.GetErrorCode(), 55);
    EXPECT_EQ(e.GetFullMessage(), CString("Null pointer passed to function [F::G]"));
    return;
  }
  FAIL() << "not caught";
}
