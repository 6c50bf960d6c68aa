#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/WebPage.h"
#include "OstrelPlatform/WebFetcher.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class SerialQueue;

/// Takes texts out of a page. A parent fetches `URL` and matches `RegExp`; a child, whose URL names its parent in
/// brackets, shows one capture; either may download a file. Fetching and matching are done elsewhere; the results of a
/// page arrive together, and then the actions run.
class WebParserMeasure final : public FullMeasure {
public:
    WebParserMeasure(const MeasureDefinition& definition, FullMeasureHost& host);
    ~WebParserMeasure() override;

    void update() override;
    bool executeCommand(std::string_view command) override;

private:
    struct Page;

    /// The measure when it is one of these, else null.
    static WebParserMeasure* from(BaseMeasure* measure);
    /// The measure that `URL` names in brackets, and the URL around the name.
    struct Link {
        WebParserMeasure* parent = nullptr;
        std::string before;
        std::string after;
    };
    Link link() const;

    void fetch();
    void fetchPage(std::string url, int redirects, bool mayReachLocal);
    void readFile(std::string_view url);
    bool isAllowedFile(const std::string& path) const;
    void takeAnswer(const std::string& url, WebAnswer answer, int redirects, bool mayReachLocal);
    void connectionFailed(const std::string& url, const std::string& why);
    /// Hands the page to the worker.
    void parse(std::shared_ptr<Page> page);
    void deliver(const Page& page);
    void takePart(const WebPart& part);
    void logPart(const WebPart& part) const;
    void dump(std::string_view page) const;
    /// The parts of this page: this measure, its children, theirs.
    std::vector<WebPart> parts();
    WebPart part() const;
    void reset();

    void download(const std::string& url);
    void takeDownload(const std::string& url, WebAnswer answer);
    std::string downloadFile(std::string_view url);

    WebRequest request(std::string url, bool mayReachLocal) const;
    void done();
    void run(const CaseKey& action);
    void show(std::string_view text);
    SerialQueue& worker();

    /// Options that are fixed when the skin is loaded.
    std::string userAgent_;
    std::string proxy_;
    std::string text_;
    /// Updates since the last fetch; absent before the first.
    std::optional<int> updates_;
    std::unique_ptr<WebFetch> fetch_;
    bool isFetching_ = false;
    bool fetchesAgain_ = false;
    /// Wall seconds.
    std::optional<double> failsSince_;
    std::shared_ptr<SerialQueue> worker_;
    /// What comes later asks whether the measure is still there.
    std::shared_ptr<int> life_ = std::make_shared<int>();
};

} // namespace Ostrel
