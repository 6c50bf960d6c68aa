#pragma once

#include "OstrelCore/Text/Text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

namespace CaseFolding {

constexpr std::uint32_t HashSeed = 2166136261U;
constexpr std::uint32_t step(std::uint32_t hash, char upper) {
    return (hash ^ static_cast<unsigned char>(upper)) * 16777619U;
}
/// FNV-1a over the upper-cased key.
std::uint32_t hash(std::string_view key);

} // namespace CaseFolding

/// A constant key, hashed at compile time: `options.find("Formula"_key)`. ASCII only.
struct CaseKey {
    std::string_view text;
    std::uint32_t hash = CaseFolding::HashSeed;

    consteval explicit CaseKey(std::string_view literal)
        : text(literal) {
        for (const char c : literal)
            hash = CaseFolding::step(hash, asciiUpper(c));
    }
};

consteval CaseKey operator""_key(const char* text, std::size_t size) {
    return CaseKey(std::string_view(text, size));
}

/// Finds entries by their keys' hashes for a container that keeps the entries themselves, each with a member `hash`, in
/// order of insertion. `keyOf(entry)` gives an entry's key.
class CaseIndex {
public:
    static constexpr std::size_t Missing = static_cast<std::size_t>(-1);

    /// The position of the entry with that key, or `Missing`.
    template <typename Entry, typename KeyOf>
    std::size_t find(const std::vector<Entry>& entries, std::string_view key, std::uint32_t hash, KeyOf keyOf) const {
        const auto matches
            = [&](const Entry& entry) { return entry.hash == hash && equalsIgnoringCase(keyOf(entry), key); };
        if (slots_.empty()) {
            for (std::size_t i = 0; i < entries.size(); ++i) {
                if (matches(entries[i]))
                    return i;
            }
            return Missing;
        }
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t slot = hash & mask; slots_[slot] != 0; slot = (slot + 1) & mask) {
            if (matches(entries[slots_[slot] - 1]))
                return slots_[slot] - 1;
        }
        return Missing;
    }

    /// To be called after each entry that was put at the end.
    template <typename Entry> void noteAppended(const std::vector<Entry>& entries) {
        if (entries.size() * 2 > slots_.size() && entries.size() > LinearLimit)
            rebuild(entries);
        else if (!slots_.empty())
            add(entries.back().hash, entries.size() - 1);
    }

    /// To be called after any other change of the entries.
    template <typename Entry> void rebuild(const std::vector<Entry>& entries) {
        slots_.clear();
        if (entries.size() <= LinearLimit)
            return;
        std::size_t size = 32;
        while (size < entries.size() * 4)
            size *= 2;
        slots_.resize(size);
        for (std::size_t i = 0; i < entries.size(); ++i)
            add(entries[i].hash, i);
    }

private:
    /// Up to here a walk over the hashes is quicker than slots, and most sections are this small.
    static constexpr std::size_t LinearLimit = 12;

    void add(std::uint32_t hash, std::size_t at) {
        const std::size_t mask = slots_.size() - 1;
        std::size_t slot = hash & mask;
        while (slots_[slot] != 0)
            slot = (slot + 1) & mask;
        slots_[slot] = static_cast<std::uint32_t>(at + 1);
    }

    /// Open addressing by hash: position plus one, 0 for a free slot. Empty while the walk is used.
    std::vector<std::uint32_t> slots_;
};

