#include "devices/InputDeviceComPort.h"

#include <utility>

#include "devices/SerialReader.h"

namespace quorvel {

std::unique_ptr<InputDevice> InputDeviceComPortFactory::create(const DataCallback& callback) {
  auto device = std::make_unique<InputDeviceComPort>(callback);
  if (!device->start(*this)) return nullptr;
  return device;
}

InputDeviceComPort::~InputDeviceComPort() {
  if (reader_) reader_->stop();
  thread_.join();
}

bool InputDeviceComPort::start(const InputDeviceComPortFactory& factory) {
  auto reader = std::make_shared<SerialReader>(factory, callback_);
  if (!reader->open()) return false;
  auto threadsShare = std::make_unique<std::shared_ptr<SerialReader>>(reader);
  if (!thread_.start(ThreadFunction, threadsShare.get(), factory.forTestWindow ? kSmallStack : 0)) {
    return false;
  }
  static_cast<void>(threadsShare.release());
  reader_ = std::move(reader);
  return true;
}

void* InputDeviceComPort::ThreadFunction(void* reader) {
  const std::unique_ptr<std::shared_ptr<SerialReader>> share(
      static_cast<std::shared_ptr<SerialReader>*>(reader));
  (*share)->run();
  return nullptr;
}

}  // namespace quorvel
