// A fixture that resets the process-wide settings before and after each test.
#pragma once

#include <gtest/gtest.h>

#include "performer/AppSettings.h"

namespace quorvel::test {

class RestoredSettings : public testing::Test {
 protected:
  RestoredSettings() { reset(); }
  ~RestoredSettings() override { reset(); }

 private:
  static void reset() {
    AppSettings::setLocale(0);
    AppSettings::setIODataType(0);
    AppSettings::setDeviceType(16);
  }
};

}  // namespace quorvel::test
