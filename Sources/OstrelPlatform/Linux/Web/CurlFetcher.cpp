#include "OstrelPlatform/Linux/Web/CurlFetcher.h"

#include "OstrelPlatform/Linux/Web/LocalAddress.h"
#include "OstrelPlatform/Linux/Web/WebStore.h"
#include "OstrelPlatform/MainQueue.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <curl/curl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Ostrel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* OwnUserAgent = "Ostrel";
constexpr std::size_t MaxRemembered = 1000;

std::chrono::milliseconds milliseconds(double seconds) {
    return std::chrono::milliseconds(static_cast<long>(seconds * 1000));
}

/// Through a proxy it is the proxy that looks the host up.
bool hasProxy(const WebRequest& request) {
    if (request.proxy == "none")
        return false;
    if (!request.proxy.empty())
        return true;
    for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
        if (const char* value = std::getenv(name); value && *value)
            return true;
    }
    return false;
}

/// The text between "://" and the path.
std::string authority(std::string_view url) {
    const auto begin = url.find("://");
    url.remove_prefix(begin == std::string_view::npos ? 0 : begin + 3);
    url = url.substr(0, url.find_first_of("/?#"));
    url.remove_prefix(url.rfind('@') + 1);
    return std::string(url);
}

std::string_view trimmedValue(std::string_view text) {
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n' || text.back() == ' '))
        text.remove_suffix(1);
    while (text.starts_with(' '))
        text.remove_prefix(1);
    return text;
}

