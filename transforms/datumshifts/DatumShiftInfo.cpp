#include <velmora/transforms/datumshifts/DatumShiftInfo.h>

namespace Velmora::CT::DS {

namespace {
// A null text reads as empty.
std::basic_string<unsigned short> TextOf(unsigned short const * text)
{
  return text ? std::basic_string<unsigned short>(text) : std::basic_string<unsigned short>();
}
} // namespace

CDatumShiftInfo::CDatumShiftInfo(unsigned short const * issuer, unsigned short const * code, bool reverse)
  : m_issuer(TextOf(issuer)), m_code(TextOf(code)), m_reverse(reverse)
{
}

void CDatumShiftInfo::SetIssuer(unsigned short const * issuer) { m_issuer = TextOf(issuer); }

void CDatumShiftInfo::SetCode(unsigned short const * code) { m_code = TextOf(code); }

bool CDatumShiftInfo::operator==(CDatumShiftInfo const & other) const
{
  return m_issuer == other.m_issuer && m_code == other.m_code && m_reverse == other.m_reverse;
}

void CDatumShiftPreferences::SetIntermediateIssuer(unsigned short const * issuer)
{
  m_intermediateIssuer = TextOf(issuer);
}

void CDatumShiftPreferences::SetIntermediateCode(unsigned short const * code) { m_intermediateCode = TextOf(code); }

void CDatumShiftPreferences::SetAreaIssuer(unsigned short const * issuer) { m_areaIssuer = TextOf(issuer); }

void CDatumShiftPreferences::SetAreaCode(unsigned short const * code) { m_areaCode = TextOf(code); }

bool CDatumShiftPreferences::operator==(CDatumShiftPreferences const & other) const
{
  return m_options == other.m_options && m_intermediateIssuer == other.m_intermediateIssuer &&
         m_intermediateCode == other.m_intermediateCode && m_areaIssuer == other.m_areaIssuer &&
         m_areaCode == other.m_areaCode && m_method == other.m_method;
}

CDatumShiftPreferencesEx::~CDatumShiftPreferencesEx() = default;

void CDatumShiftPreferencesEx::SetIntermediateIssuer(unsigned short const * issuer)
{
  m_intermediateIssuer = TextOf(issuer);
}

void CDatumShiftPreferencesEx::SetIntermediateCode(unsigned short const * code) { m_intermediateCode = TextOf(code); }

bool CDatumShiftPreferencesEx::operator==(CDatumShiftPreferencesEx const & other) const
{
  return m_area == other.m_area && m_bitFlags == other.m_bitFlags &&
         m_onlyThroughIntermediate == other.m_onlyThroughIntermediate &&
         m_intermediateIssuer == other.m_intermediateIssuer && m_intermediateCode == other.m_intermediateCode &&
         m_callback == other.m_callback && m_callbackData == other.m_callbackData;
}

} // namespace Velmora::CT::DS
