#include "OstrelGUI/Session/OstrelSessionStore.h"

#include "OstrelGUI/Session/SessionCoding.h"
#include "OstrelGUI/Session/SessionJournal.h"
#include "OstrelGUI/Session/SessionReplay.h"
#include "OstrelPlatform/ThreadSerialQueue.h"
#include "OstrelPlatform/UserDefaults.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

/// Far above a thousand pictures.
constexpr std::size_t MaxBaseSize = 128U << 20;
/// A journal below this is not worth a fold.
constexpr std::size_t MinFoldSize = 1U << 20;
/// After a failure to write the base, which costs megabytes of encoding a time.
constexpr int SavesToSkip = 200;

} // namespace

OstrelSessionStore::OstrelSessionStore(UserDefaults& defaults)
    : defaults_(defaults)
    , background_(std::make_unique<ThreadSerialQueue>()) {
    if (const auto folder = defaults.folder())
        journal_ = std::make_unique<SessionJournal>(*folder, Key);
}

OstrelSessionStore::~OstrelSessionStore() {
    background_.reset();
    if (unsaved_) {
        savesToSkip_ = 0;
        save(OstrelSessionState(*unsaved_));
    }
    if (hasBase_ && journal_ && !journal_->isEmpty())
        writeBase(saved_, journal_->rotate());
}

OstrelSessionState OstrelSessionStore::load() {
    isLoaded_ = true;
    if (auto base = loadBase()) {
        saved_ = std::move(*base);
        return saved_;
    }
    // A journal means nothing without its base.
    if (journal_)
        journal_->setAside();
    if (const auto legacy = defaults_.data(LegacyKey))
        saved_ = decodeLegacySession(*legacy).value_or(OstrelSessionState());
    return saved_;
}

std::optional<OstrelSessionState> OstrelSessionStore::loadBase() {
    const auto path = defaults_.dataFile(Key);
    const auto file = path ? std::make_shared<const FileDescriptor>(openFile(*path)) : nullptr;
    const auto bytes = file ? contentsOf(*file, MaxBaseSize) : defaults_.data(Key);
    auto base = bytes ? decodeSession(*bytes, file) : std::nullopt;
    if (!base) {
        // Whatever is there, the next save must not destroy it.
        defaults_.setDataAside(Key);
        return std::nullopt;
    }
    hasBase_ = true;
    baseSize_ = bytes->size();
    const auto changes = journal_ ? journal_->read(checksum(*bytes)) : std::vector<std::string>();
    if (changes.empty())
        return base;
    SessionReplay replay(std::move(*base));
    for (const auto& change : changes)
        replay.apply(change);
    saved_ = replay.take();
    foldLater();
    return saved_;
}

void OstrelSessionStore::save(const OstrelSessionState& state) {
    if (!isLoaded_)
        load();
    // What was there at the start is small or nothing, so trying it costs little; the change goes behind it.
    if (!hasBase_ && journal_ && unsaved_)
        hasBase_ = writeBase(saved_, journal_->rotate());
    if (!hasBase_ || !journal_)
        return saveBase(state);
    const auto change = encodeChange(saved_, state);
    if (!change) {
        unsaved_.reset();
        return;
    }
    // Somebody may have removed the folder, or put something in the journal's place.
    if (!journal_->append(*change))
        return saveBase(state);
    unsaved_.reset();
    saved_ = state;
    if (journal_->size() > std::max<std::size_t>(MinFoldSize, baseSize_))
        foldLater();
}

void OstrelSessionStore::saveBase(const OstrelSessionState& state) {
    unsaved_ = state;
    if (savesToSkip_ > 0) {
        --savesToSkip_;
        return;
    }
    const int number = journal_ ? journal_->rotate() : 0;
    if (!writeBase(state, number)) {
        savesToSkip_ = SavesToSkip;
        return;
    }
    unsaved_.reset();
    hasBase_ = true;
    saved_ = state;
}

void OstrelSessionStore::foldLater() {
    background_->post([this, state = saved_, number = journal_->rotate()] { writeBase(state, number); });
}

bool OstrelSessionStore::writeBase(const OstrelSessionState& state, int journalNumber) {
    const auto bytes = encodeSession(state);
    if (journal_)
        journal_->markFolded(journalNumber, checksum(bytes));
    if (!defaults_.setData(Key, bytes))
        return false;
    baseSize_ = bytes.size();
    if (journal_)
        journal_->discard(journalNumber);
    return true;
}

} // namespace Ostrel
