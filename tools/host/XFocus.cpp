#include "tools/host/XFocus.h"

#include <X11/Xatom.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <memory>

namespace terminal {
namespace {

struct XFreer {
  void operator()(void* block) const { XFree(block); }
};

// The parent of a window; None for a root, and for a window that has gone.
Window parentOf(Display* display, Window window) {
  Window root = None;
  Window parent = None;
  Window* children = nullptr;
  unsigned count = 0;
  if (!XQueryTree(display, window, &root, &parent, &children, &count)) return None;
  const std::unique_ptr<Window, XFreer> freed(children);
  return parent;
}

// The process that a window names; 0 for none.
pid_t processOf(Display* display, Window window, Atom processId) {
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long left = 0;
  unsigned char* value = nullptr;
  if (XGetWindowProperty(display, window, processId, 0, 1, False, XA_CARDINAL, &type, &format,
                         &count, &left, &value) != Success) {
    return 0;
  }
  const std::unique_ptr<unsigned char, XFreer> freed(value);
  if (type != XA_CARDINAL || format != 32 || count != 1) return 0;
  return static_cast<pid_t>(*reinterpret_cast<const unsigned long*>(value));
}

// The window that a terminal names to the programs in it.
Window terminalWindow() {
  const char* const id = std::getenv("WINDOWID");
  return id ? std::strtoul(id, nullptr, 0) : None;
}

pid_t parentOf(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("PPid:")) return std::atoi(line.c_str() + 5);
  }
  return 0;
}

bool isOwnOrAncestor(pid_t process) {
  pid_t own = getpid();
  while (own > 0 && own != process) own = parentOf(own);
  return own == process;
}

std::string nameOf(pid_t process) {
  std::string name;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
  return name.empty() ? "?" : name;
}

}  // namespace

std::optional<FocusedProgram> programWithFocus(const XDisplay& display) {
  if (!display) return std::nullopt;
  Window window = None;
  int ignored = 0;
  XGetInputFocus(display.get(), &window, &ignored);
  if (window == None || window == PointerRoot) return std::nullopt;
  const Atom processId = XInternAtom(display.get(), "_NET_WM_PID", True);
  if (processId == None) return std::nullopt;
  const Window terminal = terminalWindow();
  // As the component does, from the window above the one with the focus.
  for (; window != None; window = parentOf(display.get(), window)) {
    if (window == terminal) return std::nullopt;
    const Window above = parentOf(display.get(), window);
    const pid_t process = above == None ? 0 : processOf(display.get(), above, processId);
    if (process == 0) continue;
    if (isOwnOrAncestor(process)) return std::nullopt;
    return FocusedProgram{process, nameOf(process)};
  }
  return std::nullopt;
}

}  // namespace terminal
