#include "Platform/Linux/BlockDevice.h"

#include "Platform/Files/Files.h"

#include <fmt/format.h>
#include <libudev.h>

#include <memory>
#include <string_view>
#include <sys/sysmacros.h>

namespace tarvik::BlockDevice {

namespace {

struct Release {
    void operator()(udev* handle) const { udev_unref(handle); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
};
using Device = std::unique_ptr<udev_device, Release>;

// Devices stand on devices (encryption on a striped volume on disks): no real stack is deeper.
constexpr int deepestStack = 16;

std::string_view textOf(const char* text) {
    return text ? std::string_view(text) : std::string_view{};
}

std::optional<int> hexDigit(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return std::nullopt;
}

/// The database writes what is unsafe in a label as "\x20".
std::string decoded(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text.substr(at).starts_with("\\x") && at + 3 < text.size()) {
            const auto high = hexDigit(text[at + 2]);
            const auto low = hexDigit(text[at + 3]);
            if (high && low) {
                result += static_cast<char>(*high * 16 + *low);
                at += 3;
                continue;
            }
        }
        result += text[at];
    }
    return result;
}

/// Whether a bus on the way to the disk marks its device as one that can be unplugged, as it does behind a Thunderbolt
/// socket.
bool hangsOnRemovableDevice(udev_device* disk) {
    for (udev_device* step = udev_device_get_parent(disk); step; step = udev_device_get_parent(step))
        if (textOf(udev_device_get_sysattr_value(step, "removable")) == "removable") return true;
    return false;
}

DiskFacts factsOfDisk(udev_device* disk) {
    udev_device* card = udev_device_get_parent_with_subsystem_devtype(disk, "mmc", nullptr);
    return {.devicePath = std::string(textOf(udev_device_get_devpath(disk))),
            .bus = std::string(textOf(udev_device_get_property_value(disk, "ID_BUS"))),
            .cardType = card ? std::string(textOf(udev_device_get_sysattr_value(card, "type"))) : std::string{},
            .hasRemovableMedium = textOf(udev_device_get_sysattr_value(disk, "removable")) == "1",
            .hangsOnRemovableDevice = hangsOnRemovableDevice(disk)};
}

/// Adds the disks that `device` stands on: itself, the disk that it is a part of, or those below a made device.
void addDisks(udev* database, udev_device* device, std::vector<DiskFacts>& disks, int depth) {
    if (depth > deepestStack) return;
    const fs::path below = fs::path(textOf(udev_device_get_syspath(device))) / "slaves";
    const auto names = Files::names(below);
    for (const std::string& name : names)
        if (const Device next{udev_device_new_from_subsystem_sysname(database, "block", name.c_str())})
            addDisks(database, next.get(), disks, depth + 1);
    if (!names.empty()) return;

    const bool isPart = textOf(udev_device_get_devtype(device)) == "partition";
    udev_device* disk = isPart ? udev_device_get_parent_with_subsystem_devtype(device, "block", "disk") : device;
    if (disk) disks.push_back(factsOfDisk(disk));
}

}  // namespace

Facts read(std::uint64_t deviceNumber) {
    const std::unique_ptr<udev, Release> database(udev_new());
    if (!database) return {};
    const Device device(udev_device_new_from_devnum(database.get(), 'b', deviceNumber));
    if (!device) return {};

    Facts facts;
    if (const char* label = udev_device_get_property_value(device.get(), "ID_FS_LABEL_ENC"))
        facts.label = decoded(label);
    if (const char* identifier = udev_device_get_property_value(device.get(), "ID_FS_UUID_ENC"))
        facts.identifier = decoded(identifier);
    facts.contentType = textOf(udev_device_get_property_value(device.get(), "ID_FS_TYPE"));
    facts.isLoopDevice = textOf(udev_device_get_sysname(device.get())).starts_with("loop");
    addDisks(database.get(), device.get(), facts.disks, 0);
    return facts;
}

}  // namespace tarvik::BlockDevice
