#include "tools/host/JsonOutput.h"

#include "tools/common/Output.h"
#include "tools/common/VisibleText.h"

namespace terminal {

void writeJson(const Json& object) {
  writeLine(withEscapes(object.dump(-1, ' ', false, Json::error_handler_t::replace)));
}

}  // namespace terminal
