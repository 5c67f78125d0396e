// A commit cut short: by a disk that takes no more (a file size limit, so
// that the write fails part way) and by a kill in the middle of the write.
// The former file stays byte for byte and the store goes on working.
#include "DataFileSupport.h"

#include <velmora/velmora.h>

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Velmora;
using namespace VelmoraTest;
using DB::CDataSource;
using EX::CVelmoraException;

namespace {

// Exit statuses of the committing child.
constexpr int kCommitSucceeded = 100;
constexpr int kRetryFailed = 101;

class CommitFaults : public DataFileTest
{
protected:
  void SetUp() override
  {
    DataFileTest::SetUp();
    m_path = Stage("all_kinds.xml");
    // The size the commit writes, from a commit elsewhere.
    CDataSource probe;
    ASSERT_TRUE(probe.LoadFile(m_path));
    ASSERT_TRUE(probe.CommitToFile(Path("probe.xml")));
    m_written = QFileInfo(Path("probe.xml")).size();
    ASSERT_GT(m_written, 1);
    m_before = ReadAll(m_path);
  }

  // Commits in a child whose files may not grow past `limit` bytes. With
  // `survive` the child ignores SIGXFSZ, so the write fails; it then lifts
  // the limit, commits again with the same store and exits with the first
  // commit's code. Without it, the signal kills the child mid-write.
  int CommitInChild(rlim_t limit, bool survive)
  {
    CDataSource source;
    source.LoadFile(m_path);
    pid_t const child = ::fork();
    if (child == 0) {
      std::signal(SIGXFSZ, survive ? SIG_IGN : SIG_DFL);
      rlimit bounded{};
      ::getrlimit(RLIMIT_FSIZE, &bounded);
      rlim_t const hard = bounded.rlim_max;
      bounded.rlim_cur = limit;
      ::setrlimit(RLIMIT_FSIZE, &bounded);
      int code = kCommitSucceeded;
      try {
        source.CommitToFile();
      } catch (CVelmoraException const & e) {
        code = e.GetErrorCode();
      }
      rlimit const lifted{hard, hard};
      ::setrlimit(RLIMIT_FSIZE, &lifted);
      bool const retried = source.CommitToFile();
      std::_Exit(retried ? code : kRetryFailed);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
  }

  CString m_path;
  qint64 m_written = 0;
  QByteArray m_before;
};

TEST_F(CommitFaults, AWriteFailingPartWayKeepsTheFileAndTheStoreCommitsAgain)
{
  int const status = CommitInChild(rlim_t(m_written / 2), true);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), CVelmoraException::kXercesWrite);
  // The retry has replaced the file with a whole document, which loads.
  EXPECT_FALSE(QFile::exists(m_path + ".partial"));
  CDataSource again;
  EXPECT_TRUE(again.LoadFile(m_path));
  EXPECT_EQ(ReadAll(m_path), ReadAll(Path("probe.xml")));
}

TEST_F(CommitFaults, AKillBeforeTheReplaceKeepsTheFileByteForByte)
{
  // Killed at the last byte: everything but the replace had been done.
  int const status = CommitInChild(rlim_t(m_written - 1), false);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGXFSZ);
  EXPECT_EQ(ReadAll(m_path), m_before);
  // What the kill left behind is no hindrance to the next commit.
  EXPECT_TRUE(QFile::exists(m_path + ".partial"));
  CDataSource source;
  ASSERT_TRUE(source.LoadFile(m_path));
  ASSERT_TRUE(source.CommitToFile());
  EXPECT_FALSE(QFile::exists(m_path + ".partial"));
  EXPECT_EQ(ReadAll(m_path), ReadAll(Path("probe.xml")));
}

} // namespace
