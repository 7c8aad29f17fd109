// What is wrong with a scene, and where.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/platform/sim/scene_desktop.h"

namespace {

struct Mistake {
  const char* scene;
  const char* message;
};

void expectRefusals(std::initializer_list<Mistake> mistakes) {
  for (const Mistake& mistake : mistakes) EXPECT_EQ(SceneError(mistake.scene), mistake.message) << mistake.scene;
}

TEST(Scene, LocatesMistakesAtTheTopLevel) {
  expectRefusals({{"[]", "scene.json: top level: expected an object"},
                  {R"({"aplications": []})", "scene.json: aplications: unknown key"},
                  {R"({"applications": {}})", "scene.json: applications: expected a list"},
                  {R"({"trusted": 1})", "scene.json: trusted: expected true or false"},
                  {R"({"clock": "slow"})", R"(scene.json: clock: expected "virtual" or "real")"},
                  {R"({"bundle": {"name": "x"}})", "scene.json: bundle.name: unknown key"},
                  {R"({"bundle": {"path": 1}})", "scene.json: bundle.path: expected a string"},
                  {R"({"bundle": {"info": []}})", "scene.json: bundle.info: expected an object"},
                  {R"({"arguments": ["a", 1]})", "scene.json: arguments[1]: expected a string"},
                  {R"({"home": null})", "scene.json: home: expected a string"},
                  {R"({"applicationSupport": 1})", "scene.json: applicationSupport: expected a string or null"},
                  {R"({"parent": 0})", "scene.json: parent: expected an integer from 1 to 2147483647"},
                  {R"({"propertyLists": []})", "scene.json: propertyLists: expected an object"},
                  {R"({"defaults": 1})", "scene.json: defaults: expected an object"},
                  {R"({"record": true})", "scene.json: record: expected a string"},
                  {R"({"services": {"mail": 1}})", "scene.json: services.mail: unknown key"}});
}

TEST(Scene, LocatesMistakesInTheJson) {
  expectRefusals({{"",
                   "scene.json: line 1, column 1: syntax error while parsing value - unexpected end of input; "
                   "expected '[', '{', or a literal"},
                  {"{\n  \"trusted\": tru}",
                   "scene.json: line 2, column 17: syntax error while parsing value - "
                   "invalid literal; last read: '\"trusted\": tru}'"},
                  {R"({"trusted": true, "trusted": true})", "scene.json: trusted: this key is given twice"},
                  {R"({"applications": [{}, {"windows": [{"id": "a", "id": "b"}]}]})",
                   "scene.json: applications[1].windows[0].id: this key is given twice"},
                  {"{\"a\nb\": 1}",
                   "scene.json: line 2, column 0: syntax error while parsing object key - invalid string: "
                   "control character U+000A (LF) must be escaped to \\u000A or \\n; last read: "
                   "'\"a<U+000A>'; expected string literal"},
                  {R"({"a\nb": 1})", R"(scene.json: a\nb: unknown key)"}});
}

TEST(Scene, LocatesMistakesInApplications) {
  expectRefusals(
      {{R"({"applications": [1]})", "scene.json: applications[0]: expected an object"},
       {R"({"applications": [{}]})", "scene.json: applications[0]: \"pid\" is missing"},
       {R"({"applications": [{"pid": 0}]})",
        "scene.json: applications[0].pid: expected an integer from 1 to 2147483647"},
       {R"({"applications": [{"pid": 2147483648}]})",
        "scene.json: applications[0].pid: expected an integer from 1 to 2147483647"},
       {R"({"applications": [{"pid": 18446744073709551615}]})",
        "scene.json: applications[0].pid: expected an integer from 1 to 2147483647"},
       {R"({"applications": [{"pid": 4.5}]})",
        "scene.json: applications[0].pid: expected an integer from 1 to 2147483647"},
       {R"({"applications": [{"pid": 4}, {"pid": 4}]})",
        "scene.json: applications[1].pid: another application has this pid"},
       {R"({"applications": [{"pid": 4, "title": "x"}]})", "scene.json: applications[0].title: unknown key"},
       {R"({"applications": [{"pid": 4, "name": 1}]})", "scene.json: applications[0].name: expected a string"},
       {R"({"applications": [{"pid": 4, "lingers": -1}]})",
        "scene.json: applications[0].lingers: expected seconds, 0 or more"},
       {R"({"applications": [{"pid": 4, "registerErrors": {"AXCreated": "x"}}]})",
        "scene.json: applications[0].registerErrors.AXCreated: expected an integer from -2147483648 to "
        "2147483647"},
       {R"({"applications": [{"pid": 4, "relaunch": {"after": 1}}]})",
        "scene.json: applications[0].relaunch: \"application\" is missing"},
       {R"({"applications": [{"pid": 4, "relaunch": {"application": {"pid": 5, "windows": [{"x": 1}]}}}]})",
        "scene.json: applications[0].relaunch.application.windows[0].x: unknown key"}});
}

#define WINDOW(members) R"({"applications": [{"pid": 4}, {"pid": 5, "windows": [{}, )" members "]}]}"
#define AT_WINDOW "scene.json: applications[1].windows[1]"

TEST(Scene, LocatesMistakesInElements) {
  expectRefusals(
      {{WINDOW(R"({"frame": [1, 2, 3]})"), AT_WINDOW ".frame: expected four numbers"},
       {WINDOW(R"({"frame": [1, 2, 3, "4"]})"), AT_WINDOW ".frame: expected four numbers"},
       {WINDOW(R"({"rôle": "x"})"), AT_WINDOW ".rôle: unknown key"},
       {WINDOW(R"({"role": 1})"), AT_WINDOW ".role: expected a string"},
       {WINDOW(R"({"value": []})"), AT_WINDOW ".value: expected a string, a number, true or false"},
       {WINDOW(R"({"children": {}})"), AT_WINDOW ".children: expected a list"},
       {WINDOW(R"({"rows": [1, {"title": 1}]})"), AT_WINDOW ".rows[1].title: expected a string"},
       {WINDOW(R"({"children": [{"children": [{"visibleChildren": [{"id": 1}]}]}]})"),
        AT_WINDOW ".children[0].children[0].visibleChildren[0].id: expected a string"},
       {WINDOW(R"({"attributes": {"AXParent": {"ref": "x"}}})"),
        AT_WINDOW ".attributes.AXParent.ref: no element has the id \"x\""},
       {WINDOW(R"({"attributes": {"AXList": [[{"ref": "x"}]]}})"),
        AT_WINDOW ".attributes.AXList[0][0].ref: no element has the id \"x\""},
       {WINDOW(R"({"attributes": {"AXOther": {"element": {"tilte": ""}}}})"),
        AT_WINDOW ".attributes.AXOther.element.tilte: unknown key"},
       {WINDOW(R"({"attributes": {"AXOther": {"element": {"repeat": 2}}}})"),
        AT_WINDOW ".attributes.AXOther.element.repeat: only in a list of members"},
       {WINDOW(R"({"attributes": {"AXPosition": {"point": [1]}}})"),
        AT_WINDOW ".attributes.AXPosition.point: expected two numbers"},
       {WINDOW(R"({"attributes": {"AXSize": {"size": 1}}})"),
        AT_WINDOW ".attributes.AXSize.size: expected two numbers"},
       {WINDOW(R"({"children": [{"ref": "x"}]})"), AT_WINDOW ".children[0].ref: no element has the id \"x\""},
       {WINDOW(R"({"children": [{"ref": 1}]})"), AT_WINDOW ".children[0].ref: expected an element's id"},
       {WINDOW(R"({"id": "a", "children": [{"id": "a"}]})"), AT_WINDOW ".children[0].id: the id \"a\" is given twice"},
       {WINDOW(R"({"actions": "AXPress"})"), AT_WINDOW ".actions: expected a list"},
       {WINDOW(R"({"errors": {"AXRole": 1.5}})"),
        AT_WINDOW ".errors.AXRole: expected an integer from -2147483648 to 2147483647"},
       {WINDOW(R"({"closes": "x"})"), AT_WINDOW ".closes: no element has the id \"x\""},
       {WINDOW(R"({"freshHandles": "yes"})"), AT_WINDOW ".freshHandles: expected true or false"},
       {WINDOW(R"({"onAction": {"AXPress": {"later": 1}}})"), AT_WINDOW ".onAction.AXPress.later: unknown key"},
       {WINDOW(R"({"onAction": {"AXPress": {"effects": [{"remove": "x"}]}}})"),
        AT_WINDOW ".onAction.AXPress.effects[0].remove: no element has the id \"x\""},
       {WINDOW(R"({"onAction": {"AXPress": {"effects": [{"at": 1, "quit": 4}]}}})"),
        AT_WINDOW ".onAction.AXPress.effects[0].at: unknown key"},
       {WINDOW(R"({"repeat": -1})"), AT_WINDOW ".repeat: expected an integer from 0 to 100000"},
       {WINDOW(R"({"repeat": 2, "id": "a"})"), AT_WINDOW ".id: an id in a repeated member must hold \"{n}\""},
       {WINDOW(R"({"repeat": 1, "children": [{"id": "a"}]})"),
        AT_WINDOW ".children[0].id: an id in a repeated member must hold \"{n}\""},
       {WINDOW(R"({"repeat": 1, "children": [{"repeat": 1}]})"),
        AT_WINDOW ".children[0].repeat: not inside another repeat"},
       {WINDOW(R"({"repeat": 2, "children": [{"ref": "a{n}"}]})"),
        AT_WINDOW ".children[0].ref: no element has the id \"a1\""}});
}

#define EVENT(event) \
  R"({"applications": [{"pid": 5, "windows": [{"id": "w"}]}], "timeline": [{"at": 0, "quit": 9}, )" event "]}"
#define AT_EVENT "scene.json: timeline[1]"

TEST(Scene, LocatesMistakesInTheTimeline) {
  expectRefusals(
      {{EVENT("5"), AT_EVENT ": expected an object"},
       {EVENT(R"({"quit": 5})"), AT_EVENT ": \"at\" is missing"},
       {EVENT(R"({"at": -0.1, "quit": 5})"), AT_EVENT ".at: expected seconds, 0 or more"},
       {EVENT(R"({"at": 0})"), AT_EVENT ": expected exactly one event"},
       {EVENT(R"({"at": 0, "quit": 5, "trust": true})"), AT_EVENT ": expected exactly one event"},
       {EVENT(R"({"at": 0, "quit": 5, "to": "w"})"), AT_EVENT ".to: unknown key"},
       {EVENT(R"({"at": 0, "add": {}})"), AT_EVENT ": \"to\" is missing"},
       {EVENT(R"({"at": 0, "add": {}, "to": "x"})"), AT_EVENT ".to: no element has the id \"x\""},
       {EVENT(R"({"at": 0, "add": {}, "to": "w", "under": "windows"})"),
        AT_EVENT ".to: expected an integer from 1 to 2147483647"},
       {EVENT(R"({"at": 0, "add": {}, "to": 5})"), AT_EVENT ".to: expected an element's id"},
       {EVENT(R"({"at": 0, "add": {}, "to": "w", "under": "columns"})"),
        AT_EVENT R"(.under: expected "children", "rows", "visibleChildren" or "windows")"},
       {EVENT(R"({"at": 0, "add": {"id": "w"}, "to": "w"})"), AT_EVENT ".add.id: the id \"w\" is given twice"},
       {EVENT(R"({"at": 0, "add": {"kind": "w"}, "to": "w"})"), AT_EVENT ".add.kind: unknown key"},
       {EVENT(R"({"at": 0, "add": {}, "to": "w", "first": 1})"), AT_EVENT ".first: expected true or false"},
       {EVENT(R"({"at": 0, "set": "w", "value": 1})"), AT_EVENT ": \"attribute\" is missing"},
       {EVENT(R"({"at": 0, "set": "w", "attribute": "AXTitle"})"), AT_EVENT ": \"value\" is missing"},
       {EVENT(R"({"at": 0, "set": "w", "attribute": "actions", "value": "AXPress"})"),
        AT_EVENT ".value: expected a list"},
       {EVENT(R"({"at": 0, "notify": "AXCreated"})"), AT_EVENT ": \"element\" is missing"},
       {EVENT(R"({"at": 0, "notify": 1, "element": "w"})"), AT_EVENT ".notify: expected a string"},
       {EVENT(R"({"at": 0, "launch": {"pid": "5"}})"),
        AT_EVENT ".launch.pid: expected an integer from 1 to 2147483647"},
       {EVENT(R"({"at": 0, "trust": 1})"), AT_EVENT ".trust: expected true or false"}});
}

TEST(Scene, LocatesMistakesInUserEvents) {
  expectRefusals(
      {{EVENT(R"({"at": 0, "click": "middle"})"), AT_EVENT R"(.click: expected "left", "right" or "none")"},
       {EVENT(R"({"at": 0, "click": "left", "modifiers": ["hyper"]})"),
        AT_EVENT R"(.modifiers[0]: expected "shift", "control", "option", "command", "capsLock" or "function")"},
       {EVENT(R"({"at": 0, "choose": 1})"), AT_EVENT ".choose: expected a string"},
       {EVENT(R"({"at": 0, "openMenu": false})"), AT_EVENT ".openMenu: expected true"},
       {EVENT(R"({"at": 0, "shortcut": {"modifiers": []}})"), AT_EVENT ".shortcut: \"code\" is missing"},
       {EVENT(R"({"at": 0, "shortcut": {"code": 1, "characters": "n"}})"),
        AT_EVENT ".shortcut.characters: unknown key"},
       {EVENT(R"({"at": 0, "hotKey": {"signature": "HLhk"}})"), AT_EVENT ".hotKey: \"id\" is missing"},
       {EVENT(R"({"at": 0, "key": {"code": "n"}})"), AT_EVENT ".key.code: expected an integer from 0 to 65535"},
       {EVENT(R"({"at": 0, "press": "OK", "window": 1})"), AT_EVENT ".window: expected a string"},
       {EVENT(R"({"at": 0, "closeWindow": true})"), AT_EVENT ".closeWindow: expected a string"},
       {EVENT(R"({"at": 0, "dump": null})"), AT_EVENT ".dump: expected a string"},
       {EVENT(R"({"at": 0, "terminate": "now"})"), AT_EVENT ".terminate: expected true"}});
}

TEST(Scene, LocatesMistakesInServices) {
  expectRefusals(
      {{R"({"services": {"grantOnPrompt": 1}})", "scene.json: services.grantOnPrompt: expected true or false"},
       {R"({"services": {"opens": "http"}})", "scene.json: services.opens: expected a list"},
       {R"({"services": {"refusedHotKeys": [{"code": 1}]}})",
        "scene.json: services.refusedHotKeys[0]: \"status\" is missing"},
       {R"({"services": {"loginItem": {"status": 4}}})",
        "scene.json: services.loginItem.status: expected an integer from 0 to 3"},
       {R"({"services": {"loginItem": {"registerError": 4}}})",
        "scene.json: services.loginItem.registerError: expected a string or null"},
       {R"({"services": {"userNotifications": {"permission": "no"}}})",
        R"(scene.json: services.userNotifications.permission: expected "granted", "denied" or "silent")"},
       {R"({"services": {"userNotifications": {"addErrors": {"a": 1}}}})",
        "scene.json: services.userNotifications.addErrors.a: expected a string"},
       {R"({"services": {"http": {"/feed": {"status": 200, "error": "x"}}}})",
        R"(scene.json: services.http./feed: expected "status" and "body", or "error")"},
       {R"({"services": {"http": {"/feed": {"status": 200, "body": 1}}}})",
        "scene.json: services.http./feed.body: expected a string"},
       {R"({"services": {"alertAnswers": [1]}})", "scene.json: services.alertAnswers[0]: expected a string"}});
}

TEST(Scene, AcceptsEveryKey) {
  EXPECT_EQ(SceneError(R"({
    "applications": [{"pid": 5, "bundleIdentifier": "b", "name": "n", "windows": null, "terminated": false,
      "lingers": 0.5, "ignoresTerminate": true, "elementFails": false, "observerFails": false,
      "registerErrors": {"AXCreated": -25207}, "relaunch": {"after": 1.5, "application": {"pid": 6}}},
      {"pid": 7, "windows": [{"id": "w", "frame": [0, -1.5, 2, 3e2], "onAction": {"AXPress": {"error": -1,
        "seconds": 1, "after": 2, "effects": [{"remove": "w"}, {"trust": false}]}}}, "text", 1, null, [], {"ref": "w"}]}],
    "trusted": true, "clock": "virtual", "arguments": ["--daemon"], "home": "/home/x", "applicationSupport": null,
    "bundle": {"path": "/A.app", "executablePath": "/A.app/a", "identifier": "i", "info": {"a": [1, {"b": null}]}},
    "parent": 5, "propertyLists": {"/a.plist": {"Label": "x"}}, "defaults": {"HLHotKeyCode": 4},
    "services": {"grantOnPrompt": true, "opens": ["https:"],
      "refusedHotKeys": [{"code": 1, "modifiers": ["command"], "status": -9878}],
      "loginItem": {"status": 0, "registerError": null, "unregisterError": "no", "statusAfterRegister": 2},
      "userNotifications": {"permission": "silent", "error": "x", "addErrors": {"a": "b"}},
      "http": {"/feed": {"status": 200, "body": "{}", "seconds": 2}, "/": {"error": "offline"}}, "alertAnswers": ["OK"]},
    "timeline": [{"at": 1, "click": "none", "modifiers": ["shift", "function"]}, {"at": 1, "choose": "Quit"},
      {"at": 1, "openMenu": true}, {"at": 1, "shortcut": {"code": 45, "modifiers": ["command", "option"]}},
      {"at": 1, "hotKey": null}, {"at": 1, "hotKey": {"signature": "HLhk", "id": 1}},
      {"at": 1, "key": {"code": 36}}, {"at": 1, "press": "Done", "window": "Settings"},
      {"at": 1, "closeWindow": "Settings"}, {"at": 1, "dump": "/tmp/x"}, {"at": 1, "terminate": true},
      {"at": 2, "add": {"id": "new"}, "to": 7, "under": "windows", "first": true}, {"at": 2, "quit": 7}],
    "record": "/dev/null"})"),
            "");
}

