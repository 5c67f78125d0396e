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
