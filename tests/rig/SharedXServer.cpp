#include "tests/rig/SharedXServer.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace rig {
namespace {

// Ended by TearDown alone: a child process that exits runs destructors, too, and must leave the
// server of its parent running.
XServer* server = nullptr;

class XServerForAll : public testing::Environment {
 public:
  void SetUp() override {
    server = new XServer({"AT&T Scanner <B>", kPlainKeyboard});
    // Connected here, so that the connections outlast the children that type.
    server->keyboard(kAmpersandIndex);
    server->keyboard(kPlainIndex);
    setenv("DISPLAY", server->display().c_str(), 1);
  }
  void TearDown() override {
    delete server;
    server = nullptr;
  }
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(new XServerForAll);

}  // namespace

XServer& sharedXServer() { return *server; }

}  // namespace rig
