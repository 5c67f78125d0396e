#pragma once
// CAngleText: writes and reads an angle under a format. The angular value
// holds one by value and hands it numbers already in its display units; range
// reduction stays with the value.
//
// Named formats, written with the default count of decimals (6) on the last field:
//   "DDdMM"      12d30.000000        "DDdMMdSS"  12d30d00.000000
//   "DD_MM"      12_30.000000        "DD_MM_SS"  12_30_00.000000
//   "DDMM"       1230.000000         "DDMMSS"    123000.000000
//   "Packed DMS" 0123000.000000 (degrees padded to three digits)
//   "DD"         12.5 (15 significant digits, never an exponent)
// A negative angle gets a leading "-". An empty format behaves as "DD".
//
// Any other format is a pattern. Its reserve characters:
//   D d  degrees, M m  minutes, S s  seconds (either case). A run's length is the
//        field's zero-padded width. A run that follows a run of the same field and
//        a '.' holds that field's decimals ("DD.dddd", "SS.sss", "SS.SSS").
//        Only the finest field present carries a fraction; the coarsest takes
//        all whole units above it ("MMMM.mm" is the angle in minutes).
//   N    'N' or 'S'        E  'E' or 'W'        P  '+' or '-'
//   o    the degree sign
// Everything else is copied as it stands. Without N, E or P a negative angle
// gets a leading "-". A sign letter in a text must stand where the pattern has
// its placeholder; with no placeholder, before the first or after the last number.
#include <velmora/foundation/CString.h>

#include <string>
#include <vector>

namespace Velmora::ML {

class VELMORA_API CAngleText
{
public:
  CAngleText();

  // Stores the format and finds its runs of reserve characters; raises code 54
  // for a broken run or for digits, the format staying stored.
  void SetFormat(CString const & format);
  CString const & GetFormat() const { return m_format; }

  CString ToString(double angle) const;
  // False for a null or empty text; a malformed text raises code 54.
  bool FromString(CString const & text, double & angle) const;

  // Order on found positions, -1 meaning not found: true when a is found and
  // comes before b, or b was not found.
  static bool LessThanNonNeg(int a, int b);
  static bool HasNumber(CString const & text);

private:
  enum EStyle { kDecimal, kDM, kDMS, kPackedDMS };

  struct Named {
    char const * name;
    EStyle style;
    char separator; // between the fields, 0 for none
  };

  // How a text is cut into numbers: groups (one per number in the text) of
  // parts (split at '.') of pieces (digits of one field; the later pieces of a
  // part take their widths from the right, the first takes the rest).
  struct Piece {
    int field; // 0 degrees, 1 minutes, 2 seconds
    int width;
    bool decimals;
  };
  using Layout = std::vector<std::vector<std::vector<Piece>>>;

  // One run of a reserve character in the format.
  struct Run {
    int pos;
    int len;
    char ch;
    int field;     // -1 for N, E, P and o
    bool decimals;
  };

  // The named format that the format text is, or null for a pattern.
  static Named const * FindNamed(CString const & format);
  std::vector<Run> Runs() const;
  // The pattern's layout; the skeleton gets a number mark per group and N, E, P as they stand.
  Layout PatternLayout(QString * skeleton = nullptr) const;

  void FindReserveChars();
  CString ReplaceReserveChars(double angle) const;
  CString ReplaceSpecialChars(CString const & text) const;
  std::string Clean(CString const & text, char & mark) const;
  static double DetermineSign(char mark);
  double DetermineDecimalValue(EStyle style, char separator, std::string const & text) const;
  double DetermineDecimalValue(std::string const & text, Layout const & layout,
                               std::string const & separators) const;
  double Power(int decimals) const;

  int m_base;       // radix of every number written and read
  int m_decimals;   // decimals of the last field of the named formats
  char m_signMark;  // a sign in the skeleton of a text
  char m_numberMark; // a number in the skeleton of a text or pattern
  CString m_reserveChars;
  CString m_formatChars;
  CString m_format;
  std::vector<int> m_runPositions;
  std::vector<int> m_runLengths;
};

} // namespace Velmora::ML
