#include <fcntl.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <utility>

#include "util/Handles.h"

namespace quorvel {
namespace {

int openNull() { return ::open("/dev/null", O_RDONLY); }

bool isOpen(int descriptor) { return ::fcntl(descriptor, F_GETFD) >= 0; }

TEST(FileDescriptor, IsEmptyAtFirst) {
  const FileDescriptor none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.get(), -1);
}

TEST(FileDescriptor, ClosesWithItsOwner) {
  const int number = openNull();
  {
    const FileDescriptor descriptor(number);
    EXPECT_TRUE(descriptor);
    EXPECT_EQ(descriptor.get(), number);
    EXPECT_TRUE(isOpen(number));
  }
  EXPECT_FALSE(isOpen(number));
}

TEST(FileDescriptor, ResetClosesOnce) {
  const int number = openNull();
  FileDescriptor descriptor(number);
  descriptor.reset();
  EXPECT_FALSE(descriptor);
  EXPECT_FALSE(isOpen(number));
  descriptor.reset();
  EXPECT_EQ(descriptor.get(), -1);
}

TEST(FileDescriptor, MovingTransfersOwnership) {
  const int number = openNull();
  FileDescriptor first(number);
  FileDescriptor second(std::move(first));
  EXPECT_EQ(second.get(), number);
  FileDescriptor third;
  third = std::move(second);
  EXPECT_EQ(third.get(), number);
  EXPECT_TRUE(isOpen(number));
}

TEST(FileDescriptor, AssigningATemporaryClosesTheDescriptorHeldBefore) {
  const int before = openNull();
  FileDescriptor descriptor(before);
  const int after = openNull();
  descriptor = FileDescriptor(after);
  EXPECT_FALSE(isOpen(before));
  EXPECT_TRUE(isOpen(after));
}

TEST(IconvDescriptor, KnowsWhetherTheConversionExists) {
  EXPECT_TRUE(IconvDescriptor("WCHAR_T", "UTF-8"));
  EXPECT_FALSE(IconvDescriptor("WCHAR_T", "no such encoding"));
}

TEST(Pipe, ReadsACommand) {
  const Pipe pipe(popen("echo scan", "r"));
  char line[16] = {};
  ASSERT_NE(std::fgets(line, sizeof line, pipe.get()), nullptr);
  EXPECT_STREQ(line, "scan\n");
}

}  // namespace
}  // namespace quorvel
