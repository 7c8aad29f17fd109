#include "report/masked_capture.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "autoclose/rules.h"
#include "core/scan/alert_description.h"
#include "core/scan/notification_center.h"
#include "core/scan/records.h"
#include "platform/element_facts.h"
#include "platform/text.h"
#include "report/text_mask.h"

namespace {

bool stays(std::string_view attribute) {
  return attribute == "AXRole" || attribute == "AXSubrole" || attribute == "AXIdentifier" ||
         attribute == HLDoubtAttributeName;
}

class Masker {
 public:
  Masker(HLCapture& from, HLCapture& to, std::uint64_t seed)
      : from_(from), to_(to), rules_(HLAutoCloseRules(std::nullopt)), mask_(seed) {}

  void run() {
    meetTexts();
    for (const HLRawElement& element : from_.raw) {
      to_.raw.push_back(element);
      if (element.isHostsWords) continue;
      to_.raw.back().name = mask_.replaced(element.name);
      to_.raw.back().description = mask_.replaced(element.description);
    }
    for (std::size_t i = 0; i < from_.elements.size(); ++i) to_.add();
    for (const HLCapturedElement& element : from_.elements) {
      HLCapturedElement& copy = to_.element(element.number());
      copy.actions = element.actions;
      copy.freshHandles = element.freshHandles;
      for (const HLCapturedAttribute& attribute : element.attributes) {
        copy.attributes.push_back({attribute.name, {attribute.answer.error, masked(attribute)}});
      }
    }
  }

 private:
  void meetTexts() {
    for (const HLCapturedElement& element : from_.elements) {
      for (const HLCapturedAttribute& attribute : element.attributes) meet(attribute);
    }
    if (!from_.trusted) return;
    (void)HLCurrentTargets(*from_.handle(0), [this](const HLScanStep& step) {
      if (step.candidate) mask_.meetCut(step.visit.context.ownOrAll(), HLSnapshotLimit);
    });
  }

  void meet(const HLCapturedAttribute& attribute) {
    const std::string text = HLStringFromAttribute(attribute.answer).value_or("");
    if (stays(attribute.name)) return mask_.meetKept(text);
    mask_.meet(text);
    if (const auto* words = attribute.answer.value.as<std::string>()) {
      for (const std::string& kept : automationTexts(*words)) mask_.meetKept(kept);
    }
  }

  // Returns the application and the phrases by which a rule recognizes the description as an automation's; else none.
  [[nodiscard]] std::vector<std::string> automationTexts(std::string_view description) const {
    if (!HLAlertDescriptionMatchesAutoClose(description, rules_)) return {};
    const HLAlertDescription parts = HLSplitAlertDescription(description);
    const std::string body = HLLowercase(*parts.rest);
    std::vector<std::string> texts = {std::string(parts.application)};
    for (const HLAutoCloseRule& rule : rules_) {
      for (const std::string& phrase : rule.bodyPhrases) {
        if (body.find(phrase) != std::string::npos) texts.push_back(phrase);
      }
    }
    return texts;
  }

  [[nodiscard]] HLValue masked(const HLCapturedAttribute& attribute) {
    if (!stays(attribute.name)) return masked(attribute.answer.value);
    const auto* text = attribute.answer.value.as<std::string>();
    return text == nullptr ? attribute.answer.value : HLValue(HLEncodableText(*text));
  }

  [[nodiscard]] HLValue masked(const HLValue& value) {
    if (const auto* text = value.as<std::string>()) return mask_.replaced(*text, automationTexts(*text));
    if (const auto* integer = value.as<std::int64_t>()) return maskedInteger(*integer);
    if (const auto* real = value.as<double>()) return maskedReal(*real);
    if (const auto* element = value.as<HLElementRef>()) return to_.handle(HLCapturedNumber(**element));
    if (const auto* members = value.as<HLArray>()) {
      HLArray copy;
      for (const HLValue& member : *members) copy.push_back(masked(member));
      return copy;
    }
    if (value.as<HLDictionary>() != nullptr) return HLDictionary();
    return value;  // missing, a truth value, a point or a size
  }

  [[nodiscard]] HLValue maskedInteger(std::int64_t integer) {
    const std::string text = mask_.replaced(std::to_string(integer));
    const HLValue number = std::int64_t{std::strtoll(text.c_str(), nullptr, 10)};
    return HLNumberText(number) == text ? number : HLValue(text);
  }

  // Keeps a real number if its replacement would read as another text.
  [[nodiscard]] HLValue maskedReal(double real) {
    const std::string text = mask_.replaced(HLNumberText(real).value_or(""));
    const HLValue number = std::strtod(text.c_str(), nullptr);
    return HLNumberText(number) == text ? number : HLValue(real);
  }

  HLCapture& from_;
  HLCapture& to_;
  const HLAutoCloseRuleList rules_;
  HLTextMask mask_;
};

}  // namespace

std::unique_ptr<HLCapture> HLMaskedCapture(HLCapture& capture, std::uint64_t seed) {
  auto copy = std::make_unique<HLCapture>();
  copy->texts = HLTexts::replaced;
  copy->trusted = capture.trusted;
  copy->host = capture.host;
  copy->program = capture.program;
  copy->server = capture.server;
  copy->process = capture.process;
  copy->isComplete = capture.isComplete;
  if (!capture.elements.empty()) Masker(capture, *copy, seed).run();
  return copy;
}

std::unique_ptr<HLCapture> HLMaskedCapture(HLCapture& capture, const HLJudgement& judgement) {
  constexpr int kTries = 4;
  std::random_device random;
  const HLJudgementOutline wanted = HLOutlineOf(capture, judgement);
  for (int i = 0; i < kTries; ++i) {
    std::unique_ptr<HLCapture> masked = HLMaskedCapture(capture, std::uint64_t{random()} << 32U | random());
    if (HLOutlineOf(*masked, HLJudgeCapture(*masked)) == wanted) return masked;
  }
  return nullptr;
}
