#include "report/explain.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/terminal.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "report/explanation.h"
#include "report/json_text.h"
#include "report/masked_capture.h"

int HLExplainScreen(std::ostream& out, std::ostream& err) {
  HLProcessInfo& process = HLCurrentPlatform().process;
  const std::vector<std::string> arguments = process.arguments();
  const auto has = [&arguments](std::string_view option) {
    return std::find(arguments.begin(), arguments.end(), option) != arguments.end();
  };
  std::unique_ptr<HLCapture> capture = HLCaptureScreen();
  if (!has("--keep-texts") && !HLIsTerminal(out)) capture = HLMaskedCapture(*capture, HLJudgeCapture(*capture));
  if (capture == nullptr) {
    err << "hushlet: the texts cannot be replaced without changing what is explained; --keep-texts keeps them\n";
    return EXIT_FAILURE;
  }
  const HLExplanation explanation = HLExplain(*capture);
  if (has("--json")) {
    out << HLJsonText(HLExplanationData(explanation));
  } else {
    constexpr int kColumns = 120;
    const bool hasColors = HLIsTerminal(out) && !process.environment("NO_COLOR");
    HLPrintExplanation(explanation, {HLTerminalColumns(out, kColumns), hasColors}, out);
  }
  if (!out.flush()) {
    err << "hushlet: the explanation could not be written\n";
    return EXIT_FAILURE;
  }
  return capture->trusted && capture->process ? EXIT_SUCCESS : EXIT_FAILURE;
}
