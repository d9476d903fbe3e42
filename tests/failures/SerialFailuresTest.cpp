// Every failure of the system while a serial scanner is set up, opened, read and closed.
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "tests/failures/Subject.h"
#include "tools/common/HostVariants.h"
#include "tools/common/SerialLine.h"

namespace {

using failures::Subject;
using rig::Call;
using rig::FailingCalls;
using rig::Sweep;
using terminal::numberVariant;
using terminal::textVariant;

constexpr unsigned kEver = FailingCalls::kEver;
// A port that is lost to an error of reading is tried again after a second.
constexpr unsigned kMostLosses = 1;

const Sweep kNoMemory[] = {
    {{"no memory", Call::kAllocate, ENOMEM}, 1},
    {{"no memory", Call::kAllocate, ENOMEM}, kEver},
};

const Sweep kSerialSweeps[] = {
    kNoMemory[0],
    kNoMemory[1],
    {{"no file can be opened", Call::kOpen, EMFILE}, 1},
    {{"no file can be opened", Call::kOpen, EMFILE}, kEver},
    {{"an error of reading", Call::kRead, EIO}, 1, kMostLosses},
    {{"an error of reading", Call::kRead, EIO}, kEver, kMostLosses},
    {{"reading is interrupted", Call::kRead, EINTR}, 1},
    {{"nothing to read", Call::kRead, 0}, 1},
    {{"nothing to read", Call::kRead, 0}, kEver},
    {{"waiting is interrupted", Call::kWait, EINTR}, 1},
    {{"no thread", Call::kStartThread, EAGAIN}, 1},
    {{"no eventfd", Call::kEventfd, EMFILE}, 1},
    {{"no attributes", Call::kGetAttributes, EIO}, kEver},
    {{"attributes stay", Call::kSetAttributes, EIO}, kEver},
};

class SerialFailures : public testing::TestWithParam<Sweep> {
 protected:
  SerialFailures() { line_.link("/dev/ttyUSB0"); }

  static void setUp(Subject& subject) {
    const std::u16string equipment = u"СканерШтрихкода", encoding = u"UTF-8";
    subject.setParameter(u"EquipmentType", textVariant(equipment));
    subject.setParameter(u"COMEncoding", textVariant(encoding));
    subject.setParameter(u"Suffix", numberVariant(13));
    subject.setParameter(u"OutputDataType", numberVariant(0));
    subject.setParameter(u"Port", numberVariant(129));
  }

  void scan(const char* message) { line_.send(std::string(message) + '\r'); }

  terminal::SerialLine line_{terminal::LineSetting::kFramed};
  Subject subject_;
};

TEST_P(SerialFailures, WhileItIsOpenedAndRead) {
  const Sweep& failure = GetParam();
  const rig::Ends ends = rig::sweep(failure, [&](unsigned first) {
    failures::expectScansSurvive(
        subject_, setUp, [this](const char* message) { scan(message); }, failure, first);
  });
  failures::expectEndsOnlyIn(ends, {});
}

INSTANTIATE_TEST_SUITE_P(All, SerialFailures, testing::ValuesIn(kSerialSweeps));

class SerialEndFailures : public SerialFailures {};

// A device that could not be closed stays open, and can be closed later.
TEST_P(SerialEndFailures, WhileItIsClosed) {
  const Sweep& failure = GetParam();
  const rig::Ends ends = rig::sweep(failure, [&](unsigned first) {
    failures::expectNothingLeft([&] {
      setUp(subject_);
      const auto id = subject_.open();
      ASSERT_TRUE(id);
      bool closed = false;
      {
        const FailingCalls failing(failure.failure, first, failure.times);
        closed = subject_.close(*id);
      }
      EXPECT_NE(subject_.close(*id), closed);
    });
  });
  failures::expectEndsOnlyIn(ends, {});
}

TEST_P(SerialEndFailures, WhileAComponentComesAndGoes) {
  const Sweep& failure = GetParam();
  const rig::Ends ends = rig::sweep(failure, [&](unsigned first) {
    failures::expectNothingLeft([&] {
      const FailingCalls failing(failure.failure, first, failure.times);
      subject_.live(numberVariant(129));
    });
  });
  failures::expectEndsOnlyIn(ends, {});
}

INSTANTIATE_TEST_SUITE_P(All, SerialEndFailures, testing::ValuesIn(kNoMemory));

}  // namespace
