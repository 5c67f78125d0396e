#pragma once
// CVelmoraException: the one exception class. Every failure of the library is
// one of these, with a stable numeric code, the raising function's label,
// details from the raising site and the composed full message.
#include <velmora/foundation/CString.h>

#include <cstdint>

namespace Velmora::EX {

class VELMORA_API CVelmoraException
{
public:
  // Values are part of the library's interface and never change; 6 and 63 are unused.
  enum Code : std::int32_t {
    kUndefined = 0,
    kXercesInitialize = 1,
    kXercesParse = 2,
    kXercesWrite = 3,
    kXercesDOM = 4,
    kXPath = 5,
    kDataSourceNotLoaded = 7,
    kCOMFailure = 8,
    kMathError = 9,
    kFileNotFound = 10,
    kFileRead = 11,
    kReadOnlyFile = 12,
    kNoOverwrite = 13,
    kInvalidValue = 14,
    kInvalidParameter = 15,
    kNullParameter = 16,
    kXmlNotWellFormed = 17,
    kXmlSchema = 18,
    kNotFullySpecified = 19,
    kWrongElementType = 20,
    kElementMissing = 21,
    kVMIdentifierRequired = 22,
    kIdentifierRequired = 23,
    kIdentifierNotFound = 24,
    kReferenceNeedsIdentifier = 25,
    kReferenceNotFound = 26,
    kItemNotFound = 27,
    kItemNameInvalid = 28,
    kItemExists = 29,
    kItemWrongType = 30,
    kItemsNotSet = 31,
    kInnerObjectMissing = 32,
    kCoordSysMissing = 33,
    kVerticalReferenceMissing = 34,
    kProjectionMissing = 35,
    kMathTransformMissing = 36,
    kHorizontalDatumMissing = 37,
    kProjectionDatumOwned = 38,
    kProjectionClassOwned = 39,
    kMathTransformClassOwned = 40,
    kDatumShiftClassOwned = 41,
    kVerticalReferenceClassOwned = 42,
    kInputOutOfBounds = 43,
    kOutputOutOfBounds = 44,
    kInputWrongClass = 45,
    kOutputWrongClass = 46,
    kNoThirdDimension = 47,
    kIndexOutOfRange = 48,
    kTooFewPoints = 49,
    kClassNotImplemented = 50,
    kParameterTypeNotImplemented = 51,
    kClassNotSupported = 52,
    kWrongSerializedClass = 53,
    kCustom = 54,
    kNullPointer = 55,
    kMatrixSize = 56,
    kMatrixNotSquare = 57,
    kMatrixSingular = 58,
    kGridRead = 59,
    kVerticalTransform = 60,
    kImportFailed = 61,
    kExportFailed = 62,
    kGMLParse = 64,
    kDuplicateIdentifier = 65,
    kObjectDeleted = 66,
  };

  CVelmoraException();
  explicit CVelmoraException(CString const & location);
  CVelmoraException(Code code, CString const & location);
  CVelmoraException(Code code, CString const & location, CString const & details);
  // Codes given as plain numbers, as callers outside the library write them.
  CVelmoraException(int code, CString const & location)
    : CVelmoraException(static_cast<Code>(code), location) {}
  CVelmoraException(int code, CString const & location, CString const & details)
    : CVelmoraException(static_cast<Code>(code), location, details) {}
  CVelmoraException(CVelmoraException const & other);
  virtual ~CVelmoraException();

  // Copies code, message, location and details, and keeps this object's full
  // message as it was: established behaviour that callers may rely on.
  CVelmoraException & operator=(CVelmoraException const & other);

  Code GetErrorCode() const { return m_code; }
  CString const & GetMessageA() const { return m_message; }
  CString const & GetLocation() const { return m_location; }
  CString const & GetDetails() const { return m_details; }
  CString const & GetFullMessage() const { return m_fullMessage; }

  // The fixed text of a code; empty for unused codes and codes above the table.
  static CString MessageOf(Code code);

private:
  void SetMessage();

  Code m_code;
  CString m_message;
  CString m_location;
  CString m_details;
  CString m_fullMessage;
};

} // namespace Velmora::EX
