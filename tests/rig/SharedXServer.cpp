#include "tests/rig/SharedXServer.h"

#include <cstdlib>

namespace rig {
namespace {

// Not ended by a destructor: a child process runs those too when it exits, and must leave its
// parent's server running.
XServer* server = nullptr;

class EndOfTests : public testing::Environment {
 public:
  void TearDown() override {
    delete server;
    server = nullptr;
  }
};

[[maybe_unused]] const auto* const endOfTests = testing::AddGlobalTestEnvironment(new EndOfTests);

void startServer() {
  server = new XServer({"AT&T Scanner <B>", kPlainKeyboard});
  // Connected here, so that the connections outlast the children that type.
  server->keyboard(kAmpersandIndex);
  server->keyboard(kPlainIndex);
  setenv("DISPLAY", server->display().c_str(), 1);
}

}  // namespace

XServer& sharedXServer() {
  if (!server) startServer();
  return *server;
}

}  // namespace rig
