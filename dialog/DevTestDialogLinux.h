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
#include "util/Language.h"

namespace quorvel {

// Listens on every serial port and every keyboard of the machine at once and lists what arrives, so
// that a user sees which of them the scanner is on and what it sends. Each object is shown once.
// All dialogs share the static widgets, so only one can be open at a time. Used on the GTK thread,
// except for OnInput.
class DevTestDialogLinux {
 public:
  enum STRING_ID : int { kCloseButton, kClearButton, kCopyButton, kTitle, kTimeoutLabel };

  // Copies the factories. The keyboard factory should only listen: otherwise every keyboard is
  // grabbed while the window is open. `outputDataType` is a code of OutputData.h.
  DevTestDialogLinux(const InputDeviceKeyboardFactory& keyboardFactory,
                     const InputDeviceComPortFactory& comPortFactory, bool russian,
                     int outputDataType);
  // Stops the listeners.
  ~DevTestDialogLinux();
  DevTestDialogLinux(const DevTestDialogLinux&) = delete;
  DevTestDialogLinux& operator=(const DevTestDialogLinux&) = delete;

  // Shows the window and runs the main loop until the user closes it. Devices that appear meanwhile
  // are listened to as well. Returns at once when there
  // is no display or a dialog is open already. Devices that cannot be opened stay silent.
  void ShowDlg();

  bool IsRussian() const { return language_ == Language::kRussian; }

  // UTF-8; empty for an unknown identifier.
  std::string LoadString(STRING_ID id) const;

  // Adds a row for a message, given as the base64 text of its bytes. Empty messages, and messages
  // that come after the window has closed, are ignored. Any thread, once GTK has been opened.
  void OnInput(const std::wstring& source, const std::wstring& data);

 private:
  class SharedWidgets;

  void ListenPorts();
  void DoListenPort(unsigned port);
  void ListenKeyboardDevices();
  void DoListenKeyboardDevice(const std::wstring& name);
  // Starts a listener unless one of that name is running.
  void listen(const std::wstring& source, InputDeviceFactory& factory);

  std::string textWithMnemonic(STRING_ID id) const;
  void buildWindow() const;
  GtkWidget* buildButtons() const;
  static void InitList();
  static void AddItemToList(const char* source, const char* data);

  static void OnButtonCloseClicked(GtkWidget* button, gpointer unused);
  static void OnButtonClearClicked(GtkWidget* button, gpointer unused);
  static void OnButtonCopyClicked(GtkWidget* button, gpointer unused);

  // Set by SharedWidgets; null while no dialog is open.
  static GtkWidget* mDlg;
  static GtkWidget* mList;
  static GtkListStore* mStore;

  const Language language_;
  InputDeviceKeyboardFactory keyboardFactory_;
  InputDeviceComPortFactory comPortFactory_;
  std::map<std::wstring, std::shared_ptr<InputDevice>>
      listeners_;  // by source; null if it did not start
  const std::int32_t outputDataType_;
  RowQueue rows_;
};

}  // namespace quorvel
