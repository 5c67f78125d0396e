// A commit cut short by a disk that takes no more (a file size limit) or by
// a kill mid-write keeps the former file byte for byte; the store goes on.
#include "DataFileSupport.h"

#include "../support/TestSupport.h"

#include <velmora/velmora.h>

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace VelmoraTest;
using Velmora::DB::CDataSource;
using Velmora::EX::CVelmoraException;

namespace {

constexpr int kFileChanged = 100, kRetryFailed = 101; // a child's findings

class CommitFaults : public DataFileTest
{
protected:
  // Commits in a child whose files may not grow past `limit`: killed by
  // SIGXFSZ mid-write, or with it ignored, failing, then checking the file,
  // lifting the limit and committing again. Gives the wait status.
  int CommitInChild(CString const & path, rlim_t limit, bool survive)
  {
    CDataSource source;
    source.LoadFile(path);
    pid_t const child = ::fork();
    if (child == 0) {
      std::signal(SIGXFSZ, survive ? SIG_IGN : SIG_DFL);
      rlimit bounded{};
      ::getrlimit(RLIMIT_FSIZE, &bounded);
      rlimit const lifted{bounded.rlim_max, bounded.rlim_max};
      bounded.rlim_cur = limit;
      ::setrlimit(RLIMIT_FSIZE, &bounded);
      int const code = Raised([&] { source.CommitToFile(); }).GetErrorCode();
      if (ReadAll(path) != m_before)
        std::_Exit(kFileChanged);
      ::setrlimit(RLIMIT_FSIZE, &lifted);
      std::_Exit(source.CommitToFile() ? code : kRetryFailed);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
  }

  QByteArray m_before;
};

TEST_F(CommitFaults, AFailedWriteOrAKillLeavesTheFormerFileAndTheStoreWorks)
{
  CString const path = Stage("all_kinds.xml");
  m_before = ReadAll(path);
  CDataSource probe; // what a whole commit writes
  ASSERT_TRUE(probe.LoadFile(path) && probe.CommitToFile(Path("whole.xml")));
  QByteArray const whole = ReadAll(Path("whole.xml"));

  // Killed at the last byte: all but the replace was done.
  int const killed = CommitInChild(path, rlim_t(whole.size() - 1), false);
  ASSERT_TRUE(WIFSIGNALED(killed));
  EXPECT_EQ(WTERMSIG(killed), SIGXFSZ);
  EXPECT_EQ(ReadAll(path), m_before);

  // The disk full half-way: the write fails, the retry replaces the file and
  // clears what the kill left beside it.
  int const failed = CommitInChild(path, rlim_t(whole.size() / 2), true);
  ASSERT_TRUE(WIFEXITED(failed));
  EXPECT_EQ(WEXITSTATUS(failed), CVelmoraException::kXercesWrite);
  EXPECT_EQ(ReadAll(path), whole);
  EXPECT_FALSE(QFile::exists(path + ".partial"));
}

} // namespace