/// The map for every name of a skin. Keys compare by full Unicode upper-casing; the first spelling and the place of the
/// first insertion are kept, whatever is assigned later. Iteration gives the entries in that order.
template <typename Value> class CaseInsensitiveDictionary {
public:
    struct Entry {
        std::string key;
        Value value;
        std::uint32_t hash = 0;

        /// Builds both texts in place: entries are made by the thousand, and moving a short text costs a copy.
        template <typename AnyValue>
        Entry(std::string_view newKey, AnyValue&& newValue, std::uint32_t newHash)
            : key(newKey)
            , value(std::forward<AnyValue>(newValue))
            , hash(newHash) { }

        friend bool operator==(const Entry& a, const Entry& b) { return a.key == b.key && a.value == b.value; }
    };

    CaseInsensitiveDictionary() = default;
    /// Entries whose keys are known to differ, with the index over them; nothing is hashed or compared again.
    CaseInsensitiveDictionary(std::vector<Entry> entries, CaseIndex index)
        : entries_(std::move(entries))
        , index_(std::move(index)) { }

    std::size_t count() const { return entries_.size(); }
    bool isEmpty() const { return entries_.empty(); }
    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

    std::vector<std::string> keys() const {
        std::vector<std::string> result;
        for (const auto& entry : entries_)
            result.push_back(entry.key);
        return result;
    }

    /// Null when the key is missing. The pointer lives until the next change of the dictionary.
    const Value* find(std::string_view key) const { return valueAt(position(key, CaseFolding::hash(key))); }
    const Value* find(const CaseKey& key) const { return valueAt(position(key.text, key.hash)); }
    /// With `CaseFolding::hash(key)` at hand, for one key in several dictionaries.
    const Value* find(std::string_view key, std::uint32_t hash) const { return valueAt(position(key, hash)); }
    Value* find(std::string_view key) { return const_cast<Value*>(std::as_const(*this).find(key)); }
    Value* find(const CaseKey& key) { return const_cast<Value*>(std::as_const(*this).find(key)); }
    bool contains(std::string_view key) const { return find(key) != nullptr; }

    /// Keeps the first spelling and place of a key that is there already.
    void set(std::string_view key, Value value) {
        const auto hash = CaseFolding::hash(key);
        if (const auto at = position(key, hash); at != Missing)
            entries_[at].value = std::move(value);
        else
            append(key, std::move(value), hash);
    }

    /// True when the key was missing and is now there.
    bool insertIfAbsent(std::string_view key, Value value) {
        const auto hash = CaseFolding::hash(key);
        if (position(key, hash) != Missing)
            return false;
        append(key, std::move(value), hash);
        return true;
    }

    void remove(std::string_view key) {
        const auto at = position(key, CaseFolding::hash(key));
        if (at == Missing)
            return;
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(at));
        index_.rebuild(entries_);
    }

    /// With `firstWins` false a key that is here already takes the other's value but keeps its spelling and place.
    void merge(const CaseInsensitiveDictionary& other, bool firstWins = true) {
        for (const auto& entry : other.entries_) {
            const auto at = position(entry.key, entry.hash);
            if (at == Missing)
                append(entry.key, entry.value, entry.hash);
            else if (!firstWins)
                entries_[at].value = entry.value;
        }
    }

    void reserve(std::size_t capacity) { entries_.reserve(capacity); }
    void clear() {
        entries_.clear();
        index_.rebuild(entries_);
    }

    /// Same values, spellings and order.
    friend bool operator==(const CaseInsensitiveDictionary& a, const CaseInsensitiveDictionary& b) {
        return a.entries_ == b.entries_;
    }

private:
    static constexpr std::size_t Missing = CaseIndex::Missing;

    const Value* valueAt(std::size_t at) const { return at == Missing ? nullptr : &entries_[at].value; }

    std::size_t position(std::string_view key, std::uint32_t hash) const {
        return index_.find(entries_, key, hash, [](const Entry& entry) -> std::string_view { return entry.key; });
    }

    void append(std::string_view key, Value value, std::uint32_t hash) {
        entries_.emplace_back(key, std::move(value), hash);
        index_.noteAppended(entries_);
    }

    std::vector<Entry> entries_;
    CaseIndex index_;
};

/// The options of a section, and the variables of a skin.
using Options = CaseInsensitiveDictionary<std::string>;

/// The option's text, or absent as a null view is not: `option(options, "X"_key).value_or("0")`.
inline std::optional<std::string_view> option(const Options& options, const CaseKey& key) {
    const auto* value = options.find(key);
    return value ? std::optional<std::string_view>(*value) : std::nullopt;
}

} // namespace Ostrel
