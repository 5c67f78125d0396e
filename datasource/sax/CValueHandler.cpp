#include <velmora/datasource/sax/CValueHandler.h>

namespace Velmora::DB::SAX {
CValueHandler::~CValueHandler() = default;
}
