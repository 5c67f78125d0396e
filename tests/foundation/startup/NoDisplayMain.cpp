// Runs with no display and no platform variable: the start-up entry points
// must neither abort nor leak the application object.
#include <velmora/velmora.h>

#include <QCoreApplication>

#include <cstdio>

int main()
{
  int failures = 0;
  auto check = [&](bool ok, char const * what) {
    if (!ok) {
      std::fprintf(stderr, "FAILED: %s\n", what);
      ++failures;
    }
  };
  check(VMInitialize(), "first VMInitialize");
  QCoreApplication * const app = QCoreApplication::instance();
  check(app != nullptr, "application exists");
  check(VMInitialize(), "second VMInitialize");
  check(QCoreApplication::instance() == app, "second call makes no new application");
  check(VMTerminate(), "first VMTerminate");
  check(QCoreApplication::instance() == app, "application survives the first VMTerminate");
  check(VMTerminate(), "second VMTerminate");
  check(QCoreApplication::instance() == nullptr, "application deleted at the second VMTerminate");
  // Below zero nothing happens, and a new start still works.
  check(VMTerminate(), "VMTerminate at zero");
  check(QCoreApplication::instance() == nullptr, "nothing created at zero");
  check(VMInitialize(), "VMInitialize after going below zero");
  return failures ? 1 : 0;
}
