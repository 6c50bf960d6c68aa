#pragma once

#include "OstrelGUI/OstrelSessionState.h"

namespace Ostrel {

class UserDefaults;

/// The session in the user's settings, as JSON under one key; the key of the older form is read where there is no newer
/// one. What cannot be decoded counts as absent.
class OstrelSessionStore {
public:
    static constexpr std::string_view Key = "ostrel.sessionState.v2";
    static constexpr std::string_view LegacyKey = "ostrel.sessionState.v1";

    explicit OstrelSessionStore(UserDefaults& defaults);

    OstrelSessionState load() const;
    void save(const OstrelSessionState& state);

private:
    UserDefaults& defaults_;
};

} // namespace Ostrel
