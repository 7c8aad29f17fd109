// Tables of the platform's services.
#include <array>
#include <string>

#include "platform/sim/scene/scene_builder.h"
#include "platform/sim/scene/scene_table.h"
#include "platform/sim/scene/scene_types.h"

namespace {

using Builder = HLSceneBuilder;
using Spot = HLSceneSpot;

constexpr std::array<HLSceneWord<HLScenePermission>, 3> kPermissions = {{{"granted", HLScenePermission::granted},
                                                                         {"denied", HLScenePermission::denied},
                                                                         {"silent", HLScenePermission::silent}}};

void readRefusedHotKeys(Builder& builder, const Spot& spot, HLSceneServices& services) {
  for (const Spot& refused : builder.members(spot)) {
    builder.readObject(refused, services.refusedHotKeys.emplace_back());
  }
}

void readHTTP(Builder& builder, const Spot& spot, HLSceneServices& services) {
  for (const Spot& entry : builder.entries(spot)) {
    HLSceneHTTPAnswer& answer = services.http.emplace_back();
    answer.path = builder.keyText(entry);
    builder.expectKeys(entry, HLKeysOf(&answer));
    const HLJson& json = *entry.json;
    if (json.contains("error") == (json.contains("status") || json.contains("body"))) {
      builder.fail(entry, "expected \"status\" and \"body\", or \"error\"");
    }
    builder.readObject(entry, answer);
  }
}

constexpr HLSceneKey<HLSceneServices> kServices[] = {
    {"grantOnPrompt", HLSceneBoolean<&HLSceneServices::grantOnPrompt>, "false",
     "a trust request with the prompt grants trust once the run loop is idle"},
    {"opens", HLSceneTexts<&HLSceneServices::opens>, "all", "prefixes of the addresses that the workspace can open"},
    {"alertAnswers", HLSceneTexts<&HLSceneServices::alertAnswers>, "the first button",
     "button titles, one per alert, in the order in which alerts are shown"},
    {"refusedHotKeys", {"list of objects", readRefusedHotKeys}, "[]", "hot keys that cannot be registered"},
    {"loginItem", HLSceneTable<&HLSceneServices::loginItem>("object"), "{}", "opening at login"},
    {"userNotifications", HLSceneTable<&HLSceneServices::userNotifications>("object"), "{}",
     "notifications that the program posts"},
    {"http", {"path to answer", readHTTP}, "{}", "answers by the path of the address; other requests fail at once"},
};

constexpr HLSceneKey<HLSceneRefusedHotKey> kRefusedHotKey[] = {
    {"code", HLSceneKeyCode<&HLSceneRefusedHotKey::code>, "required", "virtual key code"},
    {"modifiers", HLSceneModifiers<&HLSceneRefusedHotKey::modifiers>, "[]"},
    {"status", HLSceneCode<&HLSceneRefusedHotKey::status>, "required", "what registering gives; 0 refuses nothing"},
};

constexpr HLSceneKey<HLSceneLoginItem> kLoginItem[] = {
    {"status", HLSceneInteger<&HLSceneLoginItem::status, 0, 3>("integer 0 to 3"), "0",
     "at the start: 0 not registered, 1 enabled, 2 waiting for approval, 3 not found"},
    {"statusAfterRegister", HLSceneInteger<&HLSceneLoginItem::statusAfterRegister, 0, 3>("integer 0 to 3"), "1",
     "the status after registering; unregistering leads to 0"},
    {"registerError", HLSceneTextOrNull<&HLSceneLoginItem::registerError>, "null",
     "registering fails with this text and leaves the status"},
    {"unregisterError", HLSceneTextOrNull<&HLSceneLoginItem::unregisterError>, "null",
     "unregistering fails with this text and leaves the status"},
};

void readAddErrors(Builder& builder, const Spot& spot, HLSceneUserNotifications& service) {
  for (const Spot& entry : builder.entries(spot)) {
    service.addErrors.emplace_back(builder.keyText(entry), builder.string(entry));
  }
}

constexpr HLSceneKey<HLSceneUserNotifications> kUserNotifications[] = {
    {"permission",
     {R"("granted", "denied" or "silent")",
      [](Builder& builder, const Spot& spot, HLSceneUserNotifications& service) {
        service.permission = builder.choice(spot, kPermissions);
      }},
     R"("granted")",
     "the answer to the request for permission; \"silent\" never answers"},
    {"error", HLSceneTextOrNull<&HLSceneUserNotifications::error>, "null", "error that comes with the answer"},
    {"addErrors",
     {"identifier to string", readAddErrors},
     "{}",
     "notifications that cannot be added, each with the error"},
};

// A request succeeds with this status unless the answer says otherwise.
constexpr HLSceneKey<HLSceneHTTPAnswer> kHTTPAnswer[] = {
    {"seconds", HLSceneSeconds<&HLSceneHTTPAnswer::seconds>, "0",
     "delay of the answer; a request that takes more than the program's 15 s fails then"},
    {"error",
     {"string",
      [](Builder& builder, const Spot& spot, HLSceneHTTPAnswer& made) {
        (void)builder.string(spot);
        made.answer = {};
      }},
     "none",
     "the request fails; not with `status` or `body`"},
    {"status",
     {"integer 0 to 999", [](Builder& builder, const Spot& spot,
                             HLSceneHTTPAnswer& made) { made.answer.status = builder.integer(spot, 0, 999); }},
     "200",
     ""},
    {"body",
     {"string",
      [](Builder& builder, const Spot& spot, HLSceneHTTPAnswer& made) { made.answer.body = builder.string(spot); }},
     "\"\"",
     ""},
};

}  // namespace

HLSceneKeys<HLSceneServices> HLKeysOf(const HLSceneServices*) { return kServices; }
HLSceneKeys<HLSceneRefusedHotKey> HLKeysOf(const HLSceneRefusedHotKey*) { return kRefusedHotKey; }
HLSceneKeys<HLSceneLoginItem> HLKeysOf(const HLSceneLoginItem*) { return kLoginItem; }
HLSceneKeys<HLSceneUserNotifications> HLKeysOf(const HLSceneUserNotifications*) { return kUserNotifications; }
HLSceneKeys<HLSceneHTTPAnswer> HLKeysOf(const HLSceneHTTPAnswer*) { return kHTTPAnswer; }
