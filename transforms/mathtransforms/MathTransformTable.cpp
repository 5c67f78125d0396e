#include <velmora/transforms/mathtransforms/MathTransformTable_p.h>

#include <array>
#include <initializer_list>

namespace Velmora::CT::MT::Table {

namespace {
struct Row
{
  char const * name;
  long points;
  int degree; // 0 for the three older fits, whose own parameters follow
  std::initializer_list<char const *> own;
};

// Indexed by type.
std::array<Row, 8> const kRows = {{
  {"Affine", 3, 0, {"dxx", "dxy", "dx", "dyx", "dyy", "dy"}},
  {"First Order Polynomial", 3, 0, {"dxx", "dxy", "dxxy", "dx", "dyy", "dyx", "dyyx", "dy"}},
  {"Second Order Polynomial", 3, 0,
   {"dxx", "dxy", "dxxx", "dxxy", "dxyy", "dx", "dyx", "dyy", "dyyy", "dyyx", "dyxx", "dy"}},
  {"Linear Polynomial 2D", 3, 1, {}},
  {"Quadratic Polynomial 2D", 6, 2, {}},
  {"Cubic Polynomial 2D", 10, 3, {}},
  {"Quartic Polynomial 2D", 15, 4, {}},
  {"Quintic Polynomial 2D", 21, 5, {}},
}};

Row const * RowOf(int type)
{
  return static_cast<unsigned>(type) < kRows.size() ? &kRows[static_cast<size_t>(type)] : nullptr;
}

// One power of a variable in a parameter name: "" for 0, "x" for 1, "x3" for 3.
CString Power(char const * variable, int exponent)
{
  if (exponent == 0)
    return CString();
  CString text(variable);
  if (exponent > 1)
    text += CString(exponent);
  return text;
}

// The terms of one degree, from the highest power of x down: x2, xy, y2.
void AddTerms(std::vector<CString> & names, char const * prefix, int degree)
{
  for (int j = 0; j <= degree; ++j) {
    CString name(prefix);
    name += Power("x", degree - j);
    name += Power("y", j);
    names.push_back(name);
  }
}
} // namespace

char const * NameOf(int type)
{
  Row const * row = RowOf(type);
  return row ? row->name : nullptr;
}

int TypeOf(CString const & classType)
{
  for (size_t i = 0; i < kRows.size(); ++i)
    if (classType == QLatin1String(kRows[i].name))
      return static_cast<int>(i);
  return -1;
}

long RequiredPoints(int type)
{
  Row const * row = RowOf(type);
  return row ? row->points : 0;
}

int DegreeOf(int type)
{
  Row const * row = RowOf(type);
  return row ? row->degree : 0;
}

std::vector<CString> CoefficientNames(int degree)
{
  std::vector<CString> names;
  for (char const * name : {"X1", "Xx", "Xy", "Y1", "Yx", "Yy"})
    names.emplace_back(name);
  for (int d = 2; d <= degree; ++d) {
    AddTerms(names, "X", d);
    AddTerms(names, "Y", d);
  }
  return names;
}

std::vector<Parameter> ParametersOf(int type)
{
  std::vector<Parameter> parameters;
  Row const * row = RowOf(type);
  if (!row)
    return parameters;
  if (row->degree == 0) {
    for (char const * name : row->own)
      parameters.push_back({CString(name), Kind::kDouble, false});
    return parameters;
  }
  std::vector<CString> const coefficients = CoefficientNames(row->degree);
  // Linear terms, the compression values, then the higher terms: the order
  // in which the types were defined, each degree extending the one before.
  for (size_t i = 0; i < 6; ++i)
    parameters.push_back({coefficients[i], Kind::kDouble, false});
  for (char const * name : {kScaleIn, kXShiftIn, kYShiftIn, kScaleOut, kXShiftOut, kYShiftOut})
    parameters.push_back({CString(name), Kind::kDouble, false});
  for (size_t i = 6; i < coefficients.size(); ++i)
    parameters.push_back({coefficients[i], Kind::kDouble, false});
  // A transform given its coefficients directly has no solution to configure.
  parameters.push_back({CString(kMaxIterations), Kind::kLong, true});
  parameters.push_back({CString(kConvergenceThreshold), Kind::kDouble, true});
  parameters.push_back({CString(kDirectSolution), Kind::kLong, true});
  return parameters;
}

} // namespace Velmora::CT::MT::Table
