// The device test window.
#pragma once

#include <gtk/gtk.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "devices/InputDevice.h"
#include "devices/InputDeviceFactories.h"
#include "dialog/RowQueue.h"

namespace quorvel {

// Listens on every serial port and every keyboard of the machine at once and lists what arrives, so
// that a user sees which of them the scanner is on, and what it sends. Shown once. Used on the GTK
// thread, except for OnInput. The widgets are shared by all dialogs: one is open at a time.
class DevTestDialogLinux {
 public:
  enum STRING_ID : int { kCloseButton, kClearButton, kCopyButton, kTitle, kTimeoutLabel };

  // Copies the factories; a keyboard factory that does not only listen would grab the keyboards.
  // `outputDataType` is a code of OutputData.h.
  DevTestDialogLinux(const InputDeviceKeyboardFactory& keyboardFactory,
                     const InputDeviceComPortFactory& comPortFactory, bool russian,
                     int outputDataType);
  // Stops the listeners side by side, which takes about a second however many there are.
  ~DevTestDialogLinux();
  DevTestDialogLinux(const DevTestDialogLinux&) = delete;
  DevTestDialogLinux& operator=(const DevTestDialogLinux&) = delete;

  // Shows the window until the user closes it; the main loop runs meanwhile. Returns at once when
  // there is no display, or a dialog is open already. Devices that cannot be listened on stay
  // silent.
  void ShowDlg();

  bool IsRussian() const { return russian_; }

  // In UTF-8; empty for an identifier that is not known.
  std::string LoadString(STRING_ID id) const;

  // A message of a device, as the base64 text of its bytes, becomes a row. Any thread. Ignored when
  // it is empty, or comes when the window has gone.
  void OnInput(const std::wstring& source, const std::wstring& data);

 private:
  class SharedWidgets;

  void ListenPorts();
  void DoListenPort(unsigned port);
  void ListenKeyboardDevices();
  void DoListenKeyboardDevice(const std::wstring& name);
  // Starts a listener, unless there is one of that name.
  void listen(const std::wstring& source, InputDeviceFactory& factory);
  void stopListeners();

  void buildWindow() const;
  GtkWidget* buildButtons() const;
  static void InitList();
  static void AddItemToList(const char* source, const char* data);

  static void OnButtonCloseClicked(GtkWidget* button, gpointer unused);
  static void OnButtonClearClicked(GtkWidget* button, gpointer unused);
  static void OnButtonCopyClicked(GtkWidget* button, gpointer unused);

  // Made and released by SharedWidgets; null while no dialog is open.
  static GtkWidget* mDlg;
  static GtkWidget* mList;
  static GtkListStore* mStore;

  const bool russian_;
  InputDeviceKeyboardFactory keyboardFactory_;
  InputDeviceComPortFactory comPortFactory_;
  std::map<std::wstring, std::shared_ptr<InputDevice>> listeners_;  // by source; null: not started
  const std::int32_t outputDataType_;
  RowQueue rows_;
};

}  // namespace quorvel
