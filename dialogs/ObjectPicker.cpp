#include <velmora/dialogs/ObjectPicker.h>

#include <velmora/dialogs/DataSourcePicker.h>

namespace Velmora::QtDialogs {

namespace {
// The picker of the front keeps its geometry under its own key.
class ObjectPickerDialog final : public CDataSourcePicker
{
public:
  ObjectPickerDialog(DB::CDataSource * source, EObjectType type, QWidget * parent, char const * name)
    : CDataSourcePicker(source, type, parent, name, true)
  {
    SetSettingsStem(QStringLiteral("/Velmora/Qt/ObjectPicker"));
  }
};
} // namespace

CObjectPicker::CObjectPicker(DB::CDataSource * dataSource, EObjectType type, QWidget * parent, char const * name)
  : CObjectPicker(dataSource, type, CString(), CString(), parent, name)
{
}

CObjectPicker::CObjectPicker(DB::CDataSource * dataSource, EObjectType type, CString const & issuer,
                             CString const & code, QWidget * parent, char const * name)
  : m_dataSource(dataSource), m_type(type), m_issuer(issuer), m_code(code), m_parent(parent),
    m_name(name ? QByteArray(name) : QByteArray())
{
}

CObjectPicker::~CObjectPicker() = default;

CSerializable * CObjectPicker::Show(EObjectType * type) { return Run(nullptr, m_issuer, m_code, type); }
CSerializable * CObjectPicker::Show(CString const & title, EObjectType * type)
{
  return Run(&title, m_issuer, m_code, type);
}
CSerializable * CObjectPicker::Show(CString const & issuer, CString const & code, EObjectType * type)
{
  return Run(nullptr, issuer, code, type);
}
CSerializable * CObjectPicker::Show(CString const & title, CString const & issuer, CString const & code,
                                    EObjectType * type)
{
  return Run(&title, issuer, code, type);
}

CSerializable * CObjectPicker::Run(CString const * title, CString const & issuer, CString const & code,
                                   EObjectType * type)
{
  m_dialog = std::make_unique<ObjectPickerDialog>(m_dataSource, m_type, m_parent,
                                                  m_name.isEmpty() ? nullptr : m_name.constData());
  if (title)
    m_dialog->SetTitleBarCaption(*title);
  m_dialog->SetDefaultIssuer(issuer);
  m_dialog->SetDefaultCode(code);
  CSerializable const * object = nullptr;
  m_dialog->Show(&object, type);
  return const_cast<CSerializable *>(object);
}

} // namespace Velmora::QtDialogs
