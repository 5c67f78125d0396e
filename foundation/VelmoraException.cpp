#include <velmora/foundation/VelmoraException.h>

#include <array>

namespace Velmora::EX {

namespace {

// Indexed by code; an empty entry is an unused code.
constexpr std::array<char const *, 67> kMessages = {
  "Undefined exception",
  "Failure to initialize the Xerces-C platform",
  "Exception thrown by Xerces-C during parsing",
  "Exception thrown by Xerces-C during writing",
  "DOM exception thrown by Xerces-C",
  "XPath parsing or evaluation error",
  "",
  "DataSource object has not been loaded",
  "COM function call returned HRESULT less than zero",
  "Error occurred in mathematical computation",
  "Specified file not found",
  "Error occurred while trying to read a file",
  "Attempted to write to a read only file",
  "Attempted to write to a pre-existing element without overwrite permission",
  "Attempted to assign an invalid value",
  "Passed an invalid value to a function parameter",
  "Passed an invalid null value to a function parameter",
  "Data source XML is not well-formed",
  "Data sourse XML did not conform to schema",
  "Object in data source not fully specified",
  "Referenced data source element is not of an appropriate type",
  "Cannot find expected element in data source file",
  "Objects written to the data source require an identifier with a \"VM\" issuer",
  "Objects written to the data source require an identifier",
  "Specified identifier not found in data source",
  "Object to be referenced requires an identifier",
  "Referenced object not found in data source",
  "Specified parameter not found in the collection",
  "Specified parameter name not valid for this collection",
  "Attempted to create a collection item that already exists",
  "Attempted to get a parameter using the wrong variable type",
  "One or more collection items have not been set prior to use",
  "Expected inner object not allocated or assigned",
  "Expected coordinate system object not allocated",
  "Expected vertical reference object not allocated",
  "Expected projection object not allocated",
  "Expected math transfor object not allocated",
  "Expected horizontal datum object not allocated",
  "Cannot directly set the datum pointer of a projection created by another object",
  "Cannot directly set the class of a projection created by another object",
  "Cannot directly set the class of a math transform created by another object",
  "Cannot directly set the class of a datum shift created by another object",
  "Cannot directly set the class of a vertical reference created by another object",
  "Input point out of bounds",
  "Output point out of bounds",
  "Input point has the wrong class type",
  "Output point has the wrong class type",
  "Attempted to access third dimension of a two-dimensional point",
  "Specified index value out of range",
  "Insufficient number of points to compute a math transform",
  "Specified class type not implemented by Velmora",
  "Specified parameter type not implemented by Velmora",
  "Class of passed object not supported in this context",
  "Attempted to cram serialized data into the wrong class",
  "Custom exception",
  "Null pointer passed to function",
  "Matrices not of the correct size to perform operation",
  "Matrix must be square to perform operation",
  "The operation requires a matrix inversion, but the specified matrix cannot be inverted",
  "Grid data read error; possibly a format issue",
  "Cannot create a valid vertical transform",
  "Cannot Import Coordinate System from file/stream",
  "Cannot Export Coordinate System to file/stream",
  "",
  "GML parse error",
  "Duplicate authority and code found in the datasource",
  "Referenced Object has been deleted.",
};

CString const kUnspecifiedLocation("(Unspecified)");

CString LocationOrUnspecified(CString const & location)
{
  return location.isEmpty() ? kUnspecifiedLocation : location;
}

} // namespace

CString CVelmoraException::MessageOf(Code code)
{
  auto const index = static_cast<std::int64_t>(code);
  if (index < 0 || index >= static_cast<std::int64_t>(kMessages.size()))
    return CString();
  return CString(kMessages[static_cast<size_t>(index)]);
}

CVelmoraException::CVelmoraException() : m_code(kUndefined) { SetMessage(); }

CVelmoraException::CVelmoraException(CString const & location)
  : m_code(kCustom), m_location(LocationOrUnspecified(location))
{
  SetMessage();
}

CVelmoraException::CVelmoraException(Code code, CString const & location)
  : m_code(code), m_location(LocationOrUnspecified(location))
{
  SetMessage();
}

CVelmoraException::CVelmoraException(Code code, CString const & location, CString const & details)
  : m_code(code), m_location(LocationOrUnspecified(location)), m_details(details)
{
  SetMessage();
}

CVelmoraException::CVelmoraException(CVelmoraException const & other) = default;

CVelmoraException::~CVelmoraException() = default;

CVelmoraException & CVelmoraException::operator=(CVelmoraException const & other)
{
  m_code = other.m_code;
  m_message = other.m_message;
  m_location = other.m_location;
  m_details = other.m_details;
  return *this;
}

void CVelmoraException::SetMessage()
{
  m_message = MessageOf(m_code);
  m_fullMessage = m_message;
  if (!m_location.isEmpty())
    m_fullMessage += CString(" [") + m_location + CString("]");
  if (!m_details.isEmpty())
    m_fullMessage += CString(": ") + m_details;
}

} // namespace Velmora::EX
