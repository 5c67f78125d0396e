#include <velmora/foundation/Startup.h>

#include <velmora/foundation/CString.h>

#include <QApplication>
#include <QMessageBox>

#include <cstdlib>

namespace {

// The application object the library made, if any; a host's own is never ours.
class CVelmoraApplication : public QApplication
{
public:
  using QApplication::QApplication;
  ~CVelmoraApplication() override = default;
};

// QApplication keeps a reference to the count for its whole life.
int g_argc = 0;
char * g_argv[] = {nullptr};
CVelmoraApplication * g_application = nullptr;
int g_references = 0;

bool HasDisplay()
{
  auto const set = [](char const * name) {
    char const * value = std::getenv(name);
    return value && *value;
  };
  return set("DISPLAY") || set("WAYLAND_DISPLAY") || set("QT_QPA_PLATFORM");
}

} // namespace

extern "C" {

// QCoreApplication::instance() rather than qApp: qApp casts the instance to
// QApplication, which is undefined when the host made a plain QCoreApplication.
bool VMInitialize(void)
{
  if (!QCoreApplication::instance()) {
    // A server or CI process has no display: the offscreen platform keeps it
    // alive where the default one would abort.
    if (!HasDisplay())
      ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    g_argc = 0;
    g_application = new CVelmoraApplication(g_argc, g_argv);
  }
  ++g_references;
  return QCoreApplication::instance() != nullptr;
}

bool VMTerminate(void)
{
  int const before = g_references--;
  if (before == 1 && g_application) {
    delete g_application;
    g_application = nullptr;
  }
  return true;
}

void VMIssueWarning(unsigned short const * title, unsigned short const * text)
{
  if (!QCoreApplication::instance())
    VMInitialize();
  QMessageBox::warning(nullptr, Velmora::CString(title), Velmora::CString(text));
}

} // extern "C"
