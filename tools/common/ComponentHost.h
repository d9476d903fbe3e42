// A minimal host for one component: loads the library, creates a component, calls its methods by
// name, and receives its events. Uses nothing but the binary interface.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/IComponentBase.h"
#include "host/IMemoryManager.h"
#include "tools/common/EventQueue.h"
#include "tools/common/IdleConnection.h"

namespace terminal {

// The library's four functions. Unloads the library when destroyed.
class ComponentLibrary {
 public:
  // Loads with RTLD_NOW. Throws std::runtime_error with a one-line reason.
  explicit ComponentLibrary(const std::string& path);

  const WCHAR_T* (*GetClassNames)();
  long (*GetClassObject)(const WCHAR_T* name, IComponentBase** slot);
  long (*DestroyObject)(IComponentBase** slot);
  long (*SetPlatformCapabilities)(int capabilities);

 private:
  struct Unloader {
    void operator()(void* library) const;
  };
  void* symbol(const char* name) const;

  const std::string path_;
  std::unique_ptr<void, Unloader> library_;
};

// Allocates what a component returns. Counts the blocks not yet freed, so that tests notice leaks.
class HostMemory : public IMemoryManager {
 public:
  bool AllocMemory(void** block, unsigned long bytes) override;
  void FreeMemory(void** block) override;

  long blocksOut() const { return blocksOut_; }

 private:
  std::atomic<long> blocksOut_ = 0;
};

// The connection that a component raises its events through, on any thread.
class HostConnection : public IdleConnection {
 public:
  explicit HostConnection(EventQueue& events) : events_(events) {}

  bool SetEventBufferDepth(long depth) override;
  bool ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) override;

  // The depth that the component asked for; -1 until it does.
  long eventBufferDepth() const { return eventBufferDepth_; }

 private:
  EventQueue& events_;
  long eventBufferDepth_ = -1;
};

// One initialised component. Used on one thread.
class Component {
 public:
  // Throws std::runtime_error with a one-line reason.
  Component(ComponentLibrary& library, const std::u16string& className);
  // Closes its devices.
  ~Component();
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  IComponentBase& object() { return *object_; }
  EventQueue& events() { return events_; }
  HostMemory& memory() { return memory_; }
  HostConnection& connection() { return connection_; }

  // Calls a method by its English name. Returns its result, or nothing when the call failed.
  // Strings in the result and the outputs must be read with takeText, which frees them. Throws
  // std::runtime_error when there is no such method.
  std::optional<tVariant> call(std::u16string_view method, std::span<tVariant> params = {});

  // The text of a string variant; frees its memory and empties the variant.
  std::u16string takeText(tVariant& variant);

  // Methods whose result or only output is a text.
  std::u16string version();
  std::u16string lastError();
  std::u16string parameters();

  // The seven outputs of the description, texts freed and numbers in decimal.
  std::vector<std::u16string> description();

  // False when there is no such parameter. A refused value is not reported.
  bool setParameter(const std::u16string& name, tVariant value);
  bool setParameter(const std::u16string& name, const std::u16string& value);
  bool setParameter(const std::u16string& name, std::int32_t value);

  // The identifier of the opened device; nothing when it cannot be opened.
  std::optional<std::u16string> open();
  bool close(const std::u16string& id);

  // Shows the test window until the user closes it.
  bool test();

 private:
  std::u16string textOutput(std::u16string_view method);

  ComponentLibrary& library_;
  HostMemory memory_;
  EventQueue events_;
  HostConnection connection_{events_};
  IComponentBase* object_ = nullptr;
};

}  // namespace terminal
