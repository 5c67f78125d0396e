// A file with every kind of object: read, written, read again and written
// again; the layout, the objects and the schema.
#include "DataFileSupport.h"

#include <velmora/velmora.h>

#include "../support/TestSupport.h"

using namespace Velmora;
using namespace VelmoraTest;
using DB::CDataSource;

namespace {

class RoundTrip : public DataFileTest
{
};

TEST_F(RoundTrip, WrittenFileEqualsTheHandWrittenOneByteForByte)
{
  CString const original = Stage("all_kinds.xml");
  CDataSource first;
  ASSERT_TRUE(first.LoadFile(original));
  CString const written = Path("written.xml");
  ASSERT_TRUE(first.CommitToFile(written));
  EXPECT_EQ(ReadAll(written).toStdString(), ReadAll(original).toStdString());
  ExpectValid(written);

  CDataSource second;
  ASSERT_TRUE(second.LoadFile(written));
  CString const again = Path("again.xml");
  ASSERT_TRUE(second.CommitToFile(again));
  EXPECT_EQ(ReadAll(again), ReadAll(written));
}

} // namespace

namespace {

// Every object of the first store against its namesake in the second, by the
// family's own comparisons.
template <class Handle, class Get>
void ExpectSameObjects(CDataSource & a, CDataSource & b, long type, Get get)
{
  auto const bodies = a.SearchDB(type);
  EXPECT_FALSE(bodies.empty()) << "kind " << type;
  for (CSerializableDataDB const * body : bodies) {
    CString const code = body->GetIdentifiers().GetItem(CString("VM"));
    std::unique_ptr<Handle> left(get(a, code));
    std::unique_ptr<Handle> right(get(b, code));
    ASSERT_TRUE(left && right) << "kind " << type << " code " << code.toStdString();
    CString why;
    EXPECT_TRUE(left->IsNearlyEqual(*right, why)) << "kind " << type << ": " << why.toStdString();
    EXPECT_TRUE(*left == *right) << "kind " << type << " code " << code.toStdString();
  }
}

TEST_F(RoundTrip, EveryObjectReadBackEqualsTheOneWritten)
{
  CDataSource first;
  ASSERT_TRUE(first.LoadFile(Stage("all_kinds.xml")));
  CString const written = Path("written.xml");
  ASSERT_TRUE(first.CommitToFile(written));
  CDataSource second;
  ASSERT_TRUE(second.LoadFile(written));
#define VELMORA_EXPECT_SAME(Name, Handle)                                                                        \
  ExpectSameObjects<Handle>(first, second, kObject##Name,                                                        \
                            [](CDataSource & s, CString const & c) { return s.Get##Name(CString("VM"), c); });
  VELMORA_STORE_FAMILIES(VELMORA_EXPECT_SAME)
#undef VELMORA_EXPECT_SAME
}

} // namespace
