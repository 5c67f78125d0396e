#pragma once
// Stand-in until the angle text engine lands: same interface, reads and
// writes plain decimal numbers only.
#include <velmora/foundation/CString.h>

namespace Velmora::ML {

class CAngleText
{
public:
  void SetFormat(CString const & format) { m_format = format; }
  CString const & GetFormat() const { return m_format; }
  CString ToString(double angle) const { return CString(QString::number(angle, 'g', 15)); }
  bool FromString(CString const & text, double & angle) const
  {
    bool ok = false;
    angle = text.toDouble(&ok);
    return ok;
  }

private:
  CString m_format;
};

} // namespace Velmora::ML
