#pragma once
// Values with units: a fixed internal quantity (metres or degrees) with the
// unit it is shown in, a label and a text format. Changing the unit changes
// the display, never the quantity.
#include <velmora/datasource/sax/CValueHandler.h>
#include <velmora/measures/Units.h>

#include <memory>

namespace Velmora::ML {

class CFormattedValue;
class CAngleText;

class VELMORA_API CFormattedValueEvent
{
public:
  virtual ~CFormattedValueEvent();
  virtual void OnChange(CFormattedValue const * changed) = 0;
};

class VELMORA_API CFormattedValue : public DB::SAX::CValueHandler
{
public:
  ~CFormattedValue() override;

  // The XML reader's entry: "label" sets the label.
  void SetValue(CString const & key, TWLVariant & value) override;
  virtual void SetFormat(unsigned short const * format);
  virtual double GetValue() const = 0;
  virtual void SetValue(double value) = 0;
  virtual CString ToString() const = 0;
  virtual bool FromString(unsigned short const * text) = 0;
  // 0 linear, 1 angular.
  virtual int GetType() const = 0;

  double GetInternal() const { return m_internal; }
  void SetInternal(double internal)
  {
    m_internal = internal;
    Notify();
  }
  void SetInternalQuiet(double internal) { m_internal = internal; }

  CString GetLabel() const { return CString(m_label); }
  void SetLabel(unsigned short const * label) { m_label = CString(label); }
  void SetLabel(CString const & label) { m_label = label; }
  CString GetFormat() const { return CString(m_format); }
  void SetFormat(CString const & format) { SetFormat(static_cast<unsigned short const *>(format)); }

  CFormattedValueEvent * GetEventHandler() const { return m_handler; }
  void SetEventHandler(CFormattedValueEvent * handler) { m_handler = handler; }

protected:
  CFormattedValue() = default;
  // A copy starts without a listener: its owner registers again.
  CFormattedValue(CFormattedValue const & other);
  CFormattedValue & operator=(CFormattedValue const &) = delete;

  void AssignFields(CFormattedValue const & other);
  void Notify()
  {
    if (m_handler)
      m_handler->OnChange(this);
  }
  bool operator==(CFormattedValue const & other) const { return m_internal == other.m_internal; }
  // Same object, or internal values within 1e-7.
  bool SameQuantity(CFormattedValue const & other) const;
  // Within 1e-6: in the shown units, or in internal units when units are ignored.
  bool NumbersNearlyEqual(CFormattedValue const & other, CString & why, bool inUnits) const;

  QString m_label;
  QString m_format;
  QString m_text; // the free text of the "MGRS" mode of a linear value
  double m_internal = 0.0;
  CFormattedValueEvent * m_handler = nullptr;
};

class VELMORA_API CLinearValue : public CFormattedValue
{
public:
  CLinearValue() = default;
  CLinearValue(CLinearValue const & other);
  ~CLinearValue() override;
  CLinearValue & operator=(CLinearValue const & other);

  using CFormattedValue::SetValue;
  double GetValue() const override { return m_units.FromBaseUnits(m_internal); }
  void SetValue(double value) override;
  // With format "MGRS" the free text; otherwise the number in the value's units.
  CString ToString() const override;
  bool FromString(unsigned short const * text) override;
  int GetType() const override { return 0; }

  CLinearUnit const & GetUnits() const { return m_units; }
  CLinearUnit & GetUnits() { return m_units; }
  // Keeps the quantity, so the shown number changes; fires nothing.
  void SetUnits(CLinearUnit const & units) { m_units = units; }

  void AssignQuiet(CLinearValue const & other);

  bool operator==(CLinearValue const & other) const { return SameQuantity(other); }
  bool operator!=(CLinearValue const & other) const { return !(*this == other); }
  bool IsNearlyEqual(CLinearValue const & other, bool checkUnits) const;
  bool IsNearlyEqual(CLinearValue const & other, CString & why, bool checkUnits) const;

private:
  CLinearUnit m_units;
};

class VELMORA_API CAngularValue : public CFormattedValue
{
public:
  CAngularValue();
  CAngularValue(CAngularValue const & other);
  ~CAngularValue() override;
  CAngularValue & operator=(CAngularValue const & other);

  using CFormattedValue::SetFormat;
  using CFormattedValue::SetValue;
  void SetFormat(unsigned short const * format) override;
  double GetValue() const override { return m_units.FromBaseUnits(m_internal); }
  // Reduced into range, then the event.
  void SetValue(double value) override;
  CString ToString() const override;
  bool FromString(unsigned short const * text) override;
  int GetType() const override { return 1; }

  virtual CAngularUnit const & GetUnits() const { return m_units; }
  virtual CAngularUnit & GetUnits() { return m_units; }
  virtual void SetUnits(CAngularUnit const & units) { m_units = units; }
  // The degree, with its library identifier, then SetValue(value).
  virtual void SetToDefault(double value);
  virtual double GetRadians() const;
  virtual void SetRadians(double radians);

  // Values within [-center - range, center + range] are kept as they are;
  // others are reduced to (-180, 180]. Shared by every angular value.
  static double GetValidRange();
  static void SetValidRange(double range);
  static double GetRangeCenter();
  static void SetRangeCenter(double center);

  void AssignQuiet(CAngularValue const & other);

  bool operator==(CAngularValue const & other) const { return SameQuantity(other); }
  bool operator!=(CAngularValue const & other) const { return !(*this == other); }
  bool IsNearlyEqual(CAngularValue const & other, bool checkUnits) const;
  bool IsNearlyEqual(CAngularValue const & other, CString & why, bool checkUnits) const;

private:
  static double EnsureInRange(double degrees);
  CAngleText & Engine() const;

  CAngularUnit m_units;
  // The text engine, made when the value first meets a format: most values never do.
  mutable std::unique_ptr<CAngleText> m_text;
};

} // namespace Velmora::ML
