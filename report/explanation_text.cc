#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "base/format.h"
#include "base/terminal.h"
#include "platform/text.h"
#include "report/explanation.h"

namespace {

// The values are SGR codes of terminals.
enum class Tone { plain = 0, strong = 1, good = 32, bad = 33 };

std::string number(double value) { return HLFormat("%.0f", value); }

std::string frameText(const HLRect& frame) {
  if (frame.isNull()) return "";
  return " [" + number(frame.x) + " " + number(frame.y) + " " + number(frame.width) + "x" + number(frame.height) + "]";
}

// On macOS the name of a custom action goes on with lines for its target and selector.
std::string_view firstLine(std::string_view action) { return action.substr(0, action.find('\n')); }

std::string actionsText(const std::vector<std::string>& actions) {
  std::string text;
  for (const std::string& action : actions) (text += text.empty() ? " {" : ", ") += firstLine(action);
  return text.empty() ? "" : text + "}";
}

std::string partsText(const HLScoreDetails& details) {
  std::string text;
  for (const HLScorePart& part : details.parts) {
    text += (text.empty() ? "" : ", ") + std::string(part.word) + HLFormat(" %ld", part.points);
  }
  return text;
}

class Printer {
 public:
  Printer(const HLExplanation& explanation, const HLExplanationStyle& style, std::ostream& out)
      : explanation_(explanation), style_(style), out_(out) {}

  void print() {
    printHead();
    printTree();
    if (!explanation_.targets.empty()) printTargets();
    printPresses();
  }

 private:
  // Texts of other programs may contain line feeds and escape sequences.
  void line(Tone tone, std::string_view text) {
    const std::string visible = HLVisibleText(HLEncodableText(text));
    if (style_.hasColors && tone != Tone::plain) {
      out_ << "\033[" << static_cast<int>(tone) << 'm' << visible << "\033[0m\n";
    } else {
      out_ << visible << '\n';
    }
  }

  void printHead() {
    const HLCapture& capture = explanation_.capture;
    if (!capture.host.empty()) line(Tone::plain, "system: " + capture.host);
    if (!capture.program.empty()) line(Tone::plain, "program: " + capture.program);
    if (!capture.process) {
      line(Tone::bad, "process: none, nothing shows notifications here");
    } else {
      const HLRunningApplication& process = *capture.process;
      line(Tone::plain, HLFormat("process: %@, pid %d, %@", process.name.value_or("without a name"), process.pid,
                                 process.bundleIdentifier.value_or("without a bundle identifier")));
    }
    if (!capture.server.name.empty()) {
      const HLServerVersion& server = capture.server;
      line(Tone::plain, "server: " + server.name + (server.version.empty() ? "" : " " + server.version) +
                            (server.vendor.empty() ? "" : " by " + server.vendor));
    }
    if (!capture.server.bundle.empty()) line(Tone::plain, "bundle: " + capture.server.bundle);
    if (capture.trusted) {
      line(Tone::plain, "access: granted");
    } else {
      line(Tone::bad, "access: not granted to this process, so nothing can be read");
    }
    if (capture.texts == HLTexts::replaced) line(Tone::plain, "texts: replaced; --keep-texts shows them");
    if (!capture.isComplete) {
      line(Tone::bad, HLFormat("elements: more than %lu, the others are left out", HLCaptureLimit));
    }
  }

  void printTree() {
    int window = -1;
    if (explanation_.elements.empty() && explanation_.capture.trusted && explanation_.capture.process) {
      line(Tone::plain, explanation_.capture.elements.empty() ? "\nits interface cannot be read" : "\nno window");
    }
    for (const HLExplainedElement& element : explanation_.elements) {
      if (element.window != window) {
        out_ << '\n';
        window = element.window;
        line(Tone::strong, HLFormat("window %d", window));
      }
      printElement(element);
    }
  }

