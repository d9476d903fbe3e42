// The window itself; DevTestListeners.cpp holds the devices it listens to.
#include "dialog/DevTestDialogLinux.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "dialog/Clipboard.h"
#include "dialog/DeviceWatch.h"
#include "dialog/Gtk.h"
#include "dialog/ListColumns.h"
#include "dialog/WindowKeys.h"
#include "util/Language.h"

namespace quorvel {
namespace {

// Indexed by STRING_ID. An underscore precedes the letter that is pressed with Alt.
constexpr std::array<BilingualUtf8, 5> kTexts = {{{"_Закрыть", "_Close"},
                                                  {"_Очистить", "C_lear"},
                                                  {"_Копировать", "Co_py"},
                                                  {"Тест устройства", "Device test"},
                                                  {"Таймаут", "Timeout"}}};

enum Column { kSourceColumn, kDataColumn, kColumns };

gboolean click(GtkWidget* button) {
  gtk_button_clicked(GTK_BUTTON(button));
  return TRUE;
}

struct Size {  // in pixels
  int width;
  int height;
};

constexpr Size kWindowSize = {600, 400};
constexpr Size kListSize = {500, 350};
constexpr int kRowHeight = 25;  // pixels
constexpr guint kPadding = 5;   // pixels

constexpr gint kCloseResponse = 1;

}  // namespace

GtkWidget* DevTestDialogLinux::mDlg = nullptr;
GtkWidget* DevTestDialogLinux::mList = nullptr;
GtkListStore* DevTestDialogLinux::mStore = nullptr;

// Owns the static widgets while a dialog is open. Holding references keeps them valid when the host
// destroys the window while a row is on its way to the list.
class DevTestDialogLinux::SharedWidgets {
 public:
  SharedWidgets()
      : dialog_(keep(gtk_dialog_new())),
        list_(keep(gtk_tree_view_new())),
        store_(gtk_list_store_new(kColumns, G_TYPE_STRING, G_TYPE_STRING)) {
    mDlg = dialog_.get();
    mList = list_.get();
    mStore = store_.get();
  }
  ~SharedWidgets() {
    gtk_widget_destroy(mDlg);
    // Stopping the listeners takes a moment, and the host may run no main loop afterwards: flush,
    // so that the window vanishes now.
    gdk_display_flush(gdk_display_get_default());
    mDlg = mList = nullptr;
    mStore = nullptr;
  }
  SharedWidgets(const SharedWidgets&) = delete;
  SharedWidgets& operator=(const SharedWidgets&) = delete;

 private:
  const GObjectPtr<GtkWidget> dialog_;
  const GObjectPtr<GtkWidget> list_;
  const GObjectPtr<GtkListStore> store_;
};

DevTestDialogLinux::DevTestDialogLinux(const InputDeviceKeyboardFactory& keyboardFactory,
                                       const InputDeviceComPortFactory& comPortFactory,
                                       bool russian, int outputDataType)
    : language_(russian ? Language::kRussian : Language::kEnglish),
      keyboardFactory_(keyboardFactory),
      comPortFactory_(comPortFactory),
      outputDataType_(outputDataType),
      rows_([](const Row& row) { AddItemToList(row.source.c_str(), row.data.c_str()); }) {
  keyboardFactory_.forTestWindow = true;
  comPortFactory_.forTestWindow = true;
}

// The listeners push rows until they have stopped.
DevTestDialogLinux::~DevTestDialogLinux() { listeners_.clear(); }

std::string DevTestDialogLinux::LoadString(STRING_ID id) const {
  std::string text = textWithMnemonic(id);
  std::erase(text, '_');
  return text;
}

std::string DevTestDialogLinux::textWithMnemonic(STRING_ID id) const {
  const auto index = static_cast<std::size_t>(id);
  if (index >= kTexts.size()) return {};
  return std::string(kTexts[index].in(language_));
}

void DevTestDialogLinux::ShowDlg() {
  const auto close = [] {
    if (mDlg) gtk_dialog_response(GTK_DIALOG(mDlg), GTK_RESPONSE_NONE);
  };
  if (mDlg || !prepareGtk(close)) return;
  // Watches before it lists, or a device that comes in between is missed.
  const DeviceWatch watch([this](std::uint32_t port) { DoListenPort(port); },
                          [this] { ListenKeyboardDevices(); });
  ListenPorts();
  ListenKeyboardDevices();
  const SharedWidgets widgets;
  buildWindow();
  const WindowKeys keys(GTK_DIALOG(mDlg), [] { OnButtonCopyClicked(nullptr, nullptr); });
  gtk_window_set_mnemonics_visible(GTK_WINDOW(mDlg), TRUE);
  gtk_widget_show_all(mDlg);
  gtk_dialog_run(GTK_DIALOG(mDlg));
  rows_.close();
}

void DevTestDialogLinux::buildWindow() const {
  gtk_widget_set_size_request(mDlg, kWindowSize.width, kWindowSize.height);
  gtk_window_set_modal(GTK_WINDOW(mDlg), TRUE);

  GtkWidget* const scrolled = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                 GTK_POLICY_AUTOMATIC);
  gtk_widget_set_size_request(scrolled, kListSize.width, kListSize.height);
  gtk_container_add(GTK_CONTAINER(scrolled), mList);

