"""A UDisks2 that is told what is plugged in, for python3-dbusmock.

The test drives it through the interface org.freedesktop.DBus.Mock of its manager object.
"""

import dbus
from dbusmock import MOCK_IFACE
from dbusmock.mockobject import get_object, get_objects

BUS_NAME = "org.freedesktop.UDisks2"
MAIN_OBJ = "/org/freedesktop/UDisks2"
MAIN_IFACE = "org.freedesktop.UDisks2.Manager"
SYSTEM_BUS = True
IS_OBJECT_MANAGER = True

MANAGER_IFACE = "org.freedesktop.DBus.ObjectManager"
DRIVE_IFACE = "org.freedesktop.UDisks2.Drive"
BLOCK_IFACE = "org.freedesktop.UDisks2.Block"
FILESYSTEM_IFACE = "org.freedesktop.UDisks2.Filesystem"

calls = []
refusals = {}


def load(mock, parameters):
    pass


def drive_path(name):
    return MAIN_OBJ + "/drives/" + name


def block_path(name):
    return MAIN_OBJ + "/block_devices/" + name


def mount_points(paths):
    # Bytes with a zero at their end, as the real service sends them.
    return dbus.Array([dbus.ByteArray(path.encode("utf-8", "surrogateescape") + b"\0") for path in paths],
                      signature="ay")


def announce(manager, path):
    manager.EmitSignal(MANAGER_IFACE, "InterfacesAdded", "oa{sa{sv}}",
                       [dbus.ObjectPath(path), get_object(path).props])


def noted(name, action=None):
    """A method that is written down, refused if the test wants it so, and else has its effect."""

    def method(obj, options):
        calls.append(name + " " + obj.path.rsplit("/", 1)[1])
        if name in refusals:
            error, message = refusals[name]
            raise dbus.exceptions.DBusException(message, name=error)
        if action:
            action(obj)

    return (name, "a{sv}", "", method)


def unmount(obj):
    obj.UpdateProperties(FILESYSTEM_IFACE, {"MountPoints": mount_points([])})


@dbus.service.method(MOCK_IFACE, in_signature="sa{sv}", out_signature="")
def PlugDrive(self, name, properties):
    path = drive_path(name)
    self.AddObject(path, DRIVE_IFACE, properties, [noted("Eject"), noted("PowerOff")])
    announce(self, path)


@dbus.service.method(MOCK_IFACE, in_signature="sss", out_signature="")
def PlugBlock(self, name, drive, label):
    path = block_path(name)
    self.AddObject(path, BLOCK_IFACE,
                   {"Drive": dbus.ObjectPath(drive_path(drive)),
                    "CryptoBackingDevice": dbus.ObjectPath("/"),
                    "IdLabel": label,
                    "HintName": "",
                    "HintIgnore": False}, [])
    block = get_object(path)
    block.props[FILESYSTEM_IFACE] = {"MountPoints": mount_points([])}
    block.AddMethods(FILESYSTEM_IFACE, [noted("Unmount", unmount)])
    announce(self, path)


@dbus.service.method(MOCK_IFACE, in_signature="ss", out_signature="")
def Mount(self, name, mount_point):
    get_object(block_path(name)).UpdateProperties(FILESYSTEM_IFACE, {"MountPoints": mount_points([mount_point])})


@dbus.service.method(MOCK_IFACE, in_signature="s", out_signature="")
def Unplug(self, drive):
    """Takes a drive away with all on it, as somebody does who does not eject."""
    drive = drive_path(drive)
    blocks = [path for path in get_objects()
              if get_object(path).props.get(BLOCK_IFACE, {}).get("Drive") == drive]
    for path in [*blocks, drive]:
        interfaces = list(get_object(path).props.keys())
        self.RemoveObject(path)
        self.EmitSignal(MANAGER_IFACE, "InterfacesRemoved", "oas", [dbus.ObjectPath(path), interfaces])


@dbus.service.method(MOCK_IFACE, in_signature="sss", out_signature="")
def Refuse(self, method, error, message):
    refusals[method] = (error, message)


@dbus.service.method(MOCK_IFACE, in_signature="", out_signature="as")
def Calls(self):
    return calls