  void printElement(const HLExplainedElement& element) {
    constexpr int kDeepest = 30;  // indented
    const std::string margin(static_cast<std::size_t>(2 * std::min(element.depth, kDeepest) + 2), ' ');
    line(element.candidate ? Tone::good : Tone::plain, described(margin, element));
    if (element.isRepeat) return;
    if (element.candidate) {
      const std::string rank =
          element.target ? HLFormat("target %lu", *element.target + 1) : std::string("another target's equal");
      line(Tone::good, margin + "  = " + rank + HLFormat(", score %ld: ", element.candidate->score) +
                           (element.details.parts.size() > 1 ? partsText(element.details) : element.candidate->reason));
    } else if (const std::string refusal = HLRefusalText(element); !refusal.empty()) {
      line(Tone::bad, margin + "  - not pressed: " + refusal);
    }
  }

  // Returns the element as one line; the name gets the columns that the rest leaves.
  [[nodiscard]] std::string described(const std::string& margin, const HLExplainedElement& element) const {
    const HLElementFacts& facts = element.facts;
    std::string front = margin + (facts.role.empty() ? "(no role)" : facts.role);
    if (!facts.subrole.empty()) front += " " + facts.subrole;
    std::string behind = frameText(facts.frame) + actionsText(facts.actionNames);
    if (element.isRepeat) behind += " (as above)";
    return front + nameText(facts, HLColumns(front) + HLColumns(behind)) + behind;
  }

  [[nodiscard]] std::string nameText(const HLElementFacts& facts, std::size_t taken) const {
    const std::string* name = &facts.title;
    if (name->empty()) name = &facts.description;
    if (name->empty()) name = &facts.value;
    if (name->empty()) return "";
    constexpr std::size_t kLeast = 12;
    const std::size_t columns = static_cast<std::size_t>(style_.columns);
    const std::size_t room = columns > taken + 3 ? columns - taken - 3 : 0;
    return " \"" + HLCutToColumns(HLVisibleText(*name), std::max(room, kLeast)) + "\"";
  }

  [[nodiscard]] std::string controlText(const HLDismissTarget& control) const {
    const HLElementFacts facts = control.element->copyFacts();
    std::string text = std::string(firstLine(control.action)) + " of " +
                       (facts.role.empty() ? "an element without a role" : facts.role);
    if (!facts.subrole.empty()) text += " " + facts.subrole;
    return text + nameText(facts, HLColumns(text) + HLColumns(frameText(control.frame)) + 6) + frameText(control.frame);
  }

  void printTargets() {
    out_ << '\n';
    line(Tone::strong, "targets");
    for (std::size_t i = 0; i < explanation_.targets.size(); ++i) {
      const HLExplainedTarget& target = explanation_.targets[i];
      std::string text = HLFormat("  %lu. score %ld, ", i + 1, target.target.score);
      if (target.control.element->isEqual(*target.target.element)) {
        (text += "pressed itself: ") += firstLine(target.target.action);
      } else {
        text += HLFormat("resolves to another control, score %ld: %@", target.control.score, target.control.reason);
      }
      if (!target.isFirst) text += HLFormat("; the same control as press %lu", target.press + 1);
      line(Tone::plain, text);
    }
  }

  void printPresses() {
    if (!explanation_.capture.trusted || !explanation_.capture.process) return;
    out_ << '\n';
    if (explanation_.presses.empty()) return line(Tone::strong, "nothing would be pressed");
    line(Tone::strong, "would press, in this order");
    for (std::size_t i = 0; i < explanation_.presses.size(); ++i) {
      line(Tone::good, HLFormat("  %lu. ", i + 1) + controlText(explanation_.presses[i]));
    }
  }

  const HLExplanation& explanation_;
  const HLExplanationStyle& style_;
  std::ostream& out_;
};

}  // namespace

void HLPrintExplanation(const HLExplanation& explanation, const HLExplanationStyle& style, std::ostream& out) {
  Printer(explanation, style, out).print();
}
