// A window with a component's settings form, as a host may show it.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "tools/common/FormDocument.h"

namespace rig {

// Shows the form while this port is chosen: parameters that belong to another one are left out, and
// every other value is the default. The window is the caller's to destroy.
GtkWidget* showForm(const std::vector<terminal::FormPage>& pages, const std::string& port);

}  // namespace rig
