#include <velmora/foundation/CString.h>
#include <velmora/foundation/TWLVariant.h>

#include <gtest/gtest.h>

#include <cstring>

using Velmora::CString;
using Velmora::TWLVariant;
using Velmora::_tochar;
using Velmora::_towchar;

TEST(CString, NumbersFormatAsQStringArgDoes)
{
  for (double v : {0.0, 1.0 / 3.0, -2.5, 6378137.0, 298.257223563, 1e-20, 1.23456789012345678e30, 1e32})
    EXPECT_EQ(QString(CString(v)), QStringLiteral("%1").arg(v, 0, 'g', 14)) << v;
  EXPECT_EQ(QString(CString(1.0 / 3.0)), QStringLiteral("0.33333333333333"));
  EXPECT_EQ(QString(CString(1e32)), QStringLiteral("1e+32"));
  for (long v : {0L, -1L, 42L, 2147483647L, -9223372036854775807L})
    EXPECT_EQ(QString(CString(v)), QStringLiteral("%1").arg(v, 0, 10)) << v;
}

TEST(CString, WideBufferIsNeverNull)
{
  CString null;
  unsigned short const * p = null;
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(p[0], 0);
  CString text("ab");
  unsigned short const * q = text;
  EXPECT_EQ(q[0], 'a');
  EXPECT_EQ(q[2], 0);
  EXPECT_EQ(CString(q), text);
}

TEST(CString, FromSixteenBitText)
{
  std::basic_string<unsigned short> wide = {'G', 0xE9, 'o', 'd', 'e'};
  EXPECT_EQ(QString(CString(wide)), QString::fromUtf8("G\xC3\xA9ode"));
  EXPECT_TRUE(CString(static_cast<unsigned short const *>(nullptr)).isNull());
  EXPECT_EQ(QString(CString(std::string("abc"))), QStringLiteral("abc"));
}

TEST(CString, NarrowConversionAndSubstr)
{
  CString s("Helmert");
  EXPECT_STREQ(static_cast<char const *>(s), "Helmert");
  EXPECT_EQ(s.substr(2), CString("lmert"));
  EXPECT_EQ(s.substr(2, 3), CString("lme"));
  CString t("a");
  t += 'b';
  t += CString("cd");
  EXPECT_EQ(t, CString("abcd"));
}

TEST(CString, GetClippedAtEachLocation)
{
  CString const s("abcdefghijklmnop"); // 16 characters
  // Exactly maxLength long, or shorter: unchanged.
  EXPECT_EQ(s.GetClipped(16, CString::kClipMiddle), s);
  EXPECT_EQ(s.GetClipped(40, CString::kClipStart), s);
  EXPECT_EQ(s.GetClipped(10, CString::kClipStart), CString("...jklmnop"));
  EXPECT_EQ(s.GetClipped(10, CString::kClipEnd), CString("abcdefg..."));
  // n = 7 is odd: h = 3 and the result is one short of maxLength.
  CString const middle = s.GetClipped(10, CString::kClipMiddle);
  EXPECT_EQ(middle, CString("abc...nop"));
  EXPECT_EQ(middle.length(), 9);
  // n even: full length.
  EXPECT_EQ(s.GetClipped(11, CString::kClipMiddle), CString("abcd...mnop"));
  EXPECT_EQ(s.GetClipped(8, CString::kClipEnd, CString("~")), CString("abcdefg~"));
  EXPECT_EQ(s.GetClipped(5, static_cast<CString::EClipLocation>(7)), s);
  EXPECT_EQ(QString(CString::kEllipse), QStringLiteral("..."));
}

TEST(TextBuffers, NonAsciiRoundTrips)
{
  char const * const utf8 = "Gau\xC3\x9F-Kr\xC3\xBCger \xE2\x80\x94 \xCE\xBB\xCF\x86";
  _towchar wide(utf8);
  _tochar narrow(wide.c_str());
  EXPECT_STREQ(narrow.c_str(), utf8);
  EXPECT_EQ(CString(wide.c_str()), CString(utf8));

  CString const text(utf8);
  _towchar copy(static_cast<unsigned short const *>(text));
  EXPECT_EQ(CString(copy.c_str()), text);
  _tochar same(utf8);
  EXPECT_STREQ(same.c_str(), utf8);
}

TEST(TextBuffers, AssignmentSharesTheBuffer)
{
  _tochar a("first");
  _tochar b("second", false);
  char const * original = b.c_str();
  b = a; // copies the pointer and the flag, not the text
  EXPECT_EQ(b.c_str(), a.c_str());
  EXPECT_TRUE(b.owns);
  b.owns = false; // only one of them may free the buffer
  EXPECT_NE(original, a.c_str());
  delete[] const_cast<char *>(original);
}

TEST(TWLVariant, TextIsTheValue)
{
  EXPECT_FALSE(TWLVariant().isValid());
  EXPECT_TRUE(TWLVariant(0L).isValid());
  EXPECT_EQ(TWLVariant(0L).toString(), CString("0"));
  // Fourteen significant digits, no more: a stored third loses its tail.
  TWLVariant third(1.0 / 3.0);
  EXPECT_EQ(third.toString(), CString("0.33333333333333"));
  EXPECT_NE(third.toDouble(), 1.0 / 3.0);
  EXPECT_DOUBLE_EQ(third.toDouble(), 0.33333333333333);

  TWLVariant v(CString("12.5e2"));
  EXPECT_EQ(v.toDouble(), 1250.0);
  EXPECT_EQ(TWLVariant(CString("123")).toInt(), 123);
  // Malformed text reads as zero, without failure.
  EXPECT_EQ(TWLVariant(CString("12abc")).toDouble(), 0.0);
  EXPECT_EQ(TWLVariant(CString("x")).toInt(), 0);
  EXPECT_EQ(TWLVariant(CString("0x10")).toInt(), 0);

  v = 42L;
  EXPECT_EQ(v.toString(), CString("42"));
  v = 2.5;
  EXPECT_EQ(v.toString(), CString("2.5"));
  v.clear();
  EXPECT_FALSE(v.isValid());
}
