#pragma once
#include <ostream>
// Helpers the test programs share.
#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace Velmora {
// Failure messages show text, not UTF-16 code units.
inline void PrintTo(CString const & text, std::ostream * out) { *out << '"' << text.toStdString() << '"'; }
} // namespace Velmora

namespace VelmoraTest {

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

// Sets the data source's process-wide cartographic flag for one test and puts it back.
class CartographicFlag
{
public:
  explicit CartographicFlag(bool on) : m_old(Velmora::DB::CDataSource::GetCartographicFlag())
  {
    Velmora::DB::CDataSource::SetCartographicFlag(on);
  }
  ~CartographicFlag() { Velmora::DB::CDataSource::SetCartographicFlag(m_old); }

private:
  bool m_old;
};

} // namespace VelmoraTest
