#include "platform/linux/qt/tray/status_notifier_menu.h"

#include <xkbcommon/xkbcommon.h>

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMetaType>
#include <QGuiApplication>
#include <algorithm>
#include <array>

namespace {

constexpr int kRoot = 0;

template <class... Fields>
QDBusArgument& write(QDBusArgument& argument, const Fields&... fields) {
  argument.beginStructure();
  (argument << ... << fields);
  argument.endStructure();
  return argument;
}

template <class... Fields>
const QDBusArgument& read(const QDBusArgument& argument, Fields&... fields) {
  argument.beginStructure();
  (argument >> ... >> fields);
  argument.endStructure();
  return argument;
}

// dbusmenu uses X11 keysym names.
QList<QStringList> shortcutOf(const QString& character) {
  std::array<char, 64> name{};
  xkb_keysym_get_name(xkb_utf32_to_keysym(character.front().unicode()), name.data(), name.size());
  return {{QStringLiteral("Control"), QString::fromLatin1(name.data())}};
}

// Omits properties with their default value.
QVariantMap propertiesOf(const QAction* action) {
  if (action == nullptr) return {{"children-display", "submenu"}};
  if (action->isSeparator()) return {{"type", "separator"}};
  QVariantMap properties;
  // "_" marks a mnemonic.
  properties["label"] = HLTrayMenu::titleOf(*action).replace('_', "__");
  const QString key = HLTrayMenu::keyEquivalentOf(*action);
  if (!key.isEmpty()) properties["shortcut"] = QVariant::fromValue(shortcutOf(key));
  if (action->isCheckable()) {
    properties["toggle-type"] = "checkmark";
    properties["toggle-state"] = action->isChecked() ? 1 : 0;
  }
  return properties;
}

QVariantMap only(const QStringList& names, const QVariantMap& properties) {
  if (names.isEmpty()) return properties;
  QVariantMap named;
  for (const QString& name : names) {
    if (properties.contains(name)) named[name] = properties[name];
  }
  return named;
}

void answerWithError(const QDBusMessage& message, const QString& text) {
  message.setDelayedReply(true);  // suppresses Qt's own reply
  QDBusConnection::sessionBus().send(message.createErrorReply(QDBusError::InvalidArgs, text));
}

void answerUnknown(const QDBusMessage& message) { answerWithError(message, "There is no item of that id"); }

}  // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const HLMenuLayout& layout) {
  return write(argument, layout.id, layout.properties, layout.children);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, HLMenuLayout& layout) {
  return read(argument, layout.id, layout.properties, layout.children);
}

