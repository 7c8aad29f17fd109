#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "platform/geometry.h"
#include "report/explanation.h"

namespace {

HLValue textOrNull(const std::string& text) { return text.empty() ? HLValue() : HLValue(text); }

HLValue frameValue(const HLRect& frame) {
  if (frame.isNull()) return {};
  return HLArray{frame.x, frame.y, frame.width, frame.height};
}

HLArray texts(const std::vector<std::string>& list) { return {list.begin(), list.end()}; }

std::int64_t signedNumber(std::size_t number) { return static_cast<std::int64_t>(number); }

HLValue targetValue(const HLDismissTarget& target) {
  return HLDictionary{{"element", std::int64_t{HLCapturedNumber(*target.element)}},
                      {"action", target.action},
                      {"score", target.score},
                      {"reason", target.reason},
                      {"frame", frameValue(target.frame)},
                      {"snapshot", target.snapshot}};
}

std::string_view scannedWord(HLScanned scanned) {
  switch (scanned) {
    case HLScanned::yes:
      return "yes";
    case HLScanned::belowStrongTarget:
      return "below a target";
    case HLScanned::beyondLimit:
      return "beyond the limit";
    case HLScanned::no:
      break;
  }
  return "no";
}

HLValue elementValue(const HLExplainedElement& element) {
  HLDictionary value = {{"element", std::int64_t{element.number}},
                        {"window", std::int64_t{element.window}},
                        {"depth", std::int64_t{element.depth}}};
  if (element.isRepeat) {
    value.push_back({"listedBefore", true});
    return value;
  }
  for (const HLTextAttribute& attribute : HLTextAttributes) {
    const std::string& text = element.facts.*attribute.text;
    if (!text.empty()) value.push_back({std::string(attribute.name), text});
  }
  value.push_back({"frame", frameValue(element.facts.frame)});
  value.push_back({"actions", texts(element.facts.actionNames)});
  value.push_back({"scanned", std::string(scannedWord(element.scanned))});
  HLArray parts;
  for (const HLScorePart& part : element.details.parts) {
    parts.push_back(HLDictionary{{"points", part.points}, {"word", std::string(part.word)}});
  }
  if (!parts.empty()) value.push_back({"score", std::move(parts)});
  if (element.candidate) value.push_back({"candidate", targetValue(*element.candidate)});
  if (element.target) value.push_back({"target", signedNumber(*element.target)});
  if (const std::string refusal = HLRefusalText(element); !refusal.empty()) value.push_back({"notPressed", refusal});
  return value;
}

}  // namespace

HLValue HLExplanationData(const HLExplanation& explanation) {
  const HLCapture& capture = explanation.capture;
  HLValue process;
  if (capture.process) {
    process = HLDictionary{{"pid", std::int64_t{capture.process->pid}},
                           {"name", textOrNull(capture.process->name.value_or(""))},
                           {"bundleIdentifier", textOrNull(capture.process->bundleIdentifier.value_or(""))}};
  }
  HLArray elements;
  for (const HLExplainedElement& element : explanation.elements) elements.push_back(elementValue(element));
  HLArray targets;
  for (const HLExplainedTarget& target : explanation.targets) {
    targets.push_back(HLDictionary{{"target", targetValue(target.target)},
                                   {"resolvesTo", targetValue(target.control)},
                                   {"press", signedNumber(target.press)},
                                   {"sameAsEarlier", !target.isFirst}});
  }
  HLArray presses;
  for (const HLDismissTarget& press : explanation.presses) presses.push_back(targetValue(press));
  HLDictionary server = {{"name", textOrNull(capture.server.name)},
                         {"vendor", textOrNull(capture.server.vendor)},
                         {"version", textOrNull(capture.server.version)}};
  if (!capture.server.bundle.empty()) server.push_back({"bundle", capture.server.bundle});
  HLDictionary data = {{"system", textOrNull(capture.host)}};
  if (!capture.program.empty()) data.push_back({"program", capture.program});
  data.insert(data.end(), {{"server", std::move(server)},
                           {"process", std::move(process)},
                           {"trusted", capture.trusted},
                           {"texts", capture.texts == HLTexts::kept ? "kept" : "replaced"},
                           {"complete", capture.isComplete},
                           {"elements", std::move(elements)},
                           {"targets", std::move(targets)},
                           {"presses", std::move(presses)}});
  return data;
}
