#include "report/explain.h"

#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>

#include "base/terminal.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "report/arguments.h"
#include "report/explanation.h"
#include "report/json_text.h"
#include "report/masked_capture.h"

int HLExplainScreen(std::ostream& out, std::ostream& err) {
  const auto fail = [&err](const std::string& reason) {
    err << "hushlet: " << reason << '\n';
    return EXIT_FAILURE;
  };
  const std::string unknown = HLUnknownArgument({"--explain", "--json", "--keep-texts"});
  if (!unknown.empty()) return fail(unknown + ": --explain takes --json and --keep-texts");
  std::unique_ptr<HLCapture> capture = HLCaptureScreen();
  if (!HLHasArgument("--keep-texts") && !HLIsTerminal(out))
    capture = HLMaskedCapture(*capture, HLJudgeCapture(*capture));
  if (capture == nullptr) {
    return fail("the texts cannot be replaced without changing what is explained; --keep-texts keeps them");
  }
  const HLExplanation explanation = HLExplain(*capture);
  if (HLHasArgument("--json")) {
    out << HLJsonText(HLExplanationData(explanation));
  } else {
    constexpr int kColumns = 120;
    const bool hasColors = HLIsTerminal(out) && !HLCurrentPlatform().process->environment("NO_COLOR");
    HLPrintExplanation(explanation, {HLTerminalColumns(out, kColumns), hasColors}, out);
  }
  if (!out.flush()) return fail("the explanation could not be written");
  return capture->trusted && capture->process ? EXIT_SUCCESS : EXIT_FAILURE;
}