bool beginsWith(std::string_view line, std::string_view lowerName) {
    return line.size() >= lowerName.size()
        && std::ranges::equal(line.substr(0, lowerName.size()), lowerName, {},
            [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
}

} // namespace

/// One request from its posting to its answer. The worker's thread, but for `isDropped`.
struct Transfer {
    WebRequest request;
    std::function<void(WebAnswer)> onAnswer;
    std::atomic<bool> isDropped = false;

    std::string host;
    CURL* easy = nullptr;
    curl_slist* headers = nullptr;
    WebStore::Entry received;
    bool isTooLarge = false;
    bool isLocal = false;
    bool mayReachLocal = false;
};

class CurlFetcher::Worker {
public:
    Worker(MainQueue& queue, const Limits& limits)
        : queue_(queue)
        , limits_(limits)
        , store_(limits.store)
        , multi_(curl_multi_init()) {
        thread_ = std::thread([this] { run(); });
    }
    ~Worker() {
        isStopping_ = true;
        curl_multi_wakeup(multi_);
        thread_.join();
        for (const auto& transfer : active_)
            release(*transfer);
        curl_multi_cleanup(multi_);
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void post(std::shared_ptr<Transfer> transfer) {
        {
            const std::lock_guard lock(mutex_);
            posted_.push_back(std::move(transfer));
        }
        curl_multi_wakeup(multi_);
    }
    void wake() { curl_multi_wakeup(multi_); }

private:
    void run() {
        while (!isStopping_) {
            takePosted();
            const auto wait = startDue();
            int running = 0;
            curl_multi_perform(multi_, &running);
            finishDone();
            dropUnwanted();
            curl_multi_poll(multi_, nullptr, 0, static_cast<int>(wait.count()), nullptr);
        }
    }

    void takePosted() {
        const std::lock_guard lock(mutex_);
        for (auto& transfer : posted_)
            waiting_.push_back(std::move(transfer));
        posted_.clear();
    }

    /// Starts what the limits allow, and tells how long nothing else can begin.
    std::chrono::milliseconds startDue() {
        constexpr std::chrono::milliseconds Longest{10000};
        auto wait = Longest;
        for (auto at = waiting_.begin(); at != waiting_.end();) {
            const auto transfer = *at;
            if (transfer->isDropped) {
                at = waiting_.erase(at);
                continue;
            }
            const auto now = Clock::now();
            const auto last = lastStarts_.find(transfer->request.url);
            const auto due = last == lastStarts_.end() ? now : last->second + milliseconds(limits_.pauseSeconds);
            if (due > now) {
                wait = std::min(wait,
                    std::chrono::duration_cast<std::chrono::milliseconds>(due - now) + std::chrono::milliseconds(1));
            } else if (hasRoom(*transfer)) {
                at = waiting_.erase(at);
                start(transfer);
                continue;
            }
            ++at;
        }
        return wait;
    }

    bool hasRoom(const Transfer& transfer) const {
        const auto sameAsker
            = std::ranges::count_if(active_, [&](const auto& a) { return a->request.asker == transfer.request.asker; });
        const auto sameHost = std::ranges::count_if(active_, [&](const auto& a) { return a->host == transfer.host; });
        return sameAsker < limits_.perAsker && sameHost < limits_.perHost;
    }

    void start(const std::shared_ptr<Transfer>& shared) {
        auto& transfer = *shared;
        const auto& request = transfer.request;
        const auto now = Clock::now();
        if (lastStarts_.size() >= MaxRemembered)
            std::erase_if(lastStarts_,
                [&](const auto& entry) { return entry.second + milliseconds(limits_.pauseSeconds) < now; });
        lastStarts_[request.url] = now;

        transfer.mayReachLocal = request.mayReachLocal || hasProxy(request);
        if (!request.mayReachLocal && isLocalName(transfer.host)) {
            answer(transfer, {.outcome = WebAnswer::Outcome::LocalAddress});
            return;
        }
        transfer.easy = curl_easy_init();
        CURL* easy = transfer.easy;
        curl_easy_setopt(easy, CURLOPT_PRIVATE, &transfer);
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
        curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);
        curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connectSeconds * 1000));
        curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(limits_.totalSeconds * 1000));
        curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
        curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
        curl_easy_setopt(easy, CURLOPT_USERAGENT, request.userAgent.empty() ? OwnUserAgent : request.userAgent.c_str());
        if (request.proxy == "none")
            curl_easy_setopt(easy, CURLOPT_PROXY, "");
        else if (!request.proxy.empty())
            curl_easy_setopt(easy, CURLOPT_PROXY, request.proxy.c_str());
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, takeBody);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
        curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, takeHeader);
        curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer);
        curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, openSocket);
        curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, &transfer);
        for (const auto& header : request.headers)
            transfer.headers = curl_slist_append(transfer.headers, header.c_str());
        if (request.mayUseCache) {
            for (const auto& header : store_.conditions(request))
                transfer.headers = curl_slist_append(transfer.headers, header.c_str());
        }
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer.headers);
        curl_multi_add_handle(multi_, easy);
        active_.push_back(shared);
    }

    static std::size_t takeBody(char* bytes, std::size_t, std::size_t size, void* self) {
        auto& transfer = *static_cast<Transfer*>(self);
        auto& body = transfer.received.body;
        transfer.isTooLarge = body.size() + size > transfer.request.maxBytes;
        if (transfer.isTooLarge || transfer.isDropped)
            return 0;
        body.append(bytes, size);
        return size;
    }

    static std::size_t takeHeader(char* bytes, std::size_t, std::size_t size, void* self) {
        auto& entry = static_cast<Transfer*>(self)->received;
        const std::string_view line(bytes, size);
        if (beginsWith(line, "etag:"))
            entry.tag = trimmedValue(line.substr(5));
        else if (beginsWith(line, "last-modified:"))
            entry.date = trimmedValue(line.substr(14));
        return size;
    }

    static curl_socket_t openSocket(void* self, curlsocktype, curl_sockaddr* address) {
        auto& transfer = *static_cast<Transfer*>(self);
        if (!transfer.mayReachLocal && isLocalAddress(address->addr)) {
            transfer.isLocal = true;
            return CURL_SOCKET_BAD;
        }
        return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    }

    void finishDone() {
        int left = 0;
        while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
            if (message->msg != CURLMSG_DONE)
                continue;
            char* self = nullptr;
            curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &self);
            auto& transfer = *reinterpret_cast<Transfer*>(self);
            const auto result = message->data.result;
            answer(transfer, answerOf(transfer, result));
            release(transfer);
            std::erase_if(active_, [&](const auto& shared) { return shared.get() == &transfer; });
        }
    }

    WebAnswer answerOf(Transfer& transfer, CURLcode result) {
        if (transfer.isTooLarge)
            return {.outcome = WebAnswer::Outcome::TooLarge, .error = "the answer is too long"};
        if (result != CURLE_OK && transfer.isLocal)
            return {.outcome = WebAnswer::Outcome::LocalAddress, .error = "the address is in the local net"};
        if (result != CURLE_OK)
            return {.outcome = WebAnswer::Outcome::Failed, .error = curl_easy_strerror(result)};
        long status = 0;
        char* location = nullptr;
        curl_easy_getinfo(transfer.easy, CURLINFO_RESPONSE_CODE, &status);
        curl_easy_getinfo(transfer.easy, CURLINFO_REDIRECT_URL, &location);
        WebAnswer answer{.outcome = WebAnswer::Outcome::Answered,
            .status = static_cast<int>(status),
            .location = location ? location : ""};
        constexpr long Unchanged = 304;
        constexpr long Good = 200;
        if (status == Unchanged) {
            answer.status = Good;
            answer.body = store_.body(transfer.request);
        } else {
            if (status == Good && transfer.request.mayStore)
                store_.keep(transfer.request, transfer.received);
            answer.body = std::move(transfer.received.body);
        }
        return answer;
    }

    void answer(Transfer& transfer, WebAnswer answer) {
        if (transfer.isDropped)
            return;
        // The transfer itself is what the handle may still drop.
        auto shared = std::make_shared<WebAnswer>(std::move(answer));
        queue_.post([onAnswer = transfer.onAnswer, shared] { onAnswer(std::move(*shared)); });
    }

    void dropUnwanted() {
        std::erase_if(active_, [this](const auto& transfer) {
            if (transfer->isDropped)
                release(*transfer);
            return transfer->isDropped.load();
        });
    }

    void release(Transfer& transfer) {
        if (transfer.easy) {
            curl_multi_remove_handle(multi_, transfer.easy);
            curl_easy_cleanup(std::exchange(transfer.easy, nullptr));
        }
        curl_slist_free_all(std::exchange(transfer.headers, nullptr));
    }

    MainQueue& queue_;
    Limits limits_;
    WebStore store_;
    CURLM* multi_;
    std::list<std::shared_ptr<Transfer>> waiting_;
    std::vector<std::shared_ptr<Transfer>> active_;
    std::map<std::string, Clock::time_point> lastStarts_;
    std::mutex mutex_;
    std::vector<std::shared_ptr<Transfer>> posted_;
    std::atomic<bool> isStopping_ = false;
    std::thread thread_;
};

