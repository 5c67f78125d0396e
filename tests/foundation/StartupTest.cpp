#include <velmora/foundation/Startup.h>

#include <gtest/gtest.h>

#include <QCoreApplication>

// The test runs under the offscreen platform; the no-display case without any
// platform variable is its own program.
TEST(Startup, CountedApplicationLifetime)
{
  ASSERT_EQ(QCoreApplication::instance(), nullptr);
  EXPECT_TRUE(VMInitialize());
  QCoreApplication * app = QCoreApplication::instance();
  ASSERT_NE(app, nullptr);
  EXPECT_TRUE(VMInitialize());
  EXPECT_EQ(QCoreApplication::instance(), app);
  EXPECT_TRUE(VMTerminate());
  EXPECT_EQ(QCoreApplication::instance(), app);
  EXPECT_TRUE(VMTerminate());
  EXPECT_EQ(QCoreApplication::instance(), nullptr);
}

TEST(Startup, HostApplicationIsNeverOurs)
{
  int argc = 0;
  {
    QCoreApplication host(argc, nullptr);
    EXPECT_TRUE(VMInitialize());
    EXPECT_EQ(QCoreApplication::instance(), &host);
    EXPECT_TRUE(VMTerminate());
    // Ours was never made, so the host's survives the last terminate.
    EXPECT_EQ(QCoreApplication::instance(), &host);
  }
}
