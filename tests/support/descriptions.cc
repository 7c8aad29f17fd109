#include "tests/support/descriptions.h"

#include <sstream>

std::string Describe(const std::optional<HLDismissTarget>& target) {
  if (!target) return "nothing";
  std::ostringstream text;
  text.precision(15);
  text << target->action << ' ' << target->score << ' ';
  if (target->frame.isNull()) {
    text << "no frame";
  } else {
    text << '(' << target->frame.x << ',' << target->frame.y << ',' << target->frame.width << ','
         << target->frame.height << ')';
  }
  text << " [" << target->snapshot << "] " << target->reason;
  return text.str();
}

std::vector<std::string> Describe(const std::vector<HLDismissTarget>& targets) {
  std::vector<std::string> texts;
  texts.reserve(targets.size());
  for (const HLDismissTarget& target : targets) texts.push_back(Describe(target));
  return texts;
}

void PrintTo(const HLDismissResult& result, std::ostream* stream) {
  *stream << "status " << static_cast<std::int64_t>(result.status) << ", dismissed " << result.dismissed
          << ", remaining " << result.remaining;
}
