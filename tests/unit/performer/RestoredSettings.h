// A fixture that resets the process-wide settings before and after each test.
#pragma once

#include <gtest/gtest.h>

#include "performer/AppSettings.h"
#include "tests/rig/HostCodes.h"

namespace quorvel::test {

class RestoredSettings : public testing::Test {
 protected:
  RestoredSettings() { reset(); }
  ~RestoredSettings() override { reset(); }

 private:
  static void reset() {
    AppSettings::setLocale(rig::kRussianLocale);
    AppSettings::setIODataType(rig::kDataText);
    AppSettings::setDeviceType(rig::kScanner);
  }
};

}  // namespace quorvel::test
