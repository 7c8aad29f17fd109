#include "platform/linux/notifications/shown_text.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/notifications/body_forms.h"

namespace {

std::vector<std::string> plainTexts(const HLShownTexts& shown) {
  std::vector<std::string> plain;
  for (const std::string& text : shown) {
    std::string form = HLPlainBlanks(text);
    if (!form.empty()) plain.push_back(std::move(form));
  }
  return plain;
}

// A notification's texts with plain blanks. The forms of the body are made when they are first needed.
class SentTexts {
 public:
  explicit SentTexts(const HLPostedNotification& posted)
      : posted_(posted), summary_(HLPlainBlanks(posted.summary)), application_(HLPlainBlanks(posted.application)) {}

  [[nodiscard]] const std::string& summary() const { return summary_; }
  [[nodiscard]] const std::string& application() const { return application_; }
  [[nodiscard]] const std::vector<std::string>& bodies() {
    if (bodies_.empty()) bodies_ = HLBodyForms(posted_.body);
    return bodies_;
  }
  [[nodiscard]] bool isCut() const { return posted_.isCut; }
  [[nodiscard]] bool equals(const SentTexts& other) const {
    return posted_.summary == other.posted_.summary && posted_.body == other.posted_.body &&
           posted_.urgency == other.posted_.urgency;
  }

 private:
  const HLPostedNotification& posted_;
  const std::string summary_;
  const std::string application_;
  std::vector<std::string> bodies_;
};

// Whether the text is a description of the banner: "body from application", where "from" may be any word.
bool describes(std::string_view text, std::string_view body, std::string_view application) {
  constexpr std::size_t kLongestWord = 20;
  if (application.empty() || !text.starts_with(body) || !text.ends_with(application)) return false;
  if (text.size() < body.size() + application.size()) return false;
  std::string_view between = text.substr(body.size(), text.size() - body.size() - application.size());
  if (!body.empty() && !between.starts_with(' ')) return false;
  if (!body.empty()) between.remove_prefix(1);
  // A word and a blank.
  return between.size() >= 2 && between.size() <= kLongestWord && between.find(' ') == between.size() - 1;
}

// Fits the texts from `begin` on with one form of the body. `others` is how many unexplained texts came before.
HLTextFit fitRest(const std::vector<std::string>& texts, std::size_t begin, const std::string& body, SentTexts& sent,
                  int others) {
  std::size_t next = begin;
  if (!sent.summary().empty()) {
    if (next == texts.size() || texts[next] != sent.summary()) return HLTextFit::none;
    ++next;
  }
  // The body may come twice: as a label and as a description. Only servers that name the application describe.
  const auto isBody = [&](std::size_t i) {
    if (i >= texts.size()) return false;
    return texts[i] == body || (begin != 0 && describes(texts[i], body, texts.front()));
  };
  if (next < texts.size() && !isBody(next)) {
    ++next;
    ++others;
  }
  if (!body.empty() && !isBody(next)) return HLTextFit::none;
  while (isBody(next)) ++next;
  if (next != texts.size()) return HLTextFit::none;
  if (others == 0) return HLTextFit::exact;
  if (others > 1) return HLTextFit::none;
  return body.empty() ? HLTextFit::doubtful : HLTextFit::loose;
}

HLTextFit fit(const std::vector<std::string>& texts, SentTexts& sent) {
  if (texts.empty() || sent.isCut()) return HLTextFit::none;
  HLTextFit best = HLTextFit::none;
  const bool namesApplication = texts.front() == sent.application();
  for (const std::string& body : sent.bodies()) {
    best = std::max(best, fitRest(texts, 0, body, sent, 0));
    best = std::max(best, fitRest(texts, 1, body, sent, namesApplication ? 0 : 1));
  }
  return best;
}

// Banners of equal texts, and what fits them.
struct Group {
  std::vector<std::string> texts;
  std::vector<std::size_t> banners;
  std::vector<std::size_t> fitting;  // oldest first
  std::vector<std::size_t> loose;    // those of them that fit loosely or exactly
  std::vector<std::size_t> exact;
  bool isInDoubt = false;
};

std::vector<Group> groupsOf(const std::vector<HLShownTexts>& banners) {
  std::map<std::vector<std::string>, std::vector<std::size_t>> byTexts;
  for (std::size_t i = 0; i < banners.size(); ++i) byTexts[plainTexts(banners[i])].push_back(i);
  std::vector<Group> groups;
  for (auto& [texts, indices] : byTexts) groups.push_back({texts, std::move(indices), {}, {}, {}, false});
  return groups;
}

void findFitting(std::vector<Group>& groups, std::vector<SentTexts>& sent) {
  for (std::size_t i = 0; i < sent.size(); ++i) {
    std::vector<Group*> fitted;
    for (Group& group : groups) {
      // The summary is the first or second text.
      const std::string& summary = sent[i].summary();
      const bool mayFit = summary.empty() || (!group.texts.empty() && group.texts[0] == summary) ||
                          (group.texts.size() > 1 && group.texts[1] == summary);
      const HLTextFit how = mayFit ? fit(group.texts, sent[i]) : HLTextFit::none;
      if (how == HLTextFit::none) continue;
      group.fitting.push_back(i);
      if (how >= HLTextFit::loose) group.loose.push_back(i);
      if (how == HLTextFit::exact) group.exact.push_back(i);
      fitted.push_back(&group);
    }
    if (fitted.size() > 1) {
      for (Group* group : fitted) group->isInDoubt = true;
    }
  }
}

// The notifications on screen, oldest first, at most one per banner, or none in doubt.
std::vector<std::size_t> chosen(const Group& group, const HLServerTraits& server, const std::vector<SentTexts>& sent) {
  if (group.isInDoubt) return {};
  if (group.fitting.size() <= group.banners.size()) return group.loose;
  const SentTexts& first = sent[group.fitting.front()];
  const bool areEqual = std::all_of(group.fitting.begin(), group.fitting.end(),
                                    [&](std::size_t index) { return sent[index].equals(first); });
  if (!areEqual) return {};
  const std::vector<std::size_t>& candidates = group.exact.empty() ? group.loose : group.exact;
  if (candidates.size() <= group.banners.size()) return candidates;
  if (server.shownOfEqual == HLShownOfEqual::unknown || candidates.size() > server.mostEqual) return {};
  const auto count = static_cast<std::ptrdiff_t>(group.banners.size());
  if (server.shownOfEqual == HLShownOfEqual::oldest) return {candidates.begin(), candidates.begin() + count};
  return {candidates.end() - count, candidates.end()};
}

}  // namespace

HLTextFit HLFitOfTexts(const HLShownTexts& shown, const HLPostedNotification& posted) {
  SentTexts sent(posted);
  return fit(plainTexts(shown), sent);
}

std::vector<std::optional<std::size_t>> HLMatchShownTexts(const std::vector<HLShownTexts>& banners,
                                                          const HLServerTraits& server,
                                                          const std::vector<HLOpenNotificationRef>& open) {
  std::vector<SentTexts> sent;
  sent.reserve(open.size());
  for (const HLOpenNotificationRef& notification : open) sent.emplace_back(notification->posted);
  std::vector<Group> groups = groupsOf(banners);
  findFitting(groups, sent);
  std::vector<std::optional<std::size_t>> matches(banners.size());
  for (const Group& group : groups) {
    const std::vector<std::size_t> indices = chosen(group, server, sent);
    for (std::size_t i = 0; i < indices.size(); ++i) matches[group.banners[i]] = indices[i];
  }
  return matches;
}