class CurlFetcher::Handle final : public WebFetch {
public:
    Handle(std::shared_ptr<Transfer> transfer, std::weak_ptr<Worker> worker)
        : transfer_(std::move(transfer))
        , worker_(std::move(worker)) { }
    ~Handle() override {
        transfer_->isDropped = true;
        if (const auto worker = worker_.lock())
            worker->wake();
    }

private:
    std::shared_ptr<Transfer> transfer_;
    std::weak_ptr<Worker> worker_;
};

CurlFetcher::CurlFetcher(MainQueue& queue, Limits limits)
    : queue_(queue)
    , limits_(limits) { }

CurlFetcher::~CurlFetcher() = default;

std::unique_ptr<WebFetch> CurlFetcher::fetch(WebRequest request, std::function<void(WebAnswer)> onAnswer) {
    static const bool isReady = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    if (!isReady) {
        queue_.post([onAnswer = std::move(onAnswer)] { onAnswer({}); });
        return nullptr;
    }
    if (!worker_)
        worker_ = std::make_shared<Worker>(queue_, limits_);
    auto transfer = std::make_shared<Transfer>();
    transfer->host = authority(request.url);
    transfer->request = std::move(request);
    // Once more on the main thread: it may have been dropped while the answer waited there.
    transfer->onAnswer = [weak = std::weak_ptr<Transfer>(transfer), onAnswer = std::move(onAnswer)](WebAnswer answer) {
        const auto own = weak.lock();
        if (own && !own->isDropped)
            onAnswer(std::move(answer));
    };
    worker_->post(transfer);
    return std::make_unique<Handle>(std::move(transfer), worker_);
}

} // namespace Ostrel
