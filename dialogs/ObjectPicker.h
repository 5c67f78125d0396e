#pragma once
// A small front for picking one object of a data source: the caller gets a
// new object it owns, or null when the user cancelled.
#include <velmora/dialogs/DialogTypes.h>

#include <memory>

namespace Velmora::QtDialogs {

class CDataSourcePicker;

class VELMORA_API CObjectPicker
{
public:
  CObjectPicker(DB::CDataSource * dataSource, EObjectType type, QWidget * parent = nullptr,
                char const * name = nullptr);
  // Opens with the object of `issuer` and `code` marked.
  CObjectPicker(DB::CDataSource * dataSource, EObjectType type, CString const & issuer, CString const & code,
                QWidget * parent = nullptr, char const * name = nullptr);
  CObjectPicker(CObjectPicker const &) = delete;
  CObjectPicker & operator=(CObjectPicker const &) = delete;
  virtual ~CObjectPicker();

  CSerializable * Show(EObjectType * type = nullptr);
  CSerializable * Show(CString const & title, EObjectType * type = nullptr);
  CSerializable * Show(CString const & issuer, CString const & code, EObjectType * type = nullptr);
  CSerializable * Show(CString const & title, CString const & issuer, CString const & code,
                       EObjectType * type = nullptr);

  // The window behind the front, made at the first Show.
  CDataSourcePicker * GetDialog() const { return m_dialog.get(); }

private:
  CSerializable * Run(CString const * title, CString const & issuer, CString const & code, EObjectType * type);

  DB::CDataSource * m_dataSource;
  EObjectType m_type;
  CString m_issuer;
  CString m_code;
  QWidget * m_parent;
  QByteArray m_name;
  std::unique_ptr<CDataSourcePicker> m_dialog;
};

} // namespace Velmora::QtDialogs
