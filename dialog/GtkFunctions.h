// GTK 2 and the libraries below it, opened when the test window is. Every source that calls them
// includes this.
#pragma once

#include <gdk/gdkx.h>
#include <glib-unix.h>
#include <gtk/gtk.h>

#include "dialog/LateFunctions.h"

// Every function that the test window calls, by itself or through a macro of GTK's. One that is
// missing here fails to link.
#define QUORVEL_GTK_FUNCTIONS(X)              \
  X(g_cclosure_new)                           \
  X(g_free)                                   \
  X(g_idle_add)                               \
  X(g_idle_add_full)                          \
  X(g_list_free)                              \
  X(g_main_context_find_source_by_id)         \
  X(g_object_ref_sink)                        \
  X(g_object_set)                             \
  X(g_object_unref)                           \
  X(g_signal_connect_data)                    \
  X(g_signal_emit_by_name)                    \
  X(g_signal_handlers_disconnect_matched)     \
  X(g_slist_find)                             \
  X(g_source_get_name)                        \
  X(g_source_remove)                          \
  X(g_str_has_prefix)                         \
  X(g_type_check_instance_cast)               \
  X(g_type_from_name)                         \
  X(g_unix_fd_add)                            \
  X(gdk_display_flush)                        \
  X(gdk_display_get_default)                  \
  X(gdk_display_open_default_libgtk_only)     \
  X(gdk_display_sync)                         \
  X(gdk_event_copy)                           \
  X(gdk_event_free)                           \
  X(gdk_events_pending)                       \
  X(gdk_threads_add_idle)                     \
  X(gdk_threads_add_timeout_full)             \
  X(gdk_x11_display_get_xdisplay)             \
  X(gtk_accel_group_connect)                  \
  X(gtk_accel_group_new)                      \
  X(gtk_accel_groups_from_object)             \
  X(gtk_bin_get_child)                        \
  X(gtk_bin_get_type)                         \
  X(gtk_box_get_type)                         \
  X(gtk_box_pack_start)                       \
  X(gtk_button_clicked)                       \
  X(gtk_button_get_type)                      \
  X(gtk_button_new_with_label)                \
  X(gtk_button_set_focus_on_click)            \
  X(gtk_cell_layout_get_cells)                \
  X(gtk_cell_layout_get_type)                 \
  X(gtk_cell_renderer_get_size)               \
  X(gtk_cell_renderer_set_fixed_size)         \
  X(gtk_cell_renderer_text_new)               \
  X(gtk_container_add)                        \
  X(gtk_container_get_type)                   \
  X(gtk_dialog_get_content_area)              \
  X(gtk_dialog_get_type)                      \
  X(gtk_dialog_new)                           \
  X(gtk_dialog_response)                      \
  X(gtk_dialog_run)                           \
  X(gtk_disable_setlocale)                    \
  X(gtk_hbox_new)                             \
  X(gtk_label_get_type)                       \
  X(gtk_label_set_mnemonic_widget)            \
  X(gtk_label_set_text_with_mnemonic)         \
  X(gtk_list_store_append)                    \
  X(gtk_list_store_clear)                     \
  X(gtk_list_store_new)                       \
  X(gtk_list_store_set)                       \
  X(gtk_parse_args)                           \
  X(gtk_scrolled_window_get_type)             \
  X(gtk_scrolled_window_new)                  \
  X(gtk_scrolled_window_set_policy)           \
  X(gtk_tooltip_set_text)                     \
  X(gtk_tree_model_get)                       \
  X(gtk_tree_model_get_path)                  \
  X(gtk_tree_model_get_type)                  \
  X(gtk_tree_path_free)                       \
  X(gtk_tree_selection_get_selected)          \
  X(gtk_tree_selection_set_mode)              \
  X(gtk_tree_view_append_column)              \
  X(gtk_tree_view_column_get_fixed_width)     \
  X(gtk_tree_view_column_new_with_attributes) \
  X(gtk_tree_view_column_set_cell_data_func)  \
  X(gtk_tree_view_column_set_fixed_width)     \
  X(gtk_tree_view_column_set_resizable)       \
  X(gtk_tree_view_column_set_sizing)          \
  X(gtk_tree_view_columns_autosize)           \
  X(gtk_tree_view_expand_row)                 \
  X(gtk_tree_view_get_column)                 \
  X(gtk_tree_view_get_path_at_pos)            \
  X(gtk_tree_view_get_selection)              \
  X(gtk_tree_view_get_tooltip_context)        \
  X(gtk_tree_view_get_type)                   \
  X(gtk_tree_view_new)                        \
  X(gtk_tree_view_row_activated)              \
  X(gtk_tree_view_scroll_to_cell)             \
  X(gtk_tree_view_set_enable_search)          \
  X(gtk_tree_view_set_model)                  \
  X(gtk_tree_view_set_tooltip_cell)           \
  X(gtk_vbox_new)                             \
  X(gtk_widget_destroy)                       \
  X(gtk_widget_get_display)                   \
  X(gtk_widget_get_type)                      \
  X(gtk_widget_set_has_tooltip)               \
  X(gtk_widget_set_size_request)              \
  X(gtk_widget_show_all)                      \
  X(gtk_widget_style_get)                     \
  X(gtk_window_activate_key)                  \
  X(gtk_window_add_accel_group)               \
  X(gtk_window_get_type)                      \
  X(gtk_window_remove_accel_group)            \
  X(gtk_window_set_mnemonics_visible)         \
  X(gtk_window_set_modal)                     \
  X(gtk_window_set_title)

namespace quorvel {

inline constexpr char kGtkLibrary[] = "libgtk-x11-2.0.so.0";

// Null until openGtk has succeeded, and then never changed.
QUORVEL_GTK_FUNCTIONS(QUORVEL_DECLARE_LATE)

// Opens GTK, which the host may have done before. False when it is not installed or too old. Does
// not initialise it. GTK thread.
bool openGtk();

}  // namespace quorvel
