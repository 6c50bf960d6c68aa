#include "OstrelGUI/Window/PreviewCache.h"

#include "OstrelGUI/Window/PreviewDecoder.h"

#include <QObject>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace Ostrel {

/// The thread and what it shares with the cache.
struct PreviewCache::Worker {
    using Result = std::function<void(Data, QSize, QImage)>;

    std::mutex mutex;
    std::condition_variable changed;
    /// Guarded by `mutex`, as all that follows but the thread.
    std::vector<Data> wanted;
    QSize box;
    bool isEnding = false;
    /// What is delivered goes through it to the main thread; it goes with the cache, and what is under way with it.
    QObject receiver;
    std::thread thread;

    void run(const Result& deliver) {
        std::unique_lock lock(mutex);
        while (true) {
            changed.wait(lock, [this] { return isEnding || !wanted.empty(); });
            if (isEnding)
                return;
            const Data next = std::move(wanted.front());
            wanted.erase(wanted.begin());
            const QSize size = box;
            lock.unlock();
            deliver(next, size, decodePreview(*next, size));
            lock.lock();
        }
    }
};

PreviewCache::PreviewCache(std::function<void()> onReady)
    : onReady_(std::move(onReady))
    , worker_(std::make_unique<Worker>()) { }

PreviewCache::~PreviewCache() {
    {
        const std::lock_guard lock(worker_->mutex);
        worker_->isEnding = true;
    }
    worker_->changed.notify_one();
    if (worker_->thread.joinable())
        worker_->thread.join();
}

const QImage* PreviewCache::find(const Data& data, QSize box) {
    if (box != box_)
        return nullptr;
    const auto found = index_.find(data.get());
    if (found == index_.end())
        return nullptr;
    entries_.splice(entries_.begin(), entries_, found->second);
    return &found->second->image;
}

void PreviewCache::want(std::vector<Data> data, QSize box) {
    if (box != box_) {
        clear();
        box_ = box;
    }
    std::erase_if(data, [this](const Data& one) { return !one || index_.contains(one.get()); });
    {
        const std::lock_guard lock(worker_->mutex);
        worker_->wanted = std::move(data);
        worker_->box = box;
        if (worker_->wanted.empty())
            return;
    }
    worker_->changed.notify_one();
    if (worker_->thread.joinable())
        return;
    worker_->thread = std::thread([this, worker = worker_.get()] {
        worker->run([this, worker](Data bytes, QSize size, QImage image) {
            QMetaObject::invokeMethod(
                &worker->receiver,
                [this, bytes = std::move(bytes), size, image = std::move(image)]() mutable {
                    if (size != box_)
                        return;
                    keep(bytes, std::move(image));
                    onReady_();
                },
                Qt::QueuedConnection);
        });
    });
}

void PreviewCache::keep(const Data& data, QImage image) {
    if (index_.contains(data.get()))
        return;
    bytes_ += image.sizeInBytes();
    entries_.push_front({data, std::move(image)});
    index_[data.get()] = entries_.begin();
    while (bytes_ > MaximumBytes && entries_.size() > 1) {
        const Entry& oldest = entries_.back();
        bytes_ -= oldest.image.sizeInBytes();
        index_.erase(oldest.data.get());
        entries_.pop_back();
    }
}

void PreviewCache::clear() {
    entries_.clear();
    index_.clear();
    bytes_ = 0;
}

} // namespace Ostrel
