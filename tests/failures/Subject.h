// The component whose calls are to fail, and a host that never does.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "tests/rig/Driver.h"
#include "tests/rig/FailingCalls.h"
#include "tests/rig/FailureSweep.h"

namespace failures {

class HostsMemory : public IMemoryManager {
 public:
  bool AllocMemory(void** block, unsigned long bytes) override;
  void FreeMemory(void** block) override;
};

class HostsConnection : public terminal::HostConnection {
 public:
  using HostConnection::HostConnection;
  bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override;
};

class Subject {
 public:
  Subject();

  // Methods of the component, called subject to failure.
  bool setParameter(const std::u16string& name, const tVariant& value);
  std::optional<std::u16string> open();
  bool close(const std::u16string& id);
  std::optional<std::u16string> parameters();
  bool test();

  // Creates another component, sets a parameter, opens a device, and destroys it, all subject to
  // failure.
  void live(const tVariant& port);

  terminal::EventQueue& events() { return events_; }

 private:
  std::optional<std::u16string> takeText(tVariant& variant);
  bool call(long method, tVariant& result, tVariant* params, long count);

  terminal::EventQueue events_;
  HostsConnection connection_{events_};
  HostsMemory memory_;
  rig::Driver driver_;
};

// A scanner: sends a message, which ends with a carriage return.
using Scan = std::function<void(const char* message)>;

// Sets up, opens the device and lets it read a scan while calls fail. Afterwards, with the device
// that was opened or with a new one, a later scan has to arrive, and nothing else but the first.
// Does so until what the process holds does not grow; the test fails when it always does.
void expectScansSurvive(Subject& subject, const std::function<void(Subject&)>& setUp,
                        const Scan& scan, const rig::Sweep& sweep, unsigned first);

// Xlib and what it stands on follow null pointers, or stop the process, where they find no memory.
inline constexpr auto kXlib = {"libX11", "libxcb", "libXi", "libXext", "libXau"};

// The test fails when something was ended that is not in the list.
void expectEndsOnlyIn(const rig::Ends& ends, std::initializer_list<const char*> libraries);

// Runs the action until it leaves no more behind, at most four times; the test fails when each run
// leaves threads, descriptors or memory behind.
void expectNothingLeft(const std::function<void()>& action);

// The same, but for the sweeps that only the long run makes: there Xlib, out of memory, leaks too.
void leavingNothing(const rig::Sweep& sweep, const std::function<void()>& action);

}  // namespace failures
