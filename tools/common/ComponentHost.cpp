#include "tools/common/ComponentHost.h"

#include <dlfcn.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include "tools/common/ErrorTexts.h"
#include "tools/common/HostText.h"
#include "tools/common/HostVariants.h"
#include "tools/common/Language.h"

namespace terminal {
namespace {

constexpr Text kNoClass = {"no component class named ", "в компоненте нет класса "};
constexpr Text kRefused = {"the component refused to start", "компонента отказалась запускаться"};
constexpr Text kNoMethod = {"no method named ", "в компоненте нет метода "};

}  // namespace

void ComponentLibrary::Unloader::operator()(void* library) const { dlclose(library); }

ComponentLibrary::ComponentLibrary(const std::string& path)
    : path_(path), library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!library_) throw std::runtime_error(whyNotLoaded(path, dlerror()));
  GetClassNames = reinterpret_cast<decltype(GetClassNames)>(symbol("GetClassNames"));
  GetClassObject = reinterpret_cast<decltype(GetClassObject)>(symbol("GetClassObject"));
  DestroyObject = reinterpret_cast<decltype(DestroyObject)>(symbol("DestroyObject"));
  SetPlatformCapabilities =
      reinterpret_cast<decltype(SetPlatformCapabilities)>(symbol("SetPlatformCapabilities"));
}

void* ComponentLibrary::symbol(const char* name) const {
  void* const address = dlsym(library_.get(), name);
  if (!address) throw std::runtime_error(whyNotLoaded(path_, dlerror()));
  return address;
}

bool HostMemory::AllocMemory(void** block, unsigned long bytes) {
  *block = std::malloc(bytes);
  if (!*block) return false;
  ++blocksOut_;
  return true;
}

void HostMemory::FreeMemory(void** block) {
  if (!*block) return;
  std::free(*block);
  *block = nullptr;
  --blocksOut_;
}

bool HostConnection::SetEventBufferDepth(long depth) {
  eventBufferDepth_ = depth;
  return true;
}

bool HostConnection::ExternalEvent(WCHAR_T* source, WCHAR_T* message, WCHAR_T* data) {
  events_.push({copyOf(source), copyOf(message), copyOf(data), std::chrono::system_clock::now()});
  return true;
}

Component::Component(ComponentLibrary& library, const std::u16string& className)
    : library_(library) {
  if (library_.GetClassObject(className.c_str(), &object_) == 0 || !object_) {
    throw std::runtime_error(say(kNoClass) + toUtf8(className));
  }
  object_->setMemManager(&memory_);
  if (object_->Init(&connection_)) return;
  library_.DestroyObject(&object_);
  throw std::runtime_error(say(kRefused));
}

Component::~Component() { library_.DestroyObject(&object_); }

std::optional<tVariant> Component::call(std::u16string_view method, std::span<tVariant> params) {
  const long number = object_->FindMethod(std::u16string(method).c_str());
  if (number < 0) throw std::runtime_error(say(kNoMethod) + toUtf8(method));
  tVariant result = emptyVariant();
  if (!object_->CallAsFunc(number, &result, params.data(), static_cast<long>(params.size()))) {
    return std::nullopt;
  }
  return result;
}

std::u16string Component::takeText(tVariant& variant) {
  if (variant.vt != VTYPE_PWSTR || !variant.wide.text) return {};
  std::u16string text(variant.wide.text, variant.wide.length);
  void* block = variant.wide.text;
  memory_.FreeMemory(&block);
  variant = emptyVariant();
  return text;
}

std::u16string Component::textOutput(std::u16string_view method) {
  tVariant output = emptyVariant();
  call(method, {&output, 1});
  return takeText(output);
}

std::u16string Component::version() {
  std::optional<tVariant> result = call(u"GetVersion");
  return result ? takeText(*result) : std::u16string();
}

std::u16string Component::lastError() { return textOutput(u"GetLastError"); }

std::u16string Component::parameters() { return textOutput(u"GetParameters"); }

std::vector<std::u16string> Component::description() {
  std::array<tVariant, 7> outputs;
  outputs.fill(emptyVariant());
  call(u"GetDescription", outputs);
  std::vector<std::u16string> values;
  for (tVariant& output : outputs) {
    if (output.vt == VTYPE_PWSTR) {
      values.push_back(takeText(output));
    } else {
      const int number = output.vt == VTYPE_BOOL ? output.boolValue : output.intValue;
      values.push_back(toHostText(std::to_string(number)));
    }
  }
  return values;
}

bool Component::setParameter(const std::u16string& name, tVariant value) {
  std::array<tVariant, 2> params = {textVariant(name), value};
  const std::optional<tVariant> result = call(u"SetParameter", params);
  return result && result->boolValue;
}

bool Component::setParameter(const std::u16string& name, const std::u16string& value) {
  return setParameter(name, textVariant(value));
}

bool Component::setParameter(const std::u16string& name, std::int32_t value) {
  return setParameter(name, numberVariant(value));
}

std::optional<std::u16string> Component::open() {
  tVariant id = emptyVariant();
  const std::optional<tVariant> result = call(u"Open", {&id, 1});
  if (!result || !result->boolValue) return std::nullopt;
  return takeText(id);
}

bool Component::close(const std::u16string& id) {
  tVariant param = textVariant(id);
  const std::optional<tVariant> result = call(u"Close", {&param, 1});
  return result && result->boolValue;
}

bool Component::test() {
  std::array<tVariant, 2> outputs = {emptyVariant(), emptyVariant()};
  const std::optional<tVariant> result = call(u"DeviceTest", outputs);
  for (tVariant& output : outputs) takeText(output);
  return result && result->boolValue;
}

}  // namespace terminal
