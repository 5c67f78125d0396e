#pragma once
#include <ostream>
// Helpers the test programs share.
#include <velmora/foundation/VelmoraException.h>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace Velmora {
// Failure messages show text, not UTF-16 code units.
inline void PrintTo(CString const & text, std::ostream * out) { *out << '"' << text.toStdString() << '"'; }
} // namespace Velmora

namespace VelmoraTest {

// The numbers of each line of a reference file in tests/data, up to a '#';
// lines without numbers are skipped, and each must have `columns` at least.
inline std::vector<std::vector<double>> ReadRows(std::string const & name, std::size_t columns)
{
  std::ifstream in(std::string(VELMORA_TEST_DATA) + "/" + name);
  EXPECT_TRUE(in.good()) << name;
  std::vector<std::vector<double>> rows;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line.substr(0, line.find('#')));
    std::vector<double> row;
    for (double v; fields >> v;)
      row.push_back(v);
    if (row.empty())
      continue;
    EXPECT_GE(row.size(), columns) << name << ": " << line;
    rows.push_back(row);
  }
  return rows;
}

// The exception a call raises; a test failure if it raises none.
template <class F>
Velmora::EX::CVelmoraException Raised(F && f)
{
  try {
    f();
  } catch (Velmora::EX::CVelmoraException const & e) {
    return e;
  }
  ADD_FAILURE() << "nothing raised";
  return Velmora::EX::CVelmoraException();
}

// 16-bit text of an ASCII literal, as the library's wide arguments take it.
inline std::basic_string<unsigned short> Wide(char const * text)
{
  std::basic_string<unsigned short> out;
  for (; *text; ++text)
    out.push_back(static_cast<unsigned char>(*text));
  return out;
}

// One row of a failure table: the call, and the code, location and details it must raise.
struct FailureRow
{
  char const * what;
  std::function<void()> call;
  int code;
  char const * location;
  char const * details;
};

inline void ExpectFailures(std::vector<FailureRow> const & rows)
{
  for (auto const & row : rows) {
    auto const e = Raised(row.call);
    EXPECT_EQ(e.GetErrorCode(), row.code) << row.what;
    EXPECT_EQ(e.GetLocation(), Velmora::CString(row.location)) << row.what;
    EXPECT_EQ(e.GetDetails(), Velmora::CString(row.details)) << row.what;
  }
}

} // namespace VelmoraTest
