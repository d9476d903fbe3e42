#include "devices/KeyboardList.h"

#include <X11/extensions/XInput2.h>

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
  struct Freer {
    void operator()(XIDeviceInfo* devices) const { XIFreeDeviceInfo(devices); }
  };
  int count = 0;
  XIDeviceInfo* found = nullptr;
  connection.call([&](Display* display) { found = XIQueryDevice(display, id, &count); });
  const std::unique_ptr<XIDeviceInfo, Freer> devices(found);
  return devices && count > 0 && devices->enabled;
}

}  // namespace quorvel
