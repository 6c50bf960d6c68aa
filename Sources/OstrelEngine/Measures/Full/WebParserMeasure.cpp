#include "OstrelEngine/Measures/Full/WebParserMeasure.h"

#include "OstrelCore/Files/AtomicFile.h"
#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Measures/Full/FullMeasureFactory.h"
#include "OstrelEngine/Measures/Full/ScriptFiles.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/ThreadSerialQueue.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <utility>

namespace Ostrel {

namespace fs = std::filesystem;

namespace {

constexpr int DefaultUpdateRate = 600;
constexpr int MaxRedirects = 5;
constexpr std::size_t MaxPage = 8U << 20;
constexpr std::size_t MaxDownload = 32U << 20;
constexpr std::size_t MaxParts = 4096;
constexpr int FirstErrorStatus = 400;

/// The number that a text begins with.
double leadingNumber(std::string_view text) {
    text = trimmed(text);
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const double value = parseNumberPrefix(text).value;
    return isNegative ? -value : value;
}

bool isFileURL(std::string_view url) {
    return hasPrefixIgnoringCase(url, "FILE:");
}

/// The path of "file:///a%20b": one, two or three slashes.
std::string filePath(std::string_view url) {
    url.remove_prefix(std::string_view("file:").size());
    while (url.starts_with("//"))
        url.remove_prefix(1);
    std::string path;
    for (std::size_t i = 0; i < url.size(); ++i) {
        const auto hex = [&](std::size_t at) {
            const char upper = at < url.size() ? asciiUpper(url[at]) : '\0';
            return isASCIIDigit(upper) ? upper - '0' : upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
        };
        if (url[i] == '%' && hex(i + 1) >= 0 && hex(i + 2) >= 0) {
            path += static_cast<char>(hex(i + 1) * 16 + hex(i + 2));
            i += 2;
        } else {
            path += url[i];
        }
    }
    return path;
}

/// As "12:34:56 UTC".
std::string timeOfDay(double wallSeconds) {
    const auto second = static_cast<std::int64_t>(std::fmod(wallSeconds, 86400));
    const auto two = [](std::int64_t value) { return (value < 10 ? "0" : "") + formatInteger(value); };
    return two(second / 3600) + ":" + two(second / 60 % 60) + ":" + two(second % 60) + " UTC";
}

/// One thread for the pages of all skins, while any skin has one.
std::shared_ptr<SerialQueue> sharedWorker() {
    static std::weak_ptr<SerialQueue> shared;
    auto worker = shared.lock();
    if (!worker)
        shared = worker = std::make_shared<ThreadSerialQueue>();
    return worker;
}

} // namespace

/// One page on its way through the worker.
struct WebParserMeasure::Page {
    std::string url;
    /// Of a file that the worker reads first; empty for bytes that are here.
    std::string path;
    std::string bytes;
    int codePage = 0;
    std::vector<WebPart> parts;
    /// Absent when the file cannot be read.
    std::optional<std::string> text;
};

WebParserMeasure::WebParserMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , userAgent_(text("UserAgent"_key))
    , proxy_(text("ProxyServer"_key)) {
    show("");
}

WebParserMeasure::~WebParserMeasure() = default;

WebParserMeasure* WebParserMeasure::from(BaseMeasure* measure) {
    if (!measure)
        return nullptr;
    const auto& definition = measure->definition();
    const bool isPlugin = equalsIgnoringCase(trimmed(definition.measureType), "Plugin");
    const auto kind = isPlugin ? FullMeasureFactory::pluginName(definition.pluginName.value_or(""))
                               : upperCased(trimmed(definition.measureType));
    return kind == "WEBPARSER" ? static_cast<WebParserMeasure*>(measure) : nullptr;
}

WebParserMeasure::Link WebParserMeasure::link() const {
    const auto url = trimmed(text("URL"_key));
    const auto open = url.find('[');
    const auto close = url.find(']', open);
    if (close == std::string_view::npos)
        return {};
    auto* parent = from(host().measure(url.substr(open + 1, close - open - 1)));
    return {parent, std::string(url.substr(0, open)), std::string(url.substr(close + 1))};
}

void WebParserMeasure::show(std::string_view text) {
    text_ = text;
    publishText(text_, leadingNumber(text_));
}

void WebParserMeasure::update() {
    show(std::string(text_));
    if (link().parent)
        return;
    const int rate = integer("UpdateRate"_key, DefaultUpdateRate);
    const bool isFirst = !updates_;
    const int updates = isFirst ? 0 : *updates_ + 1;
    const bool isDue = isFirst || (rate >= 0 && updates >= std::max(rate, 1));
    updates_ = isDue ? 0 : updates;
    if (isDue && !isFetching_)
        fetch();
}

bool WebParserMeasure::executeCommand(std::string_view command) {
    // Parents answer commands. Measures that name each other in a ring have none.
    constexpr int MaxDepth = 32;
    auto* root = this;
    for (int depth = 0; auto* parent = root->link().parent; root = parent) {
        if (++depth > MaxDepth)
            return true;
    }
    if (root != this)
        return root->executeCommand(command);
    command = trimmed(command);
    if (equalsIgnoringCase(command, "Update")) {
        updates_ = 0;
        if (isFetching_)
            fetchesAgain_ = true;
        else
            fetch();
    } else if (equalsIgnoringCase(command, "Reset")) {
        reset();
    }
    return true;
}

void WebParserMeasure::reset() {
    for (const auto& part : parts()) {
        if (auto* measure = from(host().measure(part.name)))
            measure->show("");
    }
}

void WebParserMeasure::run(const CaseKey& action) {
    if (const std::string written(text(action)); !written.empty())
        host().runAction(*this, written);
}

SerialQueue& WebParserMeasure::worker() {
    if (auto* given = host().platform().worker)
        return *given;
    if (!worker_)
        worker_ = sharedWorker();
    return *worker_;
}

// Fetching

void WebParserMeasure::fetch() {
    const std::string url(OptionValues::unquoted(trimmed(text("URL"_key))));
    if (url.empty())
        return;
    if (isOn("Download"_key, false))
        download(url);
    else if (isFileURL(url))
        readFile(url);
    else
        fetchPage(WebPage::encodedAddress(url), 0, false);
}

WebRequest WebParserMeasure::request(std::string url, bool mayReachLocal) const {
    WebRequest request{.url = std::move(url), .userAgent = userAgent_};
    for (int i = 1;; ++i) {
        const auto* header = options().find(i == 1 ? std::string("Header") : "Header" + formatInteger(i));
        if (!header)
            break;
        if (header->find_first_of("\r\n") == std::string::npos)
            request.headers.push_back(*header);
    }
    bool isForced = isOn("ForceReload"_key, false);
    for (const auto flag : split(text("Flags"_key), '|')) {
        const auto name = upperCased(trimmed(flag));
        isForced = isForced || name == "FORCERELOAD";
        if (name == "PRAGMANOCACHE")
            request.headers.emplace_back("Pragma: no-cache");
        if (name == "NOCACHEWRITE")
            request.mayStore = false;
    }
    request.mayUseCache = !isForced;
    if (equalsIgnoringCase(proxy_, "/none"))
        request.proxy = "none";
    else if (!proxy_.empty() && !proxy_.starts_with('/'))
        request.proxy = proxy_;
    request.maxBytes = MaxPage;
    request.mayReachLocal = mayReachLocal;
    request.asker = &host();
    return request;
}

void WebParserMeasure::fetchPage(std::string url, int redirects, bool mayReachLocal) {
    const auto server = WebPage::hostOf(url);
    auto* web = host().platform().web;
    if (server.empty() || !host().isAllowed(Permission::Web, url) || !web) {
        done();
        return;
    }
    isFetching_ = true;
    auto asked = request(url, mayReachLocal);
    const bool isDownload = isOn("Download"_key, false);
    if (isDownload)
        asked.maxBytes = MaxDownload;
    fetch_ = web->fetch(
        std::move(asked), [this, url, redirects, mayReachLocal, life = std::weak_ptr<int>(life_)](WebAnswer answer) {
            if (life.expired())
                return;
            // The fetch is over, and its end may begin another one.
            const auto ended = std::move(fetch_);
            takeAnswer(url, std::move(answer), redirects, mayReachLocal);
        });
}

void WebParserMeasure::takeAnswer(const std::string& url, WebAnswer answer, int redirects, bool mayReachLocal) {
    const auto server = WebPage::hostOf(url);
    if (answer.outcome == WebAnswer::Outcome::LocalAddress && !mayReachLocal
        && host().isAllowed(Permission::Web, "local:" + server)) {
        fetchPage(url, redirects, true);
        return;
    }
    if (answer.outcome == WebAnswer::Outcome::Answered && !answer.location.empty()) {
        const auto next = WebPage::hostOf(answer.location);
        if (!next.empty() && redirects < MaxRedirects) {
            // Consent to a local address is for that host alone.
            fetchPage(answer.location, redirects + 1, mayReachLocal && next == server);
            return;
        }
        answer.outcome = WebAnswer::Outcome::Failed;
        answer.error = next.empty() ? "it redirects to what is no page" : "it redirects again and again";
    }
    const bool isDownload = isOn("Download"_key, false);
    if (isDownload) {
        takeDownload(url, std::move(answer));
        return;
    }
    if (answer.outcome != WebAnswer::Outcome::Answered) {
        connectionFailed(url, answer.error);
        return;
    }
    failsSince_.reset();
    if (answer.status >= FirstErrorStatus) {
        host().log(LogLevel::Warning, name(), url + " answers with status " + formatInteger(answer.status));
        run("OnRegExpErrorAction"_key);
        done();
        return;
    }
    auto page = std::make_shared<Page>();
    page->url = url;
    page->bytes = std::move(answer.body);
    parse(std::move(page));
}

void WebParserMeasure::connectionFailed(const std::string& url, const std::string& why) {
    if (!failsSince_)
        failsSince_ = host().platform().clock.wallSeconds();
    host().log(LogLevel::Error, name(),
        url + " does not answer since " + timeOfDay(*failsSince_) + (why.empty() ? "" : ": " + why));
    run("OnConnectErrorAction"_key);
    done();
}

bool WebParserMeasure::isAllowedFile(const std::string& path) const {
    if (path.empty())
        return false;
    std::string error;
    const bool isInPack = host().folders().isInPack(path);
    return isInPack || host().isAllowed(Permission::Files, path);
}

void WebParserMeasure::readFile(std::string_view url) {
    const auto path = host().folders().absolutePath(filePath(url));
    if (!isAllowedFile(path)) {
        connectionFailed(std::string(url), "the file may not be read");
        return;
    }
    isFetching_ = true;
    auto page = std::make_shared<Page>();
    page->url = url;
    page->path = path;
    parse(std::move(page));
}

void WebParserMeasure::done() {
    isFetching_ = false;
    if (std::exchange(fetchesAgain_, false))
        fetch();
}

// Matching

WebPart WebParserMeasure::part() const {
    return {.name = name(),
        .pattern = std::string(OptionValues::unquoted(trimmed(text("RegExp"_key)))),
        .index = integer("StringIndex"_key, 0),
        .index2 = integer("StringIndex2"_key, 0),
        .decodedReferences = integer("DecodeCharacterReference"_key, 0),
        .decodesCodePoints = integer("DecodeCodePoints"_key, 0) == 1};
}

std::vector<WebPart> WebParserMeasure::parts() {
    std::vector<WebPart> result{part()};
    std::vector<std::pair<WebParserMeasure*, WebParserMeasure*>> links;
    for (const auto& measure : host().allMeasures()) {
        auto* child = from(measure.get());
        if (auto* parent = child ? child->link().parent : nullptr; parent && child != this)
            links.emplace_back(parent, child);
    }
    std::vector<WebParserMeasure*> found{this};
    for (std::size_t i = 0; i < found.size(); ++i) {
        for (auto& [parent, child] : links) {
            if (parent != found[i] || result.size() >= MaxParts)
                continue;
            // Each once, so that measures that name each other in a ring come to an end.
            parent = nullptr;
            found.push_back(child);
            result.push_back(child->part());
            result.back().parent = i;
        }
    }
    return result;
}

void WebParserMeasure::parse(std::shared_ptr<Page> page) {
    isFetching_ = true;
    page->codePage = integer("CodePage"_key, 0);
    page->parts = parts();
    auto& mainQueue = host().platform().mainQueue;
    worker().post([this, page = std::move(page), &mainQueue, life = std::weak_ptr<int>(life_)] {
        std::optional<std::string> bytes = std::move(page->bytes);
        if (!page->path.empty())
            bytes = contentsOf(openFile(page->path), MaxPage);
        if (bytes) {
            page->text = WebPage::decoded(std::move(*bytes), page->codePage);
            WebPage::take(*page->text, page->parts);
        }
        mainQueue.post([this, page, life] {
            if (!life.expired())
                deliver(*page);
        });
    });
}

void WebParserMeasure::deliver(const Page& page) {
    if (!page.text) {
        connectionFailed(page.url, "the file cannot be read");
        return;
    }
    if (const int debug = integer("Debug"_key, 0); debug == 2)
        dump(*page.text);
    for (const auto& part : page.parts) {
        if (auto* measure = from(host().measure(part.name)))
            measure->takePart(part);
    }
    for (const auto& part : page.parts)
        logPart(part);
    const auto& own = page.parts.front();
    if (own.hasFailed && !text("OnRegExpErrorAction"_key).empty())
        run("OnRegExpErrorAction"_key);
    else
        run("FinishAction"_key);
    for (const auto& part : page.parts) {
        auto* measure = part.hasFailed || part.isMissing ? nullptr : from(host().measure(part.name));
        if (!measure || measure == this || !measure->isOn("Download"_key, false))
            continue;
        const auto place = measure->link();
        if (!measure->isFetching_ && !part.text.empty())
            measure->download(place.before + part.text + place.after);
    }
    done();
}

void WebParserMeasure::takePart(const WebPart& part) {
    if (part.hasFailed) {
        const auto error = option("ErrorString"_key);
        if (error && !error->empty())
            show(*error);
    } else if (!part.parent || !isOn("Download"_key, false)) {
        show(part.text);
    }
    host().valueDidArrive(*this);
}

void WebParserMeasure::logPart(const WebPart& part) const {
    if (!part.error.empty())
        host().log(LogLevel::Warning, part.name, part.error);
    if (part.isMissing && isOn("LogSubstringErrors"_key, true)) {
        const int index = part.parent && !part.pattern.empty() ? part.index2 : part.index;
        host().log(LogLevel::Warning, part.name, "there is no capture " + formatInteger(index));
    }
    if (integer("Debug"_key, 0) != 1 || part.pattern.empty())
        return;
    for (std::size_t i = 0; i < part.captures.size(); ++i) {
        constexpr std::size_t Longest = 200;
        host().log(LogLevel::Debug, part.name,
            "capture " + formatInteger(static_cast<std::int64_t>(i)) + ": " + part.captures[i].substr(0, Longest));
    }
}

void WebParserMeasure::dump(std::string_view page) const {
    PackFolders own = host().folders();
    own.root = own.skinFolder;
    own.settings.clear();
    own.skins.clear();
    std::string error;
    const std::string file(text("Debug2File"_key, "WebParserDump.txt"));
    if (!ScriptFiles(own).write(file, page, error))
        host().log(LogLevel::Warning, name(), file + ": " + error);
}

// Downloads

std::string WebParserMeasure::downloadFile(std::string_view url) {
    const auto& folders = host().folders();
    const auto written = normalizeSeparators(OptionValues::unquoted(trimmed(text("DownloadFile"_key))));
    std::error_code failed;
    if (!written.empty()) {
        const auto folder = fs::path(folders.skinFolder) / "DownloadFile";
        const auto relative = fs::path(written).lexically_normal();
        // A drive letter makes a path absolute, too.
        const bool isOutside
            = relative.is_absolute() || *relative.begin() == ".." || written.find(':') != std::string::npos;
        if (isOutside || relative.filename().empty())
            return {};
        const auto file = folder / relative;
        fs::create_directories(file.parent_path(), failed);
        return file.string();
    }
    const auto folder = fs::path(folders.settings) / "Downloads";
    fs::create_directories(folder, failed);
    auto last = lastPathComponent(url.substr(0, url.find_first_of("?#")));
    std::ranges::replace_if(
        last,
        [](char c) { return !isASCIIDigit(c) && c != '.' && c != '-' && !std::isalpha(static_cast<unsigned char>(c)); },
        '_');
    constexpr std::size_t Longest = 80;
    // The same name for the same URL and measure, another one for every other.
    const auto key = std::hash<std::string>()(std::string(url) + "\n" + name() + "\n" + folders.skinFile);
    return (folder / (formatInteger(static_cast<std::int64_t>(key >> 1)) + "-" + last.substr(0, Longest))).string();
}

void WebParserMeasure::download(const std::string& url) {
    if (!isFileURL(url)) {
        fetchPage(WebPage::encodedAddress(url), 0, false);
        return;
    }
    const auto path = host().folders().absolutePath(filePath(url));
    WebAnswer answer;
    if (isAllowedFile(path)) {
        if (auto bytes = contentsOf(openFile(path), MaxDownload))
            answer = {.outcome = WebAnswer::Outcome::Answered, .status = 200, .body = std::move(*bytes)};
    }
    takeDownload(url, std::move(answer));
}

void WebParserMeasure::takeDownload(const std::string& url, WebAnswer answer) {
    const bool hasCome = answer.outcome == WebAnswer::Outcome::Answered && answer.status < FirstErrorStatus;
    const auto file = hasCome ? downloadFile(url) : std::string();
    // The folder may be a link to elsewhere.
    const bool isInPack = !file.empty() && host().folders().isInPack(file);
    if (isInPack && writeFileAtomically(file, answer.body)) {
        std::error_code failed;
        fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, failed);
        show(file);
        host().valueDidArrive(*this);
        run("FinishAction"_key);
    } else {
        host().log(LogLevel::Error, name(), url + " was not saved" + (answer.error.empty() ? "" : ": " + answer.error));
        run("OnDownloadErrorAction"_key);
    }
    done();
}

} // namespace Ostrel
