#include "app/update_feed.h"

#include <string_view>

#include "base/format.h"
#include "platform/json.h"
#include "platform/text.h"
#include "platform/value.h"

namespace {

constexpr std::string_view kServer = HL_UPDATE_SERVER;
constexpr std::size_t kLongestVersion = 32;  // characters

std::string downloadAddressWithoutScheme() {
  const std::string address = QLMDownloadURL();
  const std::size_t scheme = address.find("://");
  return scheme == std::string::npos ? address : address.substr(scheme + 3);
}

struct Feed {
  std::string version;
  std::int64_t build = 0;
};

// Returns 0 for a missing value, which no valid feed has.
std::int64_t integerValue(const HLValue* value) { return value == nullptr ? 0 : HLIntegerPart(*value).value_or(0); }

std::optional<Feed> readFeed(const std::string& data) {
  const std::optional<HLValue> document = HLReadJson(data);
  const HLDictionary* object = document ? document->as<HLDictionary>() : nullptr;
  if (object == nullptr) return std::nullopt;
  const HLValue* version = HLDictionaryValue(*object, "version");
  const std::string* text = version == nullptr ? nullptr : version->as<std::string>();
  if (text == nullptr || text->empty() || HLUtf16Length(*text) > kLongestVersion) return std::nullopt;
  const std::int64_t build = integerValue(HLDictionaryValue(*object, "build"));
  const std::int64_t released = integerValue(HLDictionaryValue(*object, "released"));
  if (build <= 0 || released <= 0) return std::nullopt;
  return Feed{*text, build};
}

}  // namespace

std::string QLMUpdateFeedURL() { return std::string(kServer) + "/quillmere/latest.json"; }

std::string QLMDownloadURL() { return std::string(kServer) + "/quillmere/download"; }

QLMUpdateVerdict QLMReadUpdateFeed(const std::optional<std::string>& data, const std::string& installedVersion,
                                   std::int64_t installedBuild) {
  const std::optional<Feed> feed = data ? readFeed(*data) : std::nullopt;
  if (!feed) {
    return {QLMUpdateFailed, "", 0, "Couldn't check for updates.",
            "Try again later, or get the newest version at " + downloadAddressWithoutScheme() + "."};
  }
  if (feed->build > installedBuild) {
    return {QLMUpdateAvailable, feed->version, feed->build, HLFormat("Quillmere %@ is available.", feed->version),
            HLFormat("You have %@. Open the download and drag Quillmere to Applications to replace it; your settings "
                     "stay.",
                     installedVersion)};
  }
  return {QLMUpdateUpToDate, feed->version, feed->build, "Quillmere is up to date.",
          HLFormat("You have version %@ (%ld), the newest one.", installedVersion, installedBuild)};
}
