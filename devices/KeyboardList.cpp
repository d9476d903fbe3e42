#include "devices/KeyboardList.h"

#include <X11/extensions/XInput2.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "devices/XConnection.h"
#include "devices/XQueries.h"
#include "util/DeviceNames.h"

namespace quorvel {
namespace {

// Most devices share a few types, so ask for the name of each type once.
std::map<Atom, std::string> typeNames(const XConnection& connection, const XDeviceList& devices) {
  std::map<Atom, std::string> names;
  for (const XDeviceInfo& device : devices) {
    if (device.type != None) names.try_emplace(device.type);
  }
  std::vector<Atom> types;
  for (const auto& [type, name] : names) types.push_back(type);
  std::vector<std::string> answers = atomNames(connection, types);
  for (std::size_t i = 0; i < types.size(); ++i) names[types[i]] = std::move(answers[i]);
  return names;
}

// What XIQueryDevice tells of a device, or of all devices of a kind.
class DeviceDescriptions {
 public:
  DeviceDescriptions(const XConnection& connection, int id) {
    XIDeviceInfo* devices = nullptr;
    int count = 0;
    connection.call([&](Display* display) { devices = XIQueryDevice(display, id, &count); });
    devices_.reset(devices);
    count_ = devices ? count : 0;
  }

  const XIDeviceInfo* begin() const { return devices_.get(); }
  const XIDeviceInfo* end() const { return devices_.get() + count_; }

 private:
  struct Freer {
    void operator()(XIDeviceInfo* devices) const { XIFreeDeviceInfo(devices); }
  };
  int count_ = 0;
  std::unique_ptr<XIDeviceInfo, Freer> devices_;
};

}  // namespace

std::vector<XInputDevice> listXInputDevices(const XConnection& connection) {
  std::vector<XInputDevice> result;
  if (!connection) return result;
  const XDeviceList devices(connection);
  const std::map<Atom, std::string> typeNamesByAtom = typeNames(connection, devices);
  for (const XDeviceInfo& device : devices) {
    const std::string name = device.name ? device.name : "";
    const auto type = typeNamesByAtom.find(device.type);
    result.push_back({.id = static_cast<int>(device.id),
                      .rawName = name,
                      .name = settingsDeviceName(name),
                      .isKeyboard = type != typeNamesByAtom.end() && type->second == "KEYBOARD"});
  }
  return result;
}

bool isXInputDeviceEnabled(const XConnection& connection, int id) {
  const DeviceDescriptions devices(connection, id);
  return std::ranges::any_of(devices, [](const XIDeviceInfo& device) { return device.enabled; });
}

std::size_t countMasterKeyboards(const XConnection& connection) {
  const DeviceDescriptions devices(connection, XIAllMasterDevices);
  return static_cast<std::size_t>(std::ranges::count_if(
      devices, [](const XIDeviceInfo& device) { return device.use == XIMasterKeyboard; }));
}

void selectHierarchyEvents(const XConnection& connection) {
  unsigned char bits[XIMaskLen(XI_HierarchyChanged)] = {};
  XISetMask(bits, XI_HierarchyChanged);
  XIEventMask mask{.deviceid = XIAllDevices, .mask_len = sizeof(bits), .mask = bits};
  connection.call(
      [&](Display* display) { XISelectEvents(display, DefaultRootWindow(display), &mask, 1); });
}

}  // namespace quorvel
