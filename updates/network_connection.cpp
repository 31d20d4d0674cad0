#include "updates/network_connection.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/exceptions.h"
#include "platform/routes.h"
#include "system/processes/simple_task.h"
#include "updates/safe_url_connection.h"
#include "wording/localized_strings.h"

namespace SharedClasses::Utilities {

namespace {

constexpr double kWaitLimit = 4.0;         // seconds
constexpr const char* kLookupLimit = "3";  // seconds; sooner, so that the tool is not left running

// The host of a web address: "http://user@host:80/path", "https://[fe80::1%25eth0]/". Empty where there is none.
std::string hostOfURL(std::string_view url) {
  if (!SafeURLConnection::isWebAddress(url)) {
    return {};
  }
  url.remove_prefix(url.find("://") + 3);
  url.remove_prefix(url.starts_with('/') ? 1 : 0);  // as curl does
  url = url.substr(0, url.find_first_of("/?#"));
  url.remove_prefix(url.rfind('@') + 1);  // npos, the largest, becomes 0
  if (!url.starts_with('[')) {
    return std::string(url.substr(0, url.find(':')));
  }
  const std::size_t end = url.find(']');
  std::string host(end == url.npos ? "" : url.substr(1, end - 1));
  const std::size_t zone = host.find("%25");
  return zone == host.npos ? host : host.erase(zone + 1, 2);
}

// One line for each address: "192.0.2.1  STREAM host.example". Empty when there is none or it did not come in time.
std::string addressListOfHost(const std::string& host) {
  std::optional<std::string> output;
  static_cast<void>(platform::nameOfThrown([&] {
    const SimpleTask task({.launchPath = "/usr/bin/timeout",
                           .arguments = std::vector<std::string>{kLookupLimit, "/usr/bin/getent", "--", "ahosts", host},
                           .outputText = &output,
                           .maxSecondsToWait = kWaitLimit,
                           .environmentChanges = {{"LC_ALL", "C.UTF-8"}}});
  }));
  return output.value_or("");
}

}  // namespace

bool hasNetworkConnection() {
  const std::string host = hostOfURL(viewOfString("keyLatestVersionURL"));
  if (host.empty()) {
    return false;
  }
  const std::string list = addressListOfHost(host);
  for (std::string_view rest = list; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    if (platform::hasRoute(std::string(line.substr(0, line.find(' '))))) {
      return true;
    }
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  return false;
}

}  // namespace SharedClasses::Utilities
