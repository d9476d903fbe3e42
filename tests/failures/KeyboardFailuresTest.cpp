// Every failure of the system while a scanner that types is opened, read and closed.
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "tests/failures/Subject.h"
#include "tests/rig/SharedXServer.h"
#include "tools/common/HostVariants.h"

namespace {

using failures::Subject;
using rig::Call;
using rig::FailingCalls;
using rig::Sweep;

const Sweep kKeyboardSweeps[] = {
    {{"no memory for the driver", Call::kNew, ENOMEM}, 1},
    {{"no memory for the driver", Call::kNew, ENOMEM}, FailingCalls::kEver},
    {{"no memory", Call::kAllocate, ENOMEM}, 1, 0, 1, true},
    {{"no memory", Call::kAllocate, ENOMEM}, FailingCalls::kEver, 0, 1, true},
    {{"waiting is interrupted", Call::kWait, EINTR}, 1, 10000, 5},
    {{"no thread", Call::kStartThread, EAGAIN}, 1},
    {{"no eventfd", Call::kEventfd, EMFILE}, 1},
    {{"no connection", Call::kConnect, ECONNREFUSED}, FailingCalls::kEver},
};

class KeyboardFailures : public rig::OnScreen, public testing::WithParamInterface<Sweep> {};

void setUp(Subject& subject) {
  const std::u16string name = u"Plain scanner";
  subject.setParameter(u"Port", terminal::numberVariant(0));
  subject.setParameter(u"OutputDataType", terminal::numberVariant(0));
  subject.setParameter(u"KeyboardDevice", terminal::textVariant(name));
}

TEST_P(KeyboardFailures, WhileItIsOpenedAndRead) {
  const Sweep& failure = GetParam();
  rig::XServer& server = rig::sharedXServer();
  Subject subject;
  const auto scan = [&](const char* message) {
    terminal::type(server.keyboard(rig::kPlainIndex), std::string(message) + '\r');
  };
  const rig::Ends ends = rig::sweep(failure, [&](unsigned first) {
    failures::expectScansSurvive(subject, setUp, scan, failure, first);
  });
  if (failure.failure.call == Call::kAllocate) {
    failures::expectEndsOnlyIn(ends, failures::kXlib);
  } else {
    failures::expectEndsOnlyIn(ends, {});
  }
}

INSTANTIATE_TEST_SUITE_P(All, KeyboardFailures, testing::ValuesIn(kKeyboardSweeps));

}  // namespace
