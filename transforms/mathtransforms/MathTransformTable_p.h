#pragma once
// The table of math transform types: class type text, the pairs a solution
// needs, and the parameters in the order they are declared.
#include <velmora/foundation/CString.h>

#include <vector>

namespace Velmora::CT::MT::Table {

// The six values that bring coordinates to a span of about 100 around the
// origin before a polynomial is fitted or evaluated, and back.
inline constexpr char const * kScaleIn = "scale_in";
inline constexpr char const * kXShiftIn = "Xshift_in";
inline constexpr char const * kYShiftIn = "Yshift_in";
inline constexpr char const * kScaleOut = "scale_out";
inline constexpr char const * kXShiftOut = "Xshift_out";
inline constexpr char const * kYShiftOut = "Yshift_out";
// The settings of an iterative or direct solution.
inline constexpr char const * kMaxIterations = "MaxIterations";
inline constexpr char const * kConvergenceThreshold = "ConvergenceThreshold";
inline constexpr char const * kDirectSolution = "DirectSolution";

enum class Kind { kDouble, kLong };

struct Parameter
{
  CString name;
  Kind kind;
  bool optional;
};

char const * NameOf(int type);
int TypeOf(CString const & classType);
long RequiredPoints(int type);
std::vector<Parameter> ParametersOf(int type);

// The degree of a polynomial type (1 linear .. 5 quintic); 0 for other types.
int DegreeOf(int type);
// The coefficient names of a polynomial of that degree in the order of its
// coefficient column: X1 Xx Xy Y1 Yx Yy, then per further degree the X terms
// and the Y terms, each from the highest power of x down.
std::vector<CString> CoefficientNames(int degree);

} // namespace Velmora::CT::MT::Table
