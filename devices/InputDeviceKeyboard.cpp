#include "devices/InputDeviceKeyboard.h"

namespace quorvel {

std::unique_ptr<InputDevice> InputDeviceKeyboardFactory::create(const DataCallback& callback) {
  auto device = std::make_unique<InputDeviceKeyboard>(callback);
  if (!device->start(*this)) return nullptr;
  return device;
}

InputDeviceKeyboard::~InputDeviceKeyboard() {
  if (reader_) reader_->stop();
  thread_.join();
}

bool InputDeviceKeyboard::start(const InputDeviceKeyboardFactory& factory) {
  reader_ = std::make_shared<KeyboardReader>(callback_);
  if (!reader_->open(factory)) return false;
  auto threadsReader = std::make_unique<std::shared_ptr<KeyboardReader>>(reader_);
  if (!thread_.start(ThreadFunction, threadsReader.get(),
                     factory.forTestWindow ? kSmallStack : 0)) {
    return false;
  }
  static_cast<void>(threadsReader.release());  // the thread's now
  return true;
}

void* InputDeviceKeyboard::ThreadFunction(void* reader) {
  const std::unique_ptr<std::shared_ptr<KeyboardReader>> owned(
      static_cast<std::shared_ptr<KeyboardReader>*>(reader));
  (*owned)->ReadThread();
  return nullptr;
}

}  // namespace quorvel
