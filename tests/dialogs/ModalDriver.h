#pragma once
// Drives the modal windows that a slot under test opens: each step acts on
// the next modal window to come up, and every message box met is recorded.
#include <velmora/datasource/CDataSource.h>
#include <velmora/foundation/VelmoraException.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace VelmoraTest {

struct SeenBox
{
  QString caption;
  QString text;
};

class ModalDriver : public QObject
{
public:
  using Step = std::function<void(QWidget *)>;

  ModalDriver()
  {
    connect(&m_timer, &QTimer::timeout, this, [this] { Poll(); });
    m_timer.start(5);
  }

  // Clicks the button of that text, or of that standard role, on the next message box.
  ModalDriver & Press(QString const & buttonText)
  {
    m_steps.push_back([buttonText](QWidget * w) {
      auto * box = qobject_cast<QMessageBox *>(w);
      for (QAbstractButton * b : box ? box->buttons() : QList<QAbstractButton *>())
        if (b->text() == buttonText) {
          b->click();
          return;
        }
      if (box)
        box->defaultButton() ? box->defaultButton()->click() : box->buttons().front()->click();
    });
    return *this;
  }
  ModalDriver & Then(Step step)
  {
    m_steps.push_back(std::move(step));
    return *this;
  }
  std::vector<SeenBox> const & Seen() const { return m_seen; }
  bool Done() const { return m_steps.empty(); }

protected:
  bool eventFilter(QObject * watched, QEvent * event) override
  {
    if (event->type() == QEvent::Hide && watched == m_last.data())
      m_last = nullptr;
    return false;
  }

private:
  void Poll()
  {
    QWidget * w = QApplication::activeModalWidget();
    if (!w || (w == m_last.data()) || m_steps.empty() || !w->isVisible())
      return;
    m_last = w;
    // A window handled once is handled again when it comes back after hiding.
    w->installEventFilter(this);
    if (auto * box = qobject_cast<QMessageBox *>(w))
      m_seen.push_back({box->windowTitle(), box->text()});
    Step step = std::move(m_steps.front());
    m_steps.pop_front();
    step(w);
  }

  QTimer m_timer;
  std::deque<Step> m_steps;
  std::vector<SeenBox> m_seen;
  QPointer<QWidget> m_last;
};

// A copy of a data file with its schema in a directory of its own, loaded.
struct ScratchStore
{
  explicit ScratchStore(QString const & file)
  {
    QString const target = dir.filePath(QStringLiteral("store.xml"));
    QFile::copy(file, target);
    QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
    QFile::copy(QStringLiteral(VELMORA_SOURCE_DIR "/data/velmora.xsd"), dir.filePath(QStringLiteral("velmora.xsd")));
    try {
      source.LoadFile(target);
    } catch (Velmora::EX::CVelmoraException const & e) {
      qFatal("%s", qPrintable(e.GetFullMessage()));
    }
  }
  QTemporaryDir dir;
  Velmora::DB::CDataSource source;
};

} // namespace VelmoraTest
