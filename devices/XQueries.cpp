#include "devices/XQueries.h"

#include <X11/Xatom.h>

namespace quorvel {

XDeviceList::XDeviceList(const XConnection& connection) {
  XDeviceInfo* devices = nullptr;
  int count = 0;
  connection.call([&](Display* display) { devices = XListInputDevices(display, &count); });
  devices_.reset(devices);
  count_ = devices ? count : 0;
}

std::vector<std::string> atomNames(const XConnection& connection, std::span<const Atom> atoms) {
  std::vector<std::string> names(atoms.size());
  if (atoms.empty()) return names;
  std::vector<Atom> wanted(atoms.begin(), atoms.end());
  std::vector<char*> found(atoms.size(), nullptr);
  connection.call([&](Display* display) {
    XGetAtomNames(display, wanted.data(), static_cast<int>(wanted.size()), found.data());
  });
  for (std::size_t i = 0; i < found.size(); ++i) {
    const XOwned<char> name(found[i]);
    if (name) names[i] = name.get();
  }
  return names;
}

std::optional<Window> parentOf(const XConnection& connection, Window window) {
  Window root = None, parent = None, *children = nullptr;
  unsigned count = 0;
  Status status = 0;
  connection.call([&](Display* display) {
    status = XQueryTree(display, window, &root, &parent, &children, &count);
  });
  const XOwned<Window> owned(children);
  return status ? std::optional(parent) : std::nullopt;
}

CardinalProperty readCardinal(const XConnection& connection, Window window, Atom property) {
  Atom type = None;
  int format = 0;
  unsigned long count = 0, left = 0;
  unsigned char* data = nullptr;
  int status = BadWindow;
  connection.call([&](Display* display) {
    status = XGetWindowProperty(display, window, property, 0, 1, False, XA_CARDINAL, &type, &format,
                                &count, &left, &data);
  });
  const XOwned<unsigned char> owned(data);
  CardinalProperty result = {.windowExists = status == Success, .value = {}};
  if (result.windowExists && type == XA_CARDINAL && format == 32 && count > 0) {
    // Xlib gives 32-bit numbers as longs, whatever the width of a long.
    result.value = *reinterpret_cast<const unsigned long*>(data);
  }
  return result;
}

}  // namespace quorvel