QDBusArgument& operator<<(QDBusArgument& argument, const HLMenuProperties& item) {
  return write(argument, item.id, item.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, HLMenuProperties& item) {
  return read(argument, item.id, item.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const HLMenuPropertyNames& item) {
  return write(argument, item.id, item.names);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, HLMenuPropertyNames& item) {
  return read(argument, item.id, item.names);
}

QDBusArgument& operator<<(QDBusArgument& argument, const HLMenuEvent& event) {
  return write(argument, event.id, event.type, event.data, event.timestamp);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, HLMenuEvent& event) {
  return read(argument, event.id, event.type, event.data, event.timestamp);
}

HLStatusNotifierMenu::HLStatusNotifierMenu(HLTrayMenu* menu) : QDBusAbstractAdaptor(menu), menu_(*menu) {
  qDBusRegisterMetaType<HLMenuLayout>();
  qDBusRegisterMetaType<HLMenuProperties>();
  qDBusRegisterMetaType<QList<HLMenuProperties>>();
  qDBusRegisterMetaType<HLMenuPropertyNames>();
  qDBusRegisterMetaType<QList<HLMenuPropertyNames>>();
  qDBusRegisterMetaType<HLMenuEvent>();
  qDBusRegisterMetaType<QList<HLMenuEvent>>();
  qDBusRegisterMetaType<QList<QStringList>>();
  changes_.setSingleShot(true);
  connect(&changes_, &QTimer::timeout, this, [this] { tellChanges(); });
  items_.push_back({kRoot, nullptr, propertiesOf(nullptr)});
  for (QAction* action : menu->actions()) {
    items_.push_back({++lastId_, action, propertiesOf(action)});
    // Coalesces several changes into one signal.
    connect(action, &QAction::changed, &changes_, [this] { changes_.start(0); });
  }
}

QString HLStatusNotifierMenu::textDirection() { return QGuiApplication::isRightToLeft() ? "rtl" : "ltr"; }

const HLStatusNotifierMenu::Item* HLStatusNotifierMenu::find(int id) const {
  const auto found = std::find_if(items_.begin(), items_.end(), [id](const Item& item) { return item.id == id; });
  return found == items_.end() ? nullptr : &*found;
}

bool HLStatusNotifierMenu::tellChanges() {
  bool relaid = false;
  QList<HLMenuProperties> updated;
  for (Item& item : items_) {
    const QVariantMap now = propertiesOf(item.action);
    if (now == item.told) continue;
    // Some trays read an item's check mark only once, so a changed item gets a new id.
    if (now.contains("toggle-type") != item.told.contains("toggle-type")) {
      item.id = ++lastId_;
      relaid = true;
    } else {
      updated.append({item.id, now});
    }
    item.told = now;
  }
  if (relaid) Q_EMIT LayoutUpdated(++revision_, kRoot);
  if (!updated.isEmpty()) Q_EMIT ItemsPropertiesUpdated(updated, {});
  return relaid || !updated.isEmpty();
}

bool HLStatusNotifierMenu::handle(int id, const QString& type) const {
  const Item* item = find(id);
  if (item == nullptr) return false;
  if (item->action == nullptr || type != QLatin1String("clicked")) return true;
  // Posted, so that the reply is sent first: the action may open a modal dialog, and the tray would wait for it.
  QTimer::singleShot(0, item->action, &QAction::trigger);
  return true;
}

uint HLStatusNotifierMenu::GetLayout(int parentId, int recursionDepth, const QStringList& names,
                                     const QDBusMessage& message, HLMenuLayout& layout) {
  const Item* parent = find(parentId);
  if (parent == nullptr) {
    answerUnknown(message);
    return 0;
  }
  layout = {parent->id, only(names, parent->told), {}};
  if (parentId != kRoot || recursionDepth == 0) return revision_;
  for (const Item& item : items_) {
    if (item.id == kRoot) continue;
    layout.children.append(QVariant::fromValue(HLMenuLayout{item.id, only(names, item.told), {}}));
  }
  return revision_;
}

QList<HLMenuProperties> HLStatusNotifierMenu::GetGroupProperties(const QList<int>& ids, const QStringList& names) {
  QList<HLMenuProperties> group;
  for (const Item& item : items_) {
    if (ids.isEmpty() || ids.contains(item.id)) group.append({item.id, only(names, item.told)});
  }
  return group;
}

QDBusVariant HLStatusNotifierMenu::GetProperty(int id, const QString& name, const QDBusMessage& message) {
  const Item* item = find(id);
  if (item != nullptr && item->told.contains(name)) return QDBusVariant(item->told[name]);
  answerWithError(message, "There is no such item, or it has no such property");
  return {};
}

void HLStatusNotifierMenu::Event(int id, const QString& type, const QDBusVariant&, uint, const QDBusMessage& message) {
  if (!handle(id, type)) answerUnknown(message);
}

QList<int> HLStatusNotifierMenu::EventGroup(const QList<HLMenuEvent>& events, const QDBusMessage& message) {
  QList<int> unknownIds;
  for (const HLMenuEvent& event : events) {
    if (!handle(event.id, event.type)) unknownIds.append(event.id);
  }
  if (unknownIds.size() == events.size()) answerUnknown(message);
  return unknownIds;
}

bool HLStatusNotifierMenu::AboutToShow(int id, const QDBusMessage& message) {
  if (find(id) == nullptr) answerUnknown(message);
  if (id != kRoot) return false;
  menu_.refresh();
  return tellChanges();
}

QList<int> HLStatusNotifierMenu::AboutToShowGroup(const QList<int>& ids, const QDBusMessage& message,
                                                  QList<int>& unknownIds) {
  QList<int> changed;
  for (int id : ids) {
    if (find(id) == nullptr) unknownIds.append(id);
  }
  if (unknownIds.size() == ids.size()) {
    answerUnknown(message);
  } else if (ids.contains(kRoot) && AboutToShow(kRoot, message)) {
    changed.append(kRoot);
  }
  return changed;
}
