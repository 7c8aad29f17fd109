// What the status button shows during a request, in both flavors. A process has one flavor, so that each request has a
// process of its own.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/app/dismiss_request.h"
#include "tests/support/personal_log.h"
#include "tests/support/processes.h"

namespace {

// The titles of a request during which these counts are reported, each behind a bar.
std::string titlesWith(const std::string& flavor, const std::vector<std::int64_t>& counts) {
  const PersonalLogTurn log;
  return InChildProcess([&] {
    Request request(flavor);
    for (const std::int64_t count : counts) {
      HLReportProgress(count);
      request.runStep();
    }
    request.runWork();
    request.runStep();
    std::string titles;
    for (const std::string& title : request.titles()) titles += "|" + title;
    return titles;
  });
}

TEST(RequestTitles, ShowCountsBetweenBusyAndIdle) {
  EXPECT_EQ(titlesWith("personal", {5, 3, 0}), "|HL|HL…|HL 5|HL 3|HL…|HL");
  EXPECT_EQ(titlesWith("product", {5, 3, 0}), "|||5|3||");
}

TEST(RequestTitles, ShowANegativeCountAsNone) {
  EXPECT_EQ(titlesWith("personal", {5, -2, 4}), "|HL|HL…|HL 5|HL…|HL 4|HL");
}

}  // namespace
