#include "kit/update/CurlUpdateChecker.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "kit/update/VersionOrder.h"

namespace quorel {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kMaximumAnswerBytes = std::size_t{64} * 1024;
constexpr int kMaximumRedirects = 3;
constexpr milliseconds kConnectLimit{5'000};

/// Never cleaned up: a check may still be running on its thread while the program ends.
bool libraryIsReady() {
    static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return ready;
}

std::size_t appendAnswer(char* bytes, std::size_t size, std::size_t count, void* answer) noexcept try {
    auto& text = *static_cast<std::string*>(answer);
    if (count * size > kMaximumAnswerBytes - text.size()) return 0;  // gives the transfer up
    text.append(bytes, count * size);
    return count * size;
} catch (...) {
    return 0;
}

/// Asked about once a second.
int isGivenUp(void* givenUp, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return *static_cast<const std::atomic<bool>*>(givenUp);
}

struct Answer {
    long status = 0;
    std::string body;
    std::string redirect;  ///< absolute; empty unless the status is a redirection
};

/// One request, no redirection followed. Nothing when the transfer failed.
std::optional<Answer> request(const std::string& address, const CurlUpdateChecker::Settings& settings,
                              milliseconds limit, const std::atomic<bool>& givenUp) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), curl_easy_cleanup);
    if (!curl || limit <= milliseconds::zero()) return {};
    Answer answer;
    bool ready = true;
    const auto set = [&](CURLoption option, auto value) {
        ready = ready && curl_easy_setopt(curl.get(), option, value) == CURLE_OK;
    };
    const std::string agent = "Quorel/" + settings.installedVersion;
    set(CURLOPT_URL, address.c_str());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_NOSIGNAL, 1L);  // timeouts by signal would hit other threads
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(limit.count()));
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(std::min(limit, kConnectLimit).count()));
    set(CURLOPT_MAXFILESIZE, static_cast<long>(kMaximumAnswerBytes));
    set(CURLOPT_USERAGENT, agent.c_str());
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    if (!settings.caFile.empty()) set(CURLOPT_CAINFO, settings.caFile.c_str());
    // A proxy's "localhost" is another computer; for https the user's proxy settings hold.
    if (isLoopbackHttpAddress(address)) set(CURLOPT_PROXY, "");
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_XFERINFOFUNCTION, isGivenUp);
    set(CURLOPT_XFERINFODATA, &givenUp);
    set(CURLOPT_QUICK_EXIT, 1L);  // a look-up of the server's address that hangs is left to itself
    set(CURLOPT_WRITEFUNCTION, appendAnswer);
    set(CURLOPT_WRITEDATA, &answer.body);
    if (!ready || curl_easy_perform(curl.get()) != CURLE_OK) return {};

    char* redirect = nullptr;
    curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &answer.status);
    curl_easy_getinfo(curl.get(), CURLINFO_REDIRECT_URL, &redirect);
    if (redirect) answer.redirect = redirect;
    return answer;
}

/// Redirections are followed here, not by the library, so that each address has to pass the same rules.
std::optional<UpdateRecord> fetchRecord(const CurlUpdateChecker::Settings& settings, const std::atomic<bool>& givenUp) {
    const auto deadline = steady_clock::now() + settings.timeLimit;
    std::string address = settings.feed;
    for (int redirects = 0; redirects <= kMaximumRedirects; ++redirects) {
        if (!isFeedAddress(address)) return {};
        const auto left = std::chrono::duration_cast<milliseconds>(deadline - steady_clock::now());
        auto answer = request(address, settings, left, givenUp);
        if (!answer) return {};
        if (answer->redirect.empty()) {
            if (answer->status != 200) return {};
            return parseUpdateRecord(answer->body);
        }
        const bool fromPlain = isLoopbackHttpAddress(address);
        address = std::move(answer->redirect);
        if (!fromPlain && isLoopbackHttpAddress(address)) return {};
    }
    return {};
}

}  // namespace

CurlUpdateChecker::CurlUpdateChecker(Settings settings) : _settings(std::move(settings)) {}

std::optional<std::string> CurlUpdateChecker::versionString() const {
    if (_settings.installedVersion.empty()) return {};
    return _settings.installedVersion;
}

std::optional<std::string> CurlUpdateChecker::fullVersionString() const {
    auto version = versionString();
    if (version && !_settings.installedBuild.empty()) *version += " (" + _settings.installedBuild + ")";
    return version;
}

bool CurlUpdateChecker::updateLatestVersionDictionary() try {
    if (!libraryIsReady()) return false;
    auto record = fetchRecord(_settings, _givenUp);
    if (!record) return false;
    const std::lock_guard lock(_mutex);
    _record = std::move(record);
    return true;
} catch (const std::exception&) {
    return false;
}

std::optional<std::string> CurlUpdateChecker::latestVersion() const {
    const std::lock_guard lock(_mutex);
    if (!_record || compareVersions(_record->version, _settings.installedVersion) <= 0) return {};
    return _record->version;
}

std::string CurlUpdateChecker::latestVersionURL() const {
    const std::lock_guard lock(_mutex);
    return _record ? _record->pageUrl : std::string();
}

}  // namespace quorel
