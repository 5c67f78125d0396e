#pragma once
// Small values the search for datum shifts passes around: a shift named by
// its identifier, a shift object with the direction it is used in, and the
// preferences that steer the search.
#include <velmora/transforms/datumshifts/DatumShift.h>

#include <list>
#include <string>
#include <vector>

namespace Velmora::CT::DS {

// A stored shift by issuer and code, and whether the route uses it reversed.
class VELMORA_API CDatumShiftInfo
{
public:
  using Text = std::basic_string<unsigned short>;

  CDatumShiftInfo() = default;
  CDatumShiftInfo(unsigned short const * issuer, unsigned short const * code, bool reverse);
  CDatumShiftInfo(CDatumShiftInfo const &) = default;
  CDatumShiftInfo & operator=(CDatumShiftInfo const &) = default;

  Text const & GetIssuer() const { return m_issuer; }
  void SetIssuer(unsigned short const * issuer);
  Text const & GetCode() const { return m_code; }
  void SetCode(unsigned short const * code);
  bool GetReverse() const { return m_reverse; }
  void SetReverse(bool reverse) { m_reverse = reverse; }

  bool operator==(CDatumShiftInfo const & other) const;
  bool operator!=(CDatumShiftInfo const & other) const { return !(*this == other); }

private:
  Text m_issuer;
  Text m_code;
  bool m_reverse = false;
};

// A shift object of a route and its direction. The shift is not owned.
class VELMORA_API CDatumShiftInfoEx
{
public:
  CDatumShiftInfoEx() = default;
  CDatumShiftInfoEx(CDatumShift * shift, bool reverse) : m_shift(shift), m_reverse(reverse) {}
  CDatumShiftInfoEx(CDatumShiftInfoEx const &) = default;
  CDatumShiftInfoEx & operator=(CDatumShiftInfoEx const &) = default;

  CDatumShift * GetDatumShift() const { return m_shift; }
  void SetDatumShift(CDatumShift * shift) { m_shift = shift; }
  bool GetReverse() const { return m_reverse; }
  void SetReverse(bool reverse) { m_reverse = reverse; }

  // The same object, used the same way.
  bool operator==(CDatumShiftInfoEx const & other) const
  {
    return m_shift == other.m_shift && m_reverse == other.m_reverse;
  }
  bool operator!=(CDatumShiftInfoEx const & other) const { return !(*this == other); }

private:
  CDatumShift * m_shift = nullptr;
  bool m_reverse = false;
};

// One route: a direct shift, or two through an intermediate datum.
using CDatumShiftList = std::list<CDatumShiftInfoEx>;

// How one route is chosen for a transform.
class VELMORA_API CDatumShiftPreferences
{
public:
  using Text = std::basic_string<unsigned short>;

  CDatumShiftPreferences() = default;
  CDatumShiftPreferences(CDatumShiftPreferences const &) = default;
  CDatumShiftPreferences & operator=(CDatumShiftPreferences const &) = default;

  int GetOptions() const { return m_options; }
  void SetOptions(int options) { m_options = options; }
  Text const & GetIntermediateIssuer() const { return m_intermediateIssuer; }
  void SetIntermediateIssuer(unsigned short const * issuer);
  Text const & GetIntermediateCode() const { return m_intermediateCode; }
  void SetIntermediateCode(unsigned short const * code);
  Text const & GetAreaIssuer() const { return m_areaIssuer; }
  void SetAreaIssuer(unsigned short const * issuer);
  Text const & GetAreaCode() const { return m_areaCode; }
  void SetAreaCode(unsigned short const * code);
  CDatumShift::Type GetMethod() const { return m_method; }
  void SetMethod(CDatumShift::Type method) { m_method = method; }

  bool operator==(CDatumShiftPreferences const & other) const;
  bool operator!=(CDatumShiftPreferences const & other) const { return !(*this == other); }

private:
  int m_options = 17;
  Text m_intermediateIssuer;
  Text m_intermediateCode;
  Text m_areaIssuer;
  Text m_areaCode;
  CDatumShift::Type m_method = CDatumShift::kMolodensky;
};

// Bit n admits shifts of type n; no bit set admits every type.
using BitFlag = unsigned long;

// How all candidate routes are listed.
class VELMORA_API CDatumShiftPreferencesEx
{
public:
  using Text = std::basic_string<unsigned short>;
  using Callback = void (*)(long, long, void *);

  CDatumShiftPreferencesEx() = default;
  CDatumShiftPreferencesEx(CDatumShiftPreferencesEx const &) = default;
  CDatumShiftPreferencesEx & operator=(CDatumShiftPreferencesEx const &) = default;
  virtual ~CDatumShiftPreferencesEx();

  ML::CEnvelope const & GetArea() const { return m_area; }
  // A stored envelope is shared, an owned one copied.
  void SetArea(ML::CEnvelope const & area) { m_area = area; }
  BitFlag GetBitFlags() const { return m_bitFlags; }
  void SetBitFlags(BitFlag flags) { m_bitFlags = flags; }
  bool GetOnlyGoThruIntermediate() const { return m_onlyThroughIntermediate; }
  void SetOnlyGoThruIntermediate(bool only) { m_onlyThroughIntermediate = only; }
  Text const & GetIntermediateIssuer() const { return m_intermediateIssuer; }
  void SetIntermediateIssuer(unsigned short const * issuer);
  Text const & GetIntermediateCode() const { return m_intermediateCode; }
  void SetIntermediateCode(unsigned short const * code);
  // Called as the search goes, with the caller's data.
  void SetCallback(Callback callback, void * data)
  {
    m_callback = callback;
    m_callbackData = data;
  }
  Callback GetCallback() const { return m_callback; }
  void * GetCallbackData() const { return m_callbackData; }
  // "VM" codes of shifts to leave out, or to take only.
  std::vector<CString> const & GetExcludeList() const { return m_exclude; }
  void SetExcludeList(std::vector<CString> const & codes) { m_exclude = codes; }
  std::vector<CString> const & GetIncludeList() const { return m_include; }
  void SetIncludeList(std::vector<CString> const & codes) { m_include = codes; }

  // Everything but the two lists, which are deliberately left out.
  bool operator==(CDatumShiftPreferencesEx const & other) const;
  bool operator!=(CDatumShiftPreferencesEx const & other) const { return !(*this == other); }

private:
  ML::CEnvelope m_area;
  BitFlag m_bitFlags = 0;
  bool m_onlyThroughIntermediate = false;
  Text m_intermediateIssuer;
  Text m_intermediateCode;
  Callback m_callback = nullptr;
  void * m_callbackData = nullptr;
  std::vector<CString> m_exclude;
  std::vector<CString> m_include;
};

} // namespace Velmora::CT::DS
