// A component between fakes of its host.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "addin/QuorvelNative.h"
#include "tests/rig/HostCodes.h"
#include "tests/rig/HostDoubles.h"
#include "tests/rig/Variants.h"
#include "tests/unit/performer/RestoredSettings.h"

namespace quorvel::test {

// The numbers of the driver methods.
enum MethodNumber : long {
  kGetVersion,
  kGetDescription,
  kGetLastError,
  kGetParameters,
  kSetParameter,
  kOpen,
  kClose,
  kDeviceTest,
  kGetAdditionalActions,
  kDoAdditionalAction,
};

class ComponentTest : public RestoredSettings {
 protected:
  // Sets the component up as a host does before calling methods.
  void connect() {
    EXPECT_TRUE(component_.setMemManager(&memory_));
    EXPECT_TRUE(component_.Init(&connection_));
  }

  // Calls a driver method with fresh variants.
  bool call(long method) {
    ret_ = rig::untouchedVariant();
    params_.fill(rig::untouchedVariant());
    return callAgain(method);
  }

  // Calls it with the variants as they are now.
  bool callAgain(long method) {
    return component_.CallAsFunc(method, &ret_, params_.data(), component_.GetNParams(method));
  }

  bool setParameter(const WCHAR_T* name, const tVariant& value) {
    params_[0] = rig::textVariant(name);
    params_[1] = value;
    EXPECT_TRUE(callAgain(kSetParameter));
    return resultFlag();
  }

  bool close(const tVariant& id) {
    params_[0] = id;
    EXPECT_TRUE(callAgain(kClose));
    return resultFlag();
  }

  // The result, which must be a boolean.
  bool resultFlag() const {
    EXPECT_EQ(ret_.vt, rig::kTypeBool);
    return ret_.i8 != 0;
  }

  rig::FakeMemoryManager memory_;
  rig::FakeConnection connection_;
  QuorvelNative component_{L"InputDevice", L"Штрихкод"};
  tVariant ret_ = rig::untouchedVariant();
  std::array<tVariant, 7> params_{};
};

}  // namespace quorvel::test
