#pragma once

#include "OstrelGUI/Session/OstrelSessionState.h"

#include <atomic>
#include <memory>
#include <optional>
#include <string_view>

namespace Ostrel {

class SessionJournal;
class ThreadSerialQueue;
class UserDefaults;

/// The session in the user's settings, as JSON under one key; the key of the older form is read where there is no newer
/// one. What cannot be decoded counts as absent and is moved out of the way.
///
/// A session holds megabytes of pictures and changes sixty times a second while a widget is dragged. So the JSON under
/// the key is a base, and what has changed since goes into a journal beside the settings: one append a change, no
/// rewriting, no waiting for the disk. After the end of this process at any moment the two give the newest state that
/// was saved, or the one before. The journal is folded into the base at a start that finds one, when it has grown
/// larger than the base, both in the background, and when the store ends. Pictures stay in the base's file until
/// somebody looks at them. Settings that have no folder take the whole session at every change.
class OstrelSessionStore {
public:
    static constexpr std::string_view Key = "ostrel.sessionState.v2";
    static constexpr std::string_view LegacyKey = "ostrel.sessionState.v1";

    /// The settings outlive the store.
    explicit OstrelSessionStore(UserDefaults& defaults);
    /// Folds what is left.
    ~OstrelSessionStore();
    OstrelSessionStore(const OstrelSessionStore&) = delete;
    OstrelSessionStore& operator=(const OstrelSessionStore&) = delete;

    /// Once, before anything is saved.
    OstrelSessionState load();
    /// Returns when the state is safe against the end of this process. What cannot be stored is tried again with the
    /// next save, and when the store ends.
    void save(const OstrelSessionState& state);

private:
    std::optional<OstrelSessionState> loadBase();
    void saveBase(const OstrelSessionState& state);
    void foldLater();
    bool writeBase(const OstrelSessionState& state, int journalNumber);

    UserDefaults& defaults_;
    /// Null where there is no folder.
    std::unique_ptr<SessionJournal> journal_;
    /// What base and journal together give.
    OstrelSessionState saved_;
    bool isLoaded_ = false;
    bool hasBase_ = false;
    /// Saves to pass over before a whole session is written again.
    int savesToSkip_ = 0;
    /// The newest state while it could not be stored, for a last try at the end.
    std::optional<OstrelSessionState> unsaved_;
    std::atomic<std::size_t> baseSize_ = 0;
    /// Folds in the background; its thread begins with the first. It goes first, for its work uses the others.
    std::unique_ptr<ThreadSerialQueue> background_;
};

} // namespace Ostrel
