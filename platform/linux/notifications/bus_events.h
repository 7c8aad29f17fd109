// What messages of the session bus say about notifications.
#pragma once

#include <systemd/sd-bus.h>

#include <array>

#include "platform/linux/notifications/notification_table.h"

// What a monitor asks the bus for. A rule about NameOwnerChanged must not name the bus as sender: dbus-broker then
// reports nothing.
inline constexpr auto HLMonitorRules = std::to_array<const char*>({
    "type='method_call',interface='org.freedesktop.Notifications',member='Notify'",
    "type='method_call',interface='org.freedesktop.Notifications',member='CloseNotification'",
    "type='method_return',sender='org.freedesktop.Notifications'",
    "type='error',sender='org.freedesktop.Notifications'",
    "type='signal',interface='org.freedesktop.Notifications',member='NotificationClosed'",
    "type='signal',interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='org.freedesktop.Notifications'",
    "type='method_call',interface='org.gtk.Notifications'",
    "type='signal',interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='org.gtk.Notifications'",
});

// Feeds the table with a message that a monitor received. Only calls to the server and what the server itself sends
// count. Texts are copied, images are not. A message of another type or signature changes nothing.
void HLFeedTable(HLNotificationTable& table, sd_bus_message* message, HLNotificationTable::Time now);
