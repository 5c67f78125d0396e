#include <velmora/measures/AngleText_p.h>

#include <velmora/foundation/VelmoraException.h>

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <new>
#include <string_view>

namespace Velmora::ML {

using EX::CVelmoraException;

namespace {

constexpr double kRollover = 1e-15;    // a field this close to 60 rolls over
constexpr int kMaxDecimals = 15;       // what a double still carries
constexpr int kSignificantDigits = 15; // of the "DD" format
constexpr int kPackedDegreeWidth = 3;  // degrees of a full turn fit in three digits
constexpr int kDegrees = 0;
constexpr int kMinutes = 1;
constexpr int kSeconds = 2;
constexpr char16_t kDegreeSign = 0x00B0;
constexpr std::string_view kSignLetters = "NSEWnsew";

char const * const kFromString = "CAngularValue::FromString";
char const * const kBadFormat[] = {"Bad Format", "Bad Format for Minutes", "Bad Format for Seconds"};

[[noreturn]] void Fail(char const * location, char const * details)
{
  throw CVelmoraException(CVelmoraException::kCustom, CString(location), CString(details));
}

std::string Format(char const * format, ...)
{
  va_list args;
  va_start(args, format);
  va_list again;
  va_copy(again, args);
  int const size = std::vsnprintf(nullptr, 0, format, args);
  va_end(args);
  std::string text(static_cast<size_t>(std::max(size, 0)) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  text.resize(text.size() - 1);
  return text;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The angle cut into degrees, minutes and seconds down to the finest field,
// which is rounded to the decimals it is written with; the rollover is then
// decided on the value as written, so no field ever shows 60.
struct Parts {
  double deg = 0.0;
  double min = 0.0;
  double sec = 0.0;
};

Parts Split(double a, int finest, double scale)
{
  auto round = [scale](double x) { return std::floor(x * scale + 0.5) / scale; };
  Parts p;
  if (finest == kDegrees) {
    p.deg = round(a);
    return p;
  }
  p.deg = std::floor(a);
  if (finest == kMinutes) {
    p.min = round((a - p.deg) * 60.0);
  } else {
    p.min = std::floor((a - p.deg) * 60.0);
    p.sec = round(std::max(0.0, (a - p.deg - p.min / 60.0) * 3600.0));
    if (p.sec >= 60.0 - kRollover * 0.5) {
      p.sec = 0.0;
      p.min += 1.0;
    }
  }
  if (p.min >= 60.0 - kRollover * 0.5) {
    p.min = 0.0;
    p.deg += 1.0;
  }
  return p;
}

// Width of a two-digit field with its decimals.
int FieldWidth(int decimals) { return 2 + (decimals > 0 ? decimals + 1 : 0); }

} // namespace

CAngleText::CAngleText()
  : m_base(10), m_decimals(6), m_signMark('$'), m_numberMark('I'),
    m_reserveChars("NEPoDdMmSs"), m_formatChars("DdMmSs")
{
}

void CAngleText::SetFormat(CString const & format)
{
  m_format = format;
  FindReserveChars();
}

bool CAngleText::LessThanNonNeg(int a, int b)
{
  if (a >= b && b >= 0)
    return false;
  return a >= 0;
}

bool CAngleText::HasNumber(CString const & text)
{
  for (QChar c : text)
    if (QStringView(u"1234567890").contains(c))
      return true;
  return false;
}

CAngleText::Named const * CAngleText::FindNamed(CString const & format)
{
  // Compared in this order; the first match wins.
  static Named const kNamed[] = {
    {"DDdMM", kDM, 'd'},   {"DDdMMdSS", kDMS, 'd'}, {"DD_MM", kDM, '_'},
    {"DD_MM_SS", kDMS, '_'}, {"DDMM", kDM, 0},      {"DDMMSS", kDMS, 0},
    {"Packed DMS", kPackedDMS, 0}, {"DD", kDecimal, 0},
  };
  // A value that was never given a format writes plain degrees.
  if (format.isEmpty())
    return &kNamed[std::size(kNamed) - 1];
  for (Named const & named : kNamed)
    if (format == QLatin1String(named.name))
      return &named;
  return nullptr;
}

double CAngleText::Power(int decimals) const { return std::pow(double(m_base), decimals); }

void CAngleText::FindReserveChars()
{
  m_runPositions.clear();
  m_runLengths.clear();
  // These two use 'd' as a separator, which the scan would take for a field.
  if (m_format == QLatin1String("DDdMM") || m_format == QLatin1String("DDdMMdSS"))
    return;
  char const * const location = "CAngularValue::FindReserveChars";
  if (HasNumber(m_format))
    Fail(location, "Regular expression is not allowed to contain numerical digits");

  std::vector<int> positions, lengths;
  int const n = int(m_format.size());
  for (int i = 0; i < n;) {
    QChar const c = m_format[i];
    if (!m_reserveChars.contains(c)) {
      ++i;
      continue;
    }
    int j = i;
    while (j < n && m_format[j] == c)
      ++j;
    // A character may come back once: right after its own run and a '.', as
    // that field's decimals ("SS.SSS").
    int seen = 0;
    for (int p : positions)
      seen += m_format[p] == c;
    bool const decimals = seen == 1 && m_format[positions.back()] == c &&
                          positions.back() + lengths.back() + 1 == i && m_format[i - 1] == '.';
    if (seen > 0 && !decimals)
      Fail(location, "There was a break in a sequence of reserve characters");
    positions.push_back(i);
    lengths.push_back(j - i);
    i = j;
  }
  m_runPositions = std::move(positions);
  m_runLengths = std::move(lengths);
}

std::vector<CAngleText::Run> CAngleText::Runs() const
{
  std::vector<Run> runs;
  for (size_t i = 0; i < m_runPositions.size(); ++i) {
    Run run{m_runPositions[i], m_runLengths[i], m_format[m_runPositions[i]].toLatin1(), -1, false};
    int const index = int(m_formatChars.indexOf(QLatin1Char(run.ch)));
    if (index >= 0) {
      run.field = index / 2; // upper and lower case name the same field
      Run const * prev = runs.empty() ? nullptr : &runs.back();
      run.decimals = prev && prev->field == run.field && !prev->decimals &&
                     prev->pos + prev->len + 1 == run.pos && m_format[run.pos - 1] == '.';
    }
    runs.push_back(run);
  }
  return runs;
}

CAngleText::Layout CAngleText::PatternLayout(QString * skeleton) const
{
  Layout layout;
  std::vector<Run> const runs = Runs();
  Run const * prev = nullptr;
  for (Run const & run : runs) {
    if (run.field < 0) {
      if (skeleton && run.ch != 'o')
        *skeleton += QLatin1Char(run.ch);
      prev = nullptr;
      continue;
    }
    Piece const piece{run.field, run.len, run.decimals};
    int const prevEnd = prev ? prev->pos + prev->len : -2;
    if (prevEnd == run.pos) {
      layout.back().back().push_back(piece); // packed fields, "DDMMSS"
    } else if (prevEnd + 1 == run.pos && m_format[prevEnd] == '.') {
      layout.back().push_back({piece});
    } else {
      layout.push_back({{piece}});
      if (skeleton)
        *skeleton += QLatin1Char(m_numberMark);
    }
    prev = &run;
  }
  return layout;
}

CString CAngleText::ToString(double angle) const
{
  if (!std::isfinite(angle))
    return CString(Format("%g", angle));
  Named const * named = FindNamed(m_format);
  if (!named)
    return ReplaceReserveChars(angle);

  double const a = std::fabs(angle);
  char const * const sign = angle < 0.0 ? "-" : "";
  int const width = FieldWidth(m_decimals);
  char const sep = named->separator;
  switch (named->style) {
  case kDecimal: {
    std::string text = Format("%.*g", kSignificantDigits, a);
    // The reader takes an 'e' for east: write small values out in full.
    if (text.find('e') != std::string::npos) {
      text = Format("%.*f", kMaxDecimals, a);
      text.erase(text.find_last_not_of('0') + 1);
      if (text.back() == '.')
        text.pop_back();
    }
    return CString(Format("%s%s", sign, text.c_str()));
  }
  // Degrees are printed from the double: in small display units (seconds) the
  // count outgrows a short.
  case kDM: {
    Parts const p = Split(a, kMinutes, Power(m_decimals));
    std::string const deg = Format("%s%.0f", sign, p.deg);
    std::string const min = Format("%0*.*f", width, m_decimals, p.min);
    if (sep)
      return CString(Format("%s%c%s", deg.c_str(), sep, min.c_str()));
    return CString(deg + min);
  }
  case kDMS: {
    Parts const p = Split(a, kSeconds, Power(m_decimals));
    std::string const deg = Format("%s%.0f", sign, p.deg);
    std::string const min = Format("%02.0f", p.min);
    std::string const sec = Format("%0*.*f", width, m_decimals, p.sec);
    if (sep)
      return CString(Format("%s%c%s%c%s", deg.c_str(), sep, min.c_str(), sep, sec.c_str()));
    return CString(deg + min + sec);
  }
  case kPackedDMS: {
    Parts const p = Split(a, kSeconds, Power(m_decimals));
    return CString(Format("%s%0*.0f%02.0f%0*.*f", sign, kPackedDegreeWidth, p.deg, p.min,
                          width, m_decimals, p.sec));
  }
  }
  return CString();
}

CString CAngleText::ReplaceReserveChars(double angle) const
{
  std::vector<Run> const runs = Runs();
  bool has[3] = {false, false, false};
  int decimals[3] = {0, 0, 0};
  int finest = -1;
  bool hasSign = false;
  for (Run const & run : runs) {
    if (run.field < 0) {
      hasSign = hasSign || run.ch != 'o';
      continue;
    }
    if (run.decimals) {
      if (run.len > kMaxDecimals)
        Fail("CAngularValue::ReplaceReserveChars", "Decimal precision beyond 15 digits is not supported");
      decimals[run.field] = run.len;
    }
    has[run.field] = true;
    finest = std::max(finest, run.field);
  }

  bool const negative = angle < 0.0;
  double value[3] = {0.0, 0.0, 0.0};
  if (finest >= 0) {
    Parts const p = Split(std::fabs(angle), finest, Power(decimals[finest]));
    value[kDegrees] = p.deg;
    value[kMinutes] = p.min;
    value[kSeconds] = p.sec;
    // The coarsest field shown takes the whole units of the fields left out.
    if (!has[kDegrees]) {
      value[kMinutes] += value[kDegrees] * 60.0;
      value[kDegrees] = 0.0;
    }
    if (!has[kMinutes] && finest == kSeconds) {
      value[kSeconds] += value[kMinutes] * 60.0;
      value[kMinutes] = 0.0;
    }
  }
  QString whole[3], fraction[3];
  for (int f = 0; f < 3; ++f) {
    if (!has[f])
      continue;
    QString const text = QString::fromStdString(Format("%.*f", decimals[f], value[f]));
    qsizetype const dot = text.indexOf('.');
    whole[f] = text.left(dot);
    if (dot >= 0)
      fraction[f] = text.mid(dot + 1);
  }

  QString out;
  if (negative && !hasSign)
    out += QLatin1Char('-');
  int next = 0;
  for (Run const & run : runs) {
    out += m_format.mid(next, run.pos - next);
    next = run.pos + run.len;
    switch (run.ch) {
    case 'N': out += QLatin1Char(negative ? 'S' : 'N'); break;
    case 'E': out += QLatin1Char(negative ? 'W' : 'E'); break;
    case 'P': out += QLatin1Char(negative ? '-' : '+'); break;
    case 'o': out += QChar(kDegreeSign); break;
    default:
      out += run.decimals ? fraction[run.field] : whole[run.field].rightJustified(run.len, '0');
    }
  }
  out += m_format.mid(next);
  return CString(out);
}

bool CAngleText::FromString(CString const & text, double & angle) const
{
  if (text.isEmpty())
    return false;
  char mark = 0;
  std::string const cleaned = Clean(ReplaceSpecialChars(text), mark);
  double const sign = DetermineSign(mark);
  if (Named const * named = FindNamed(m_format)) {
    angle = sign * DetermineDecimalValue(named->style, named->separator, cleaned);
    return true;
  }
  // Between the numbers a text may have what the pattern writes there.
  std::string separators;
  for (QChar c : m_format)
    if (!m_reserveChars.contains(c))
      separators += c.toLatin1();
  angle = sign * DetermineDecimalValue(cleaned, PatternLayout(), separators);
  return true;
}

CString CAngleText::ReplaceSpecialChars(CString const & text) const
{
  // Which sign letters the pattern has after how many numbers.
  QString skeleton;
  if (!FindNamed(m_format))
    PatternLayout(&skeleton);
  QStringList const afterNumber = skeleton.split(QLatin1Char(m_numberMark));
  bool const placeholders = skeleton.size() > skeleton.count(QLatin1Char(m_numberMark));
  auto slot = [&afterNumber](int k) { return k < afterNumber.size() ? afterNumber[k] : QString(); };

  int firstDigit = -1;
  for (int i = 0; i < text.size() && firstDigit < 0; ++i)
    if (IsDigit(text[i].toLatin1()))
      firstDigit = i;

  // The text's own skeleton: a mark per number and per sign, in order.
  QString marks;
  std::vector<int> signs;
  bool inNumber = false;
  for (int i = 0; i < text.size(); ++i) {
    char const c = text[i].toLatin1();
    if (IsDigit(c) || (c == '.' && inNumber)) {
      if (!inNumber)
        marks += QLatin1Char(m_numberMark);
      inNumber = true;
      continue;
    }
    inNumber = false;
    // A minus is a sign in front of the number or in the pattern's P; elsewhere a separator.
    bool const minus = c == '-' && (LessThanNonNeg(i, firstDigit) ||
                                    slot(int(marks.count(QLatin1Char(m_numberMark)))).contains('P'));
    if (c == '+' || minus || (c != 0 && kSignLetters.find(c) != std::string_view::npos)) {
      marks += QLatin1Char(m_signMark);
      signs.push_back(i);
    }
  }

  int const numbers = int(marks.count(QLatin1Char(m_numberMark)));
  int k = 0;
  size_t s = 0;
  for (QChar m : marks) {
    if (m == QLatin1Char(m_numberMark)) {
      ++k;
      continue;
    }
    QChar const c = text[signs[s++]].toUpper();
    bool legal;
    if ((c == '+' || c == '-') && k == 0)
      legal = true; // a leading sign reads under any format
    else if (!placeholders)
      legal = k == 0 || k == numbers;
    else
      legal = slot(k).contains(c == 'N' || c == 'S' ? 'N' : c == 'E' || c == 'W' ? 'E' : 'P');
    if (!legal)
      Fail("CAngularValue::ReplaceSpecialChars", "Directional special character found in an illegal location");
  }

  // The signs move to the front, where the cleaning pass takes them.
  QString front, rest = text;
  for (auto it = signs.rbegin(); it != signs.rend(); ++it) {
    front.prepend(text[*it]);
    rest.remove(*it, 1);
  }
  return CString(front + rest);
}

std::string CAngleText::Clean(CString const & text, char & mark) const
{
  try {
    std::string out;
    out.reserve(size_t(text.size()));
    for (QChar q : text) {
      char const c = q.toLatin1(); // 0 for anything beyond Latin-1
      if (c == '"' || c == '\'' || q == QChar(kDegreeSign)) {
        out += ' ';
        continue;
      }
      bool const letter = c != 0 && kSignLetters.find(c) != std::string_view::npos;
      bool const leadingMinus = c == '-' && out.find_first_not_of(' ') == std::string::npos;
      if (c == '+' || letter || leadingMinus) {
        if (mark)
          Fail(kFromString, "Bad Format");
        mark = c;
        continue;
      }
      out += c == '-' ? ' ' : c;
    }
    return out;
  } catch (std::bad_alloc const &) {
    Fail(kFromString, "Allocation Error");
  }
}

double CAngleText::DetermineSign(char mark)
{
  switch (mark) {
  case '-': case 'S': case 's': case 'W': case 'w': return -1.0;
  default: return 1.0;
  }
}

double CAngleText::DetermineDecimalValue(EStyle style, char separator, std::string const & text) const
{
  std::string t = text;
  if (separator)
    std::replace(t.begin(), t.end(), separator, ' ');
  int numbers = 0;
  for (size_t i = 0; i < t.size(); ++i)
    numbers += IsDigit(t[i]) && (i == 0 || (!IsDigit(t[i - 1]) && t[i - 1] != '.'));

  Piece const deg{kDegrees, 0, false}, min{kMinutes, 2, false}, sec{kSeconds, 2, false};
  Piece const degFraction{kDegrees, 0, true}, minFraction{kMinutes, 0, true},
    secFraction{kSeconds, 0, true};
  Layout layout;
  switch (style) {
  case kDecimal:
    layout = {{{deg}, {degFraction}}};
    break;
  case kDM:
    if (numbers == 2)
      layout = {{{deg}}, {{min}, {minFraction}}};
    else // packed, minutes from the right
      layout = {{{deg, min}, {minFraction}}};
    break;
  case kDMS:
    if (numbers == 3) {
      layout = {{{deg}}, {{min}}, {{sec}, {secFraction}}};
      break;
    }
    [[fallthrough]];
  case kPackedDMS:
    layout = {{{deg, min, sec}, {secFraction}}};
    break;
  }
  return DetermineDecimalValue(t, layout, std::string());
}

double CAngleText::DetermineDecimalValue(std::string const & text, Layout const & layout,
                                         std::string const & separators) const
{
  // The numbers: a digit and what follows of digits and points.
  std::vector<std::string> tokens;
  for (size_t i = 0; i < text.size();) {
    if (IsDigit(text[i])) {
      size_t j = i;
      while (j < text.size() && (IsDigit(text[j]) || text[j] == '.'))
        ++j;
      tokens.push_back(text.substr(i, j - i));
      i = j;
    } else if (text[i] == ' ' || separators.find(text[i]) != std::string::npos) {
      ++i;
    } else {
      Fail(kFromString, "Bad Format");
    }
  }
  if (tokens.size() != layout.size())
    Fail(kFromString, "Bad Format");

  bool has[3] = {false, false, false};
  double whole[3] = {0.0, 0.0, 0.0};
  double fraction[3] = {0.0, 0.0, 0.0};
  auto read = [&](Piece const & piece, std::string const & digits, bool mayBeEmpty) {
    if (digits.empty() && !mayBeEmpty && !piece.decimals)
      Fail(kFromString, kBadFormat[piece.field]);
    double v = 0.0;
    for (char c : digits) {
      if (!IsDigit(c))
        Fail(kFromString, kBadFormat[piece.field]);
      v = v * m_base + (c - '0');
    }
    if (piece.decimals)
      fraction[piece.field] = v / Power(int(digits.size()));
    else
      whole[piece.field] = v;
  };

  for (size_t g = 0; g < layout.size(); ++g) {
    auto const & parts = layout[g];
    for (auto const & part : parts)
      for (Piece const & piece : part)
        has[piece.field] = true;
    QStringList const given = QString::fromStdString(tokens[g]).split('.');
    size_t const n = size_t(given.size());
    Piece const & last = parts.back().back();
    bool const lastIsFraction = parts.back().front().decimals;
    // The fraction may be left out, or given where the pattern shows none on its finest field.
    bool const omitted = n + 1 == parts.size() && lastIsFraction;
    bool const extra = n == parts.size() + 1 && !lastIsFraction && g + 1 == layout.size();
    if (n != parts.size() && !omitted && !extra)
      Fail(kFromString, kBadFormat[parts.front().front().field]);
    for (size_t i = 0; i < std::min(n, parts.size()); ++i) {
      std::string digits = given[qsizetype(i)].toStdString();
      auto const & part = parts[i];
      for (size_t k = part.size() - 1; k > 0; --k) {
        size_t const w = size_t(part[k].width);
        if (digits.size() < w)
          Fail(kFromString, kBadFormat[part[k].field]);
        read(part[k], digits.substr(digits.size() - w), false);
        digits.resize(digits.size() - w);
      }
      read(part[0], digits, part.size() > 1);
    }
    if (extra)
      read(Piece{last.field, 0, true}, given.back().toStdString(), false);
  }

  double v[3];
  for (int f = 0; f < 3; ++f)
    v[f] = whole[f] + fraction[f];
  // A field is bounded only by a coarser field beside it in the text.
  if (has[kDegrees] && v[kMinutes] >= 60.0)
    Fail(kFromString, kBadFormat[kMinutes]);
  double const secondsLimit = has[kMinutes] ? 60.0
                            : has[kDegrees] ? 3600.0
                                            : std::numeric_limits<double>::infinity();
  if (v[kSeconds] >= secondsLimit)
    Fail(kFromString, kBadFormat[kSeconds]);
  return v[kDegrees] + v[kMinutes] / 60.0 + v[kSeconds] / 3600.0;
}

} // namespace Velmora::ML
