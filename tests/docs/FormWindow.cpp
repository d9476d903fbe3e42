#include "tests/docs/FormWindow.h"

#include <optional>

namespace rig {
namespace {

using terminal::FormGroup;
using terminal::FormPage;
using terminal::FormParameter;

constexpr guint kSpace = 8;  // pixels

bool isShown(const FormParameter& parameter, const std::string& port) {
  if (!parameter.condition) return true;
  const bool equal = parameter.condition->value == port;
  return equal == (parameter.condition->operation == "Equal");
}

// The widget in which a user enters the value.
GtkWidget* fieldOf(const FormParameter& parameter, const std::string& value) {
  if (!parameter.choices) {
    GtkWidget* const entry = gtk_entry_new();
    gtk_entry_set_text(GTK_ENTRY(entry), value.c_str());
    return entry;
  }
  GtkWidget* const list = gtk_combo_box_text_new();
  int count = 0;
  for (const terminal::FormChoice& choice : *parameter.choices) {
    gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(list), choice.text.c_str());
    if (choice.value == value) gtk_combo_box_set_active(GTK_COMBO_BOX(list), count);
    ++count;
  }
  // The form has no default keyboard.
  if (gtk_combo_box_get_active(GTK_COMBO_BOX(list)) < 0) {
    gtk_combo_box_set_active(GTK_COMBO_BOX(list), 0);
  }
  return list;
}

GtkWidget* groupBox(const FormGroup& group, const std::string& port) {
  GtkWidget* const frame = gtk_frame_new(group.caption.c_str());
  GtkWidget* const table = gtk_table_new(1, 2, FALSE);
  gtk_container_set_border_width(GTK_CONTAINER(table), kSpace);
  gtk_table_set_col_spacings(GTK_TABLE(table), 2 * kSpace);
  gtk_table_set_row_spacings(GTK_TABLE(table), kSpace);
  guint row = 0;
  for (const FormParameter& parameter : group.parameters) {
    if (!isShown(parameter, port)) continue;
    GtkWidget* const caption = gtk_label_new(parameter.caption.c_str());
    gtk_misc_set_alignment(GTK_MISC(caption), 0, 0.5F);
    gtk_widget_set_size_request(caption, 190, -1);
    const bool isPort = parameter.name == "Port";
    GtkWidget* const field = fieldOf(parameter, isPort ? port : parameter.defaultValue);
    gtk_table_attach(GTK_TABLE(table), caption, 0, 1, row, row + 1, GTK_FILL, GTK_FILL, 0, 0);
    gtk_table_attach(GTK_TABLE(table), field, 1, 2, row, row + 1,
                     static_cast<GtkAttachOptions>(GTK_FILL | GTK_EXPAND), GTK_FILL, 0, 0);
    ++row;
  }
  gtk_container_add(GTK_CONTAINER(frame), table);
  return frame;
}

}  // namespace

GtkWidget* showForm(const std::vector<FormPage>& pages, const std::string& port) {
  GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_default_size(GTK_WINDOW(window), 460, -1);
  gtk_window_set_position(GTK_WINDOW(window), GTK_WIN_POS_CENTER);
  gtk_container_set_border_width(GTK_CONTAINER(window), kSpace);
  GtkWidget* const groups = gtk_vbox_new(FALSE, kSpace);
  for (const FormPage& page : pages) {
    gtk_window_set_title(GTK_WINDOW(window), page.caption.c_str());
    for (const FormGroup& group : page.groups) {
      gtk_box_pack_start(GTK_BOX(groups), groupBox(group, port), FALSE, FALSE, 0);
    }
  }
  gtk_container_add(GTK_CONTAINER(window), groups);
  gtk_widget_show_all(window);
  return window;
}

}  // namespace rig