TEST(Scene, KeepsElementsDuringUserEvents) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w"})", R"(, "timeline": [{"at": 0.5, "click": "left"}, {"at": 0.5, "terminate": true},
    {"at": 0.6, "choose": "No such title"}, {"at": 0.7, "dump": "/nowhere/at/all"}])"));
  desktop.runLoop().runFor(1);
  EXPECT_EQ(desktop.simulator().elapsed(), 1);
  EXPECT_EQ(desktop.present(), std::vector<std::string>{"w"});
}

TEST(Scene, DefaultsToAnEmptyTrustedDesktop) {
  SimulatedDesktop desktop("{}");
  EXPECT_TRUE(desktop.applications().list().empty());
  EXPECT_TRUE(desktop.accessibility().isProcessTrusted(false));
  EXPECT_EQ(desktop.simulator().elapsed(), 0);
}

TEST(Scene, MayBeNestedVeryDeep) {
  constexpr int kDepth = 20000;
  std::string window = R"({"id": "w0")";
  for (int depth = 1; depth <= kDepth; ++depth) window += R"(, "children": [{"id": "w)" + std::to_string(depth) + '"';
  for (int depth = 1; depth <= kDepth; ++depth) window += "}]";
  SimulatedDesktop desktop(Scene(window + "}"));
  EXPECT_EQ(desktop.present().size(), kDepth + 1U);
  EXPECT_EQ(desktop.elements(desktop.element("w19999"), "AXChildren").size(), 1U);
}

