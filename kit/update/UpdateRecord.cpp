#include "kit/update/UpdateRecord.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

#include "kit/update/VersionOrder.h"
#include "model/PropertyList.h"

namespace quorel {

namespace {

constexpr std::size_t kMaximumAddressBytes = 2048;

struct WebAddress {
    bool secure = false;
    std::string host;
};

std::string part(CURLU* url, CURLUPart which) {
    char* text = nullptr;
    if (curl_url_get(url, which, &text, 0) != CURLUE_OK) return {};
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, curl_free);
    return text;
}

bool isAddressCharacter(char c) {
    constexpr std::string_view kPunctuation = "-._~:/?#[]@!$&'()*+,;=%";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           kPunctuation.find(c) != std::string_view::npos;
}

std::optional<WebAddress> parse(std::string_view text) {
    if (text.size() > kMaximumAddressBytes || !std::all_of(text.begin(), text.end(), isAddressCharacter)) return {};
    // The parser is lenient with slashes ("https:/host"), browsers differ: ask for the full form, at the first colon.
    const std::string_view rest = text.substr(std::min(text.find(':'), text.size()));
    if (!rest.starts_with("://") || rest.starts_with(":///")) return {};
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    if (!url || curl_url_set(url.get(), CURLUPART_URL, std::string(text).c_str(), CURLU_DISALLOW_USER) != CURLUE_OK)
        return {};
    const std::string scheme = part(url.get(), CURLUPART_SCHEME);
    WebAddress address{scheme == "https", part(url.get(), CURLUPART_HOST)};
    if ((scheme != "http" && scheme != "https") || address.host.empty()) return {};
    return address;
}

bool isLoopback(const std::string& host) {
    if (host == "localhost" || host == "[::1]") return true;
    // The parser has brought numeric hosts into dotted form; a name such as "127.0.0.1.example" keeps its letters.
    return host.starts_with("127.") && host.find_first_not_of("0123456789.") == std::string::npos;
}

}  // namespace

std::optional<UpdateRecord> parseUpdateRecord(std::string_view bytes) {
    const Value record = decodePropertyList(bytes);
    const Value& version = record["Version"];
    const Value& page = record["URL"];
    if (!isVersion(version.text()) || !isWebAddress(page.text())) return {};
    return UpdateRecord{version.text(), page.text()};
}

bool isWebAddress(std::string_view text) {
    return parse(text).has_value();
}

bool isFeedAddress(std::string_view text) {
    const auto address = parse(text);
    return address && (address->secure || isLoopback(address->host));
}

bool isLoopbackHttpAddress(std::string_view text) {
    const auto address = parse(text);
    return address && !address->secure && isLoopback(address->host);
}

}  // namespace quorel
