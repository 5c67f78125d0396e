#include <velmora/dialogs/ObjectBrowserDialog.h>

#include <velmora/foundation/VelmoraException.h>

namespace Velmora::QtDialogs {

CObjectBrowserDialog::CObjectBrowserDialog(DB::CDataSource * dataSource, EObjectType classFilter, QWidget * parent,
                                           char const * name, bool modal)
  : CObjectBrowserDialogBase(parent, name, modal), m_dataSource(dataSource), m_classFilter(classFilter)
{
  if (!dataSource)
    throw EX::CVelmoraException(EX::CVelmoraException::kCustom, "ObjectBrowserDialog::ObjectBrowserDialog",
                                Text::kNoDataSource);
}

CObjectBrowserDialog::~CObjectBrowserDialog() = default;

void CObjectBrowserDialog::SetDataSource(DB::CDataSource * dataSource)
{
  m_dataSource = dataSource;
  m_populated = false;
}

void CObjectBrowserDialog::SetClassFilter(EObjectType classFilter)
{
  m_classFilter = classFilter;
  m_populated = false;
}

CString CObjectBrowserDialog::GetTitleBarCaption() const { return windowTitle(); }
void CObjectBrowserDialog::SetTitleBarCaption(CString const & caption) { setWindowTitle(caption); }

void CObjectBrowserDialog::SetParent(QWidget * parent) { setParent(parent, windowFlags()); }

void CObjectBrowserDialog::show()
{
  if (!m_populated) {
    m_populated = true;
    Populate();
  }
  QDialog::show();
}

void CObjectBrowserDialog::showEvent(QShowEvent * event)
{
  if (!m_populated) {
    m_populated = true;
    Populate();
  }
  QDialog::showEvent(event);
}

} // namespace Velmora::QtDialogs