// What is written is 100,000 times smaller than what it stands for.
TEST(Scene, RejectsTooManyRepetitions) {
  std::string members = R"({"repeat": 100000})";
  for (int i = 0; i < 10; ++i) members += R"(, {"repeat": 100000})";
  EXPECT_NE(SceneError(Scene(R"({"children": [)" + members + "]}"))
                .find("].children[9]: the scene is too large: more than 1000000 elements, keys and members"),
            std::string::npos);
  const std::string keys = R"("a": 1, "b": [1, 2, 3, 4, 5, 6, 7, 8, 9])";
  EXPECT_NE(SceneError(Scene(R"({"children": [{"repeat": 100000, "attributes": {)" + keys + "}}]}"))
                .find("the scene is too large: more than 1000000 elements, keys and members"),
            std::string::npos);
  EXPECT_NE(SceneError(Scene(R"({"children": [{"repeat": 100000, "title": ")" + std::string(1000, 'x') + R"("}]})"))
                .find(".children[0].title: the scene is too large: more than 64000000 bytes of text"),
            std::string::npos);
}

TEST(Scene, Accepts100000Repetitions) {
  EXPECT_EQ(SceneError(Scene(R"({"children": [{"repeat": 100000, "role": "AXGroup", "title": "{n}"}]})")), "");
}

TEST(Scene, AcceptsValuesInHundredsOfLevels) {
  std::string nested = "1";
  for (int level = 0; level < 200; ++level) nested = R"({"in": [)" + nested + "]}";
  EXPECT_EQ(SceneError(R"({"defaults": {"a": )" + nested + "}}"), "");
}

TEST(Scene, RejectsDeepNesting) {
  const std::string deep = std::string(5000, '[') + std::string(5000, ']');
  EXPECT_NE(SceneError(R"({"defaults": {"a": )" + deep + "}}").find("nested too deeply"), std::string::npos);
  EXPECT_NE(SceneError(Scene(R"({"attributes": {"AXList": )" + deep + "}}")).find("nested too deeply"),
            std::string::npos);
}

}  // namespace
