#include "dialog/WindowKeys.h"

#include <gdk/gdkkeysyms.h>

#include <utility>

namespace quorvel {
namespace {

constexpr auto kNoModifiers = static_cast<GdkModifierType>(0);

// Below events and drawing, above new rows: when the timer runs, the events before it have been
// handled, however fast rows come.
constexpr gint kTimerPriority = (GDK_PRIORITY_REDRAW + G_PRIORITY_DEFAULT_IDLE) / 2;

unsigned modifiersOf(const GdkEventKey& event) {
  return event.state & (GDK_SHIFT_MASK | GDK_CONTROL_MASK | GDK_MOD1_MASK | GDK_MOD4_MASK);
}

bool isInChord(const GdkEventKey& event) {
  return modifiersOf(event) == GDK_MOD1_MASK || modifiersOf(event) == GDK_CONTROL_MASK;
}

bool isChordKey(guint key) {
  switch (key) {
    case GDK_Alt_L:
    case GDK_Alt_R:
    case GDK_Meta_L:
    case GDK_Meta_R:
    case GDK_Control_L:
    case GDK_Control_R:
      return true;
    default:
      return false;
  }
}

// Whether the event may be one of the few that have an effect.
bool mayAct(const GdkEventKey& event) {
  return isInChord(event) || (event.keyval == GDK_Escape && modifiersOf(event) == 0);
}

gboolean close(GtkAccelGroup*, GObject* window) {
  g_signal_emit_by_name(window, "close");
  return TRUE;
}

}  // namespace

WindowKeys::WindowKeys(GtkDialog* dialog, void (*copy)())
    : window_(keep(GTK_WINDOW(dialog))), accelerators_(gtk_accel_group_new()), copy_(copy) {
  g_signal_connect(dialog, "key-press-event", G_CALLBACK(onKey), this);
  g_signal_connect(dialog, "key-release-event", G_CALLBACK(onKey), this);
  addAccelerator(GDK_Escape, kNoModifiers, G_CALLBACK(close));
  addAccelerator(GDK_F4, GDK_MOD1_MASK, G_CALLBACK(close));
  addAccelerator(
      GDK_C, GDK_CONTROL_MASK,
      G_CALLBACK(+[](GtkAccelGroup*, GObject*, guint, GdkModifierType, gpointer keys) -> gboolean {
        static_cast<WindowKeys*>(keys)->copy_();
        return TRUE;
      }));
  gtk_window_add_accel_group(window_.get(), accelerators_.get());
}

WindowKeys::~WindowKeys() {
  stopTimer();
  // A window that the host has destroyed has dropped the group already.
  GSList* const groups = gtk_accel_groups_from_object(G_OBJECT(window_.get()));
  if (g_slist_find(groups, accelerators_.get())) {
    gtk_window_remove_accel_group(window_.get(), accelerators_.get());
  }
  g_signal_handlers_disconnect_matched(window_.get(), G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr,
                                       this);
}

void WindowKeys::addAccelerator(guint key, GdkModifierType modifiers, GCallback callback) {
  gtk_accel_group_connect(accelerators_.get(), key, modifiers, static_cast<GtkAccelFlags>(0),
                          g_cclosure_new(callback, this, nullptr));
}

// No key reaches the widgets, whichever of them has the focus.
gboolean WindowKeys::onKey(GtkWidget*, GdkEventKey* event, gpointer keys) {
  static_cast<WindowKeys*>(keys)->takeKey(*event);
  return TRUE;
}

void WindowKeys::takeKey(const GdkEventKey& event) {
  if (press_ && LoneKeys::isAfterPause(press_->key.time, event.time)) actIfAlone();
  const bool mayBeAlone = loneKeys_.note({.time = event.time,
                                          .key = event.hardware_keycode,
                                          .isPress = event.type == GDK_KEY_PRESS,
                                          .isChordKey = isChordKey(event.keyval),
                                          .inChord = isInChord(event)});
  if (!mayBeAlone || !mayAct(event)) return;
  press_.reset(gdk_event_copy(reinterpret_cast<const GdkEvent*>(&event)));
  stopTimer();
  timer_ = gdk_threads_add_timeout_full(kTimerPriority, LoneKeys::kAfter, onTimer, this, nullptr);
}

gboolean WindowKeys::onTimer(gpointer data) {
  auto& keys = *static_cast<WindowKeys*>(data);
  // What the server sent during the pause may not have been read yet.
  gdk_display_sync(gtk_widget_get_display(GTK_WIDGET(keys.window_.get())));
  if (gdk_events_pending()) return G_SOURCE_CONTINUE;
  keys.timer_ = 0;
  keys.actIfAlone();
  return G_SOURCE_REMOVE;
}

void WindowKeys::stopTimer() {
  if (timer_ != 0) g_source_remove(timer_);
  timer_ = 0;
}

void WindowKeys::actIfAlone() {
  const auto press = std::move(press_);
  if (press && loneKeys_.isAlone()) gtk_window_activate_key(window_.get(), &press->key);
}

}  // namespace quorvel
