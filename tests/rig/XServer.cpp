#include "tests/rig/XServer.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace rig {
namespace {

// The program itself, not the wrapper that asks who is logged in at the console.
constexpr char kServer[] = "/usr/lib/xorg/Xorg";

constexpr char kScreenConfiguration[] = R"(Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoEnableDevices" "true"
  Option "DontVTSwitch" "true"
EndSection
Section "Device"
  Identifier "memory"
  Driver "dummy"
  VideoRam 16384
EndSection
Section "Monitor"
  Identifier "monitor"
  HorizSync 5.0 - 1000.0
  VertRefresh 5.0 - 200.0
EndSection
Section "Screen"
  Identifier "screen"
  Device "memory"
  Monitor "monitor"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Modes "1024x768"
  EndSubSection
EndSection
)";

std::string inputDeviceSection(const std::string& name, const std::string& socket,
                               const std::string& type) {
  return "Section \"InputDevice\"\n  Identifier \"" + name + "\"\n  Driver \"inputtest\"\n" +
         "  Option \"DeviceType\" \"" + type + "\"\n  Option \"SocketPath\" \"" + socket +
         "\"\nEndSection\n";
}

// The line that the server writes when it is ready: its display number. Empty when it ends instead.
std::string readLine(int descriptor) {
  std::string line;
  char byte = 0;
  while (read(descriptor, &byte, 1) == 1 && byte != '\n') line += byte;
  return byte == '\n' ? line : std::string();
}

// Starts a program that is ended with this thread, inherits one descriptor, and writes to a file.
pid_t launch(const std::vector<std::string>& command, const std::string& output, int inherited) {
  std::vector<char*> arguments;
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  const pid_t pid = fork();
  if (pid != 0) return pid;
  // Only system calls from here on: another thread may have held any lock when the process forked.
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  dup2(file, STDOUT_FILENO);
  dup2(file, STDERR_FILENO);
  fcntl(inherited, F_SETFD, 0);
  execv(arguments[0], arguments.data());
  _exit(127);
}

// A socket at the display's address on which nobody listens: clients are refused, and no server can
// have the number. None if another server has it already.
quorvel::FileDescriptor takeDisplay(const std::string& display) {
  quorvel::FileDescriptor taken(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  const std::string name = "/tmp/.X11-unix/X" + display.substr(1);
  name.copy(address.sun_path + 1, name.size());  // an abstract name begins with a zero
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
  if (bind(taken.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0) return {};
  return taken;
}

}  // namespace

XServer::XServer(const std::vector<std::string>& keyboards) {
  writeConfiguration(keyboards);
  start();
  setLayout();
}

XServer::~XServer() {
  connected_.clear();
  end(SIGTERM);
}

terminal::VirtualKeyboard& XServer::keyboard(std::size_t index) {
  auto& connection = connected_[index];
  if (!connection) connection = terminal::connectInputTestKeyboard(keyboardSocket(index));
  return *connection;
}

void XServer::reconnectKeyboard(std::size_t index) {
  connected_.erase(index);
  keyboard(index);
}

std::string XServer::keyboardSocket(std::size_t index) const {
  return directory_ / ("keyboard" + std::to_string(index));
}

bool XServer::kill() {
  if (pid_ > 0) {
    end(SIGKILL);
    takenNumber_ = takeDisplay(display_);
  }
  return static_cast<bool>(takenNumber_);
}

void XServer::pause() const { ::kill(pid_, SIGSTOP); }

void XServer::goOn() const { ::kill(pid_, SIGCONT); }

std::string XServer::log() const {
  std::ifstream file(directory_ / "log");
  return {std::istreambuf_iterator<char>(file), {}};
}

void XServer::writeConfiguration(const std::vector<std::string>& keyboards) const {
  std::filesystem::create_directory(directory_ / "no-more-configuration");
  std::ofstream file(directory_ / "xorg.conf");
  std::string layout =
      "Section \"ServerLayout\"\n  Identifier \"layout\"\n  Screen \"screen\"\n"
      "  InputDevice \"Rig pointer\" \"CorePointer\"\n";
  file << kScreenConfiguration
       << inputDeviceSection("Rig pointer", directory_ / "pointer", "Pointer");
  for (std::size_t i = 0; i < keyboards.size(); ++i) {
    file << inputDeviceSection(keyboards[i], keyboardSocket(i), "Keyboard");
    layout += "  InputDevice \"" + keyboards[i] + "\" \"SendCoreEvents\"\n";
  }
  file << layout << "EndSection\n";
}

void XServer::start() {
  int ready[2];
  if (pipe2(ready, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const std::vector<std::string> command = {kServer,
                                            "-displayfd",
                                            std::to_string(ready[1]),
                                            "-config",
                                            directory_ / "xorg.conf",
                                            "-configdir",
                                            directory_ / "no-more-configuration",
                                            "-logfile",
                                            directory_ / "log",
                                            "-noreset",
                                            "-nolisten",
                                            "tcp",
                                            "-novtswitch",
                                            "-sharevts",
                                            "vt7",
                                            "-ac"};
  pid_ = launch(command, directory_ / "output", ready[1]);
  close(ready[1]);
  const std::string number = readLine(ready[0]);
  close(ready[0]);
  if (number.empty()) {
    end(SIGKILL);
    throw std::runtime_error("the X server did not start:\n" + log());
  }
  display_ = ":" + number;
}

// As desktop sessions do: the server itself starts with an outdated key code table.
void XServer::setLayout() const {
  const std::string command =
      "setxkbmap -display " + display_ + " -rules evdev -model pc105 -layout us";
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

void XServer::end(int signal) {
  if (pid_ <= 0) return;
  ::kill(pid_, signal);
  goOn();
  waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

}  // namespace rig