  GtkWidget* const across = gtk_hbox_new(FALSE, 0);
  gtk_box_pack_start(GTK_BOX(across), scrolled, TRUE, TRUE, kPadding);
  gtk_box_pack_start(GTK_BOX(across), buildButtons(), FALSE, FALSE, kPadding);
  gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(mDlg))), across);

  InitList();
  gtk_window_set_title(GTK_WINDOW(mDlg), LoadString(kTitle).c_str());
}

GtkWidget* DevTestDialogLinux::buildButtons() const {
  struct Button {
    STRING_ID label;
    void (*clicked)(GtkWidget*, gpointer);
  };
  static constexpr std::array<Button, 3> kButtons = {{{kCloseButton, OnButtonCloseClicked},
                                                      {kClearButton, OnButtonClearClicked},
                                                      {kCopyButton, OnButtonCopyClicked}}};
  GtkWidget* const down = gtk_vbox_new(FALSE, 0);
  for (const Button& button : kButtons) {
    GtkWidget* const widget = gtk_button_new_with_label(LoadString(button.label).c_str());
    GtkLabel* const label = GTK_LABEL(gtk_bin_get_child(GTK_BIN(widget)));
    gtk_label_set_text_with_mnemonic(label, textWithMnemonic(button.label).c_str());
    gtk_label_set_mnemonic_widget(label, widget);
    // GTK's own handler would grab the keyboard for a moment, to show the button pressed.
    g_signal_connect(widget, "mnemonic-activate", G_CALLBACK(click), nullptr);
    gtk_button_set_focus_on_click(GTK_BUTTON(widget), FALSE);
    gtk_box_pack_start(GTK_BOX(down), widget, FALSE, FALSE, kPadding);
    g_signal_connect(widget, "clicked", G_CALLBACK(button.clicked), nullptr);
  }
  return down;
}

void DevTestDialogLinux::InitList() {
  GtkTreeView* const view = GTK_TREE_VIEW(mList);
  GtkCellRenderer* const text = gtk_cell_renderer_text_new();
  gtk_cell_renderer_set_fixed_size(text, -1, kRowHeight);
  // One row is one line: U+2028 and its like must not break it.
  g_object_set(text, "single-paragraph-mode", TRUE, nullptr);
  addColumns(view, text, kSourceColumn, kDataColumn);
  gtk_tree_view_set_model(view, GTK_TREE_MODEL(mStore));
  gtk_tree_selection_set_mode(gtk_tree_view_get_selection(view), GTK_SELECTION_SINGLE);
  gtk_tree_view_set_enable_search(view, FALSE);
}

void DevTestDialogLinux::AddItemToList(const char* source, const char* data) {
  if (!mStore) return;
  GtkTreeView* const view = GTK_TREE_VIEW(mList);
  makeRoomForSource(view, source);
  GtkTreeIter row;
  gtk_list_store_append(mStore, &row);
  gtk_list_store_set(mStore, &row, kSourceColumn, source, kDataColumn, data, -1);
  const TreePath path(gtk_tree_model_get_path(GTK_TREE_MODEL(mStore), &row));
  gtk_tree_view_scroll_to_cell(view, path.get(), nullptr, FALSE, 0, 0);
  // All rows before it are expanded: to go through them again would take longer with each row.
  gtk_tree_view_expand_row(view, path.get(), TRUE);
  gtk_tree_view_row_activated(view, path.get(), gtk_tree_view_get_column(view, kSourceColumn));
}

void DevTestDialogLinux::OnButtonCloseClicked(GtkWidget*, gpointer) {
  gtk_dialog_response(GTK_DIALOG(mDlg), kCloseResponse);
}

void DevTestDialogLinux::OnButtonClearClicked(GtkWidget*, gpointer) {
  gtk_list_store_clear(mStore);
  resetWidths(GTK_TREE_VIEW(mList));
}

void DevTestDialogLinux::OnButtonCopyClicked(GtkWidget*, gpointer) {
  GtkTreeModel* model = nullptr;
  GtkTreeIter row;
  GtkTreeSelection* const selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(mList));
  if (!gtk_tree_selection_get_selected(selection, &model, &row)) return;
  gchar* text = nullptr;
  gtk_tree_model_get(model, &row, kDataColumn, &text, -1);
  const GOwned<gchar> owned(text);
  try {
    clip::set_text(text);
  } catch (...) {
    // Exceptions must not pass through GTK; the clipboard stays as it was.
  }
}

}  // namespace quorvel
