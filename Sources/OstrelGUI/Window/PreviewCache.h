#pragma once

#include <QImage>

#include <functional>
#include <list>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace Ostrel {

/// The decoded previews of the cards that show, and of those that showed lately. A thread of its own decodes what is
/// wanted now; what has scrolled by before its turn is not decoded. Main thread.
class PreviewCache {
public:
    using Data = std::shared_ptr<const std::string>;

    /// `onReady` runs on the main thread whenever further previews can be had.
    explicit PreviewCache(std::function<void()> onReady);
    ~PreviewCache();
    PreviewCache(const PreviewCache&) = delete;
    PreviewCache& operator=(const PreviewCache&) = delete;

    /// The preview as it was decoded for `box`, in pixels; null while it is not there yet. An image that is null says
    /// that it does not decode.
    const QImage* find(const Data& data, QSize box);
    /// What shows at the moment; replaces what was wanted before.
    void want(std::vector<Data> data, QSize box);

    /// The pixels that are kept at most.
    static constexpr qsizetype MaximumBytes = 48 << 20;
    qsizetype bytes() const { return bytes_; }

private:
    struct Worker;
    struct Entry {
        Data data;
        QImage image;
    };
    void keep(const Data& data, QImage image);
    void clear();

    std::function<void()> onReady_;
    /// The most recently used first.
    std::list<Entry> entries_;
    /// The bytes' address names them: an entry holds them, so the address is not given away while it counts.
    std::unordered_map<const std::string*, std::list<Entry>::iterator> index_;
    qsizetype bytes_ = 0;
    QSize box_;
    std::unique_ptr<Worker> worker_;
};

} // namespace Ostrel
