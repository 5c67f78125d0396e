// A user's program: only the installed umbrella header and the library.
#include <velmora/velmora.h>

#include <cstdio>
#include <memory>
#include <cstring>

using namespace Velmora;

static int failures = 0;

static void Expect(bool ok, char const * what)
{
  if (!ok) {
    std::fprintf(stderr, "consumer: FAILED %s\n", what);
    ++failures;
  }
}

int main()
{
  try {
    throw EX::CVelmoraException(27, "CIdentifierCollection::GetItem", "EPSG");
  } catch (EX::CVelmoraException const & e) {
    Expect(e.GetErrorCode() == 27, "code");
    Expect(std::strcmp(static_cast<char const *>(CString(e.GetFullMessage())),
                       "Specified parameter not found in the collection [CIdentifierCollection::GetItem]: EPSG") == 0,
           "full message");
  }
  Expect(CString("abcdefghij").GetClipped(7, CString::kClipEnd) == CString("abcd..."), "GetClipped");
  Expect(TWLVariant(0L).isValid() && !TWLVariant().isValid(), "TWLVariant");
  // The README's example.
  CS::CEllipsoid wgs84;
  wgs84.GetSemiMajor().SetValue(6378137.0);
  wgs84.SetInvFlattening(298.257223563);
  ML::BPoint3D p(12.5, 47.25, 250.0);
  wgs84.GetInner().FromGeodeticBase(1, &p);
  wgs84.GetInner().ToGeodeticBase(1, &p);
  Expect(p.x > 12.4999999 && p.x < 12.5000001 && p.z > 249.999 && p.z < 250.001, "geocentric round trip");
  double distance = 0, az12 = 0, az21 = 0;
  wgs84.ComputeInverse(ML::CGeodeticPoint(10.0, 50.0), ML::CGeodeticPoint(11.0, 51.0), distance, az12, az21);
  Expect(distance > 131000.0 && distance < 133000.0, "geodesic");
  std::unique_ptr<CS::PJ::CProjection> tm(CS::PJ::CProjectionFactory::CreateProjection(65, nullptr));
  Expect(tm->GetTypeName() == CString("Transverse Mercator"), "projection factory");

  Expect(VMInitialize(), "VMInitialize without a display");
  Expect(VMTerminate(), "VMTerminate");
  std::printf("consumer: %s\n", failures ? "failed" : "ok");
  return failures ? 1 : 0;
}
